"""guess on captures and devices, its messages, and how often it is right."""

import json
import pathlib
import subprocess
import sys
import unittest

from program import COMMAND, PROFILES, file, run, simulator

SCRIPT = PROFILES.parent / "scripts" / "guess-accuracy"
WORDS = "4CCD 4366 B333 4365 A8F6 4366 E148 4247"
CAPTURE = file("floats.capture.json", json.dumps({
    "frames": [{"name": "a", "function": "input", "address": 6, "count": 8}],
    "snapshots": [{"time": "2026-03-14T09:26:53.000Z", "frames": [{"frame": "a", "registers": [WORDS]}]}]}))
ZEROS = file("zeros.capture.json", pathlib.Path(CAPTURE).read_text().replace(WORDS, "0000 " * 7 + "0000"))
# Also an unavailable value, a text with one character per register, and a date that profiles do not have.
MIXED = file("mixed.capture.json", json.dumps({
    "frames": [{"name": "a", "function": "input", "address": 6, "count": 10},
               {"name": 'b "2"', "function": "holding", "address": 6, "count": 8},
               {"name": "c", "function": "holding", "addresses": [40, 41, 42, 43, 44, 45]},
               {"name": "not read", "function": "coils", "address": 0, "count": 1}],
    "snapshots": [{"time": "2026-03-14T09:26:53.000Z", "frames": [
        {"frame": "a", "registers": [WORDS + " 0000 7FC0"]},
        {"frame": 'b "2"', "registers": ["0041 0058 0032 0030 0034 0031 0037 0031"]},
        {"frame": "c", "registers": ["07EA 0003 000E 0009 001A 0030"]}]}]}))


class Guess(unittest.TestCase):
    def test_table_and_json(self):
        told = run("guess", CAPTURE)
        self.assertEqual((told.returncode, told.stderr), (0, ""))
        lines = told.stdout.splitlines()
        self.assertEqual(lines[0], "word order: little")
        self.assertIn("4 of 4 values of several registers are plausible floats with the low word first, ", lines[1])
        self.assertRegex(told.stdout, r"\ninput +6 +4CCD 4366 +float32 little +230.3 +1.00\n")
        guess = json.loads(run("guess", CAPTURE, "--json").stdout)
        best = guess["values"][0]["candidates"][0]
        self.assertEqual((guess["order"], guess["values"][0]["function"], guess["values"][0]["address"]), ("little", 4, 6))
        self.assertEqual({**best, "probability": 1}, {
            "type": "float32", "count": 2, "order": "little", "scale": 1, "offset": 0, "invalid": False, "probability": 1,
            "value": 230.3})

    def test_device(self):
        with simulator("", CAPTURE) as address:
            told = run("guess", "--tcp", address, "--registers", "input:6-13", "--count", 2, "--interval", 0.01,
                       "--expect", "12=49.97")
        self.assertEqual((told.returncode, told.stderr), (0, ""))
        self.assertIn("register 12 can show 49.97 with the low word first only", told.stdout)

    def test_profile(self):
        for capture in (MIXED, *PROFILES.glob("*.capture.json")):
            checked = run("check", file("guessed.jsonc", run("guess", capture, "--profile").stdout))
            self.assertIn(" 0 errors, ", checked.stdout)
        text = run("guess", MIXED, "--profile").stdout
        for line in ('    "device": {"wordOrder": "little"},',
                     '        // 40: 07EA 0003 000E 0009 ..., 2026-03-14T09:26:48, probability 1.00; datetime-fields-ymdhms 6, which profiles '
                     "do not have",
                     '        // 6: 4CCD 4366, 230.3, probability 1.00',
                     '        {"name": "input 6", "value": {"address": 6, "frame": "a", "type": "float32", "order": "little"}},',
                     '        {"name": "input 14", "value": {"address": 14, "frame": "a", "type": "float32", "order": "little", '
                     '"notAvailable": "0x7FC00000"}}'):
            self.assertIn(line + "\n", text)
        shown = run("show", file("guessed.jsonc", text), "--capture", MIXED, "--object", "holding 6")
        self.assertIn("AX204171", shown.stdout, shown.stderr)

    def test_what_cannot_be_is_one_line(self):
        for arguments, status, message in (
                ((CAPTURE, "--expect", "60=1"), 2, "--expect: register 60 is not in the capture"),
                ((CAPTURE, "--expect", "6=1", "--expect", "6=2"), 2, "--expect: register 6 is expected to show two values"),
                ((CAPTURE, "--expect", "6:1"), 2, '--expect: "6:1" is not ADDRESS=VALUE, a register from 0 to 65535 and a '
                                                  "number, e.g. 6=230.4"),
                (("--tcp", "127.0.0.1:1"), 2, "guess: a device needs --registers, e.g. holding:0-119"),
                ((ZEROS, "--profile"), 5, "no value is likely enough for a profile; take several snapshots, or tell with "),
                (("missing.json",), 3, "missing.json")):
            told = run("guess", *arguments)
            self.assertEqual((told.returncode, told.stdout, told.stderr.count("\n")), (status, "", 1), told.stderr)
            self.assertIn(message, told.stderr)

    @unittest.skipIf(len(COMMAND) > 1, "thousands of guesses take long in an emulator")
    def test_accuracy(self):
        told = subprocess.run([sys.executable, SCRIPT, "--check", "--plants", "2", "--program", pathlib.Path(COMMAND[0])],
                              capture_output=True, text=True, check=False)
        self.assertEqual((told.returncode, told.stderr), (0, ""), told.stdout)


if __name__ == "__main__":
    unittest.main()
