"""The examples in docs/ are what the program prints and what goes over the wire."""

import json
import pathlib
import re
import subprocess
import unittest

from program import COMMAND, PROFILES, device, run

DOCUMENTS = sorted((PROFILES.parent / "docs").glob("*.md"))
INSIDE = (PROFILES.parent / "docs/inside.md").read_text(encoding="utf-8")
WALK = INSIDE[INSIDE.index("## One element, byte by byte"):INSIDE.index("## One alarm")]


def sessions(text):
    """The commands of the blocks that begin with "$ kzm-modbus", each with the output below it."""
    for block in re.findall(r"(?ms)^```\w*\n(\$ kzm-modbus .*?)^```", text):
        for session in re.split(r"(?m)^\$ ", block)[1:]:
            command, _, output = session.partition("\n")
            yield command, output


def output_of(command):
    done = subprocess.run(command.replace("kzm-modbus", " ".join(COMMAND), 1), shell=True, cwd=PROFILES.parent,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, timeout=30, check=False)
    return re.sub(r"(?m)^(.*?)\[\d+\](?=\[)", r"\1", done.stdout)  # without the threads' numbers


def requests_of_a_round(*arguments):
    """What a device is asked that answers nothing but exceptions."""
    requests = []

    def answer_to(request):
        requests.append(request)
        return request[:4] + bytes([0, 3, request[6], request[7] | 0x80, 2])
    run(*arguments, "--tcp", device(answer_to), "--count", 1)
    return requests


class Documents(unittest.TestCase):
    def test_sessions_print_what_is_shown_below_their_command(self):
        shown = [(document.name, *session) for document in DOCUMENTS
                 for session in sessions(document.read_text(encoding="utf-8"))]
        self.assertIn("inside.md", [name for name, _, _ in shown])
        for name, command, output in shown:
            with self.subTest(document=name, command=command):
                self.assertEqual(output_of(command), output)

    def test_the_walk_through_one_element_fits_the_example(self):
        element = re.search(r"```jsonc\n(.*)\n```", WALK)[1]
        self.assertIn(element, (PROFILES / "energy-meter.jsonc").read_text(encoding="utf-8"))
        request = bytes.fromhex(re.search(r"transaction number: `(.*?)`", WALK)[1])
        self.assertIn(request, [asked[2:] for asked in requests_of_a_round("poll", PROFILES / "energy-meter.jsonc")])
        capture = json.loads((PROFILES / "energy-meter.capture.json").read_text(encoding="utf-8"))
        classic = next(frame for frame in capture["snapshots"][0]["frames"] if frame["frame"] == "classic")
        data = bytes.fromhex("".join(classic["registers"]))
        self.assertEqual(len(data), int(re.search(r"answer has (\d+) bytes", WALK)[1]))
        self.assertEqual(data[12:16], bytes.fromhex(re.search(r"the two registers: `(.*?)`", WALK)[1]))
