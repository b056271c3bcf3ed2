"""explain: what it tells of values that are wrong or missing."""

import concurrent.futures
import json
import unittest

import recompute
from program import PROFILES, capture_of, file, run, simulator

# Each: a fault, the element of the profile that has it, its registers from address 10 on, the reason that is told, and
# what else of the explanation leads to the cause. Address 9 holds 0, address 13 230.5 as a float32.
PLANTED = [
    ("swapped words of a float", '"unit": "V", "value": {"address": 10, "type": "float32"}', "8000 4366", "good",
     r'tiny.*\n +230\.5 V +"order": "little"'),
    ("swapped words of an integer", '"value": {"address": 10, "type": "uint32"}', "E240 0001", "good",
     r'huge.*\n +123456 +"order": "little"'),
    ("unsigned for signed", '"unit": "W", "value": {"address": 10, "type": "uint16"}', "FFF6 0000", "good",
     r'near the end of its range.*\n(.*\n)* +-10 W +"type": "int16"'),
    ("unsigned for signed, scaled", '"unit": "W", "value": {"address": 10, "type": "uint16-to-float", "scale": 0.1}',
     "FFFF 0000", "good", r'"not available".*\n(.*\n)* +-0\.1 W +"type": "int16-to-float"'),
    ("wrong mask", '"value": {"address": 10, "type": "uint16", "mask": "0xFF00"}', "0014 0000", "good",
     r'mask hides.*\n(.*\n)* +20 +(no "mask"|"mask": "0x00FF")'),
    ("forgotten scale", '"unit": "Hz", "value": {"address": 10, "type": "uint16"}', "1386 0000", "good",
     r'unusual for Hz.*\n(.*\n)* +49\.98 Hz +"scale": 0\.01'),
    ("pattern missing", '"value": {"address": 10, "type": "uint16"}', "FFFF 0000", "good",
     r'"not available".*\n(.*\n)* +no value +"notAvailable": "0xFFFF"'),
    ("pattern of a float missing", '"value": {"address": 10, "type": "float32"}', "7FC0 0000", "not-finite",
     r'missing.*\n +no value +"notAvailable": "0x7FC00000"'),
    ("pattern missing, low word first", '"value": {"address": 10, "type": "int32", "order": "little"}', "0000 8000",
     "good", r'"not available".*\n +no value +"notAvailable": "0x80000000"'),
    ("type too narrow", '"value": {"address": 10, "type": "uint16", "scale": 10}', "FDE8 0000", "out-of-range",
     r'missing.*\n +650000 +"type": "uint16-to-float"'),
    ("label missing", '"value": {"address": 10, "type": "enum16", "enumeration": "mode"}', "0003 0000",
     "unknown-label", r"3 has no label"),
    ("wrong address by one", '"unit": "V", "value": {"address": 12, "type": "float32"}', "0000 0000", "good",
     r'\n +230\.5 V +"address": 13'),
    ("stale frame", '"value": {"address": 30, "type": "uint16"}', "0000 0000", "out-of-date",
     r"frame old is out of date \(13 s, limit 12 s\)"),
    ("exception", '"value": {"address": 40, "type": "uint16"}', "0000 0000", "last-value", r"frame bad"),
    ("division by zero", '"value": {"chain": "quotient", "inputs": {"dividend": {"constant": 1},'
     ' "divisor": {"address": 10, "type": "uint16"}}}', "0000 0000", "cannot-compute", r"\nIt +no result: division by zero"),
]
FRAMES = """{"name": "main", "function": "holding", "address": 9, "count": 6},
    {"name": "old", "function": "holding", "address": 30, "count": 1},
    {"name": "bad", "function": "holding", "address": 40, "count": 1},
    {"name": "none", "function": "holding", "address": 50, "count": 1}"""


def planted(value, registers):
    profile = file("planted.jsonc", '{"frames": [%s], "enumerations": {"mode": {"0": "Off", "1": "On"}},'
                   '\n"objects": [{"name": "It", %s}, {"name": "Rest", "value": {"address": 9, "type": "uint16"}},'
                   '{"name": "Gone", "value": {"address": 50, "type": "uint16"}}]}' % (FRAMES, value))
    return profile, file("planted.json", capture_of((33, [
        ("main", f"0000 {registers} 0000 4366 8000", 0, {}), ("old", "0001", 20, {}),
        ("bad", "0001", 0, {"quality": "Bad"})])))


class ExplainTest(unittest.TestCase):
    def test_the_cause_of_each_planted_fault_is_told(self):
        for fault, value, registers, reason, told in PLANTED:
            with self.subTest(fault):
                profile, capture = planted(value, registers)
                done = run("explain", profile, "It", "--capture", capture)
                self.assertEqual((done.returncode, done.stderr), (0, ""))
                self.assertRegex(done.stdout, told)
                self.assertIn(f"\nReason: {reason}", done.stdout)
                told = json.loads(run("explain", profile, "It", "--capture", capture, "--json").stdout)
                self.assertEqual(told["reason"]["name"], reason)


    def test_an_explanation_ends_with_what_show_prints_for_every_object_and_snapshot(self):
        for name in ("energy-meter", "energy-meter.series", "sunspec-inverter", "circuit-breaker"):
            source = [f"{PROFILES}/{name.removesuffix('.series')}.jsonc", "--capture", f"{PROFILES}/{name}.capture.json"]
            lines = run("show", *source, "--json").stdout.splitlines()
            snapshots = sorted({json.loads(line).get("time", "1") for line in lines})
            self.assertTrue(lines)
            with concurrent.futures.ThreadPoolExecutor(4) as pool:
                list(pool.map(lambda line: self.check_object(source, line, snapshots), lines))

    def check_object(self, source, line, snapshots):
        shown = json.loads(line)
        name = shown["name"] + ("/" + shown["alias"] if shown["alias"] else "")
        number = snapshots.index(shown.get("time", "1")) + 1
        told = run("explain", *source, name, "--json", "--at", number).stdout
        faults = []
        for explanation in recompute.explanations(told):
            recompute.check(explanation, faults.append)
        self.assertEqual(faults, [])
        self.assertIn(f'"shown":{line}', told)
        if number == 1:
            table = run("show", *source, "--object", name, "--at", number).stdout
            self.assertIn("\n" + table + "Reason", run("explain", *source, name, "--at", number).stdout)

    def test_bad_objects_are_told_by_cause_however_many(self):
        zero = '{"chain": "quotient", "inputs": {"dividend": {"constant": 1}, "divisor": {"constant": 0}}}'
        objects = f'{{"name": "q", "value": {zero}}}, {{"name": "n", "value": {{"chain": "sum", "inputs": {{"a": {zero}, "b": {zero}}}}}}},'
        objects += ",\n".join('{"name": "%d", "value": {"address": %d, "type": "uint16"}}' % (n, 9 + n % 6 if n % 4 else 50)
                             for n in range(10000))
        profile = file("many.jsonc", '{"frames": [%s], "objects": [%s]}' % (FRAMES, objects))
        capture = planted('"value": {"constant": 1}', "0000 0000")[1]
        told = run("explain", profile, "--bad", "--capture", capture).stdout.splitlines()
        self.assertEqual((told[0], len(told), told[-1]), ("frame none was never received: 2500 objects", 2505,
                                                          "7500 of 10002 objects are Good"))
        self.assertIn("no result: division by zero: 2 objects", told)
        self.assertRegex(told[2], r"^    4 +holding 50 +many.jsonc:8$")
        causes = json.loads(run("explain", profile, "--bad", "--json", "--capture", capture).stdout)["causes"]
        self.assertEqual([(cause["reason"], len(cause["objects"])) for cause in causes], [("never-received", 2500), ("cannot-compute", 2)])

    def test_an_alarm_is_explained_with_its_previous_value(self):
        source = [f"{PROFILES}/energy-meter.jsonc", "Tariff changed", "--capture",
                  f"{PROFILES}/energy-meter.series.capture.json"]
        rows = [("1", r'no earlier value of "Tariff"', "input-missing"), ("2", r"previous +Day, 30 s old \(limit 90 s\)", "good")]
        for number, told, reason in rows:
            self.assertRegex(run("explain", *source, "--at", number).stdout, told)
            self.assertEqual(json.loads(run("explain", *source, "--at", number, "--json").stdout)["shown"]["reason"], reason)

    def test_a_live_device_is_read_once_and_its_exceptions_are_told(self):
        profile, capture = planted('"value": {"address": 10, "type": "uint16"}', "0007 0000")
        with simulator(profile, capture) as address:
            done = run("explain", profile, "It", "--tcp", address)
            self.assertRegex(done.stdout, r"received +0007, quality Good(?s:.*)\nIt +7 ")
            self.assertEqual(done.stderr, "kzm-modbus: frame none: Illegal data address\n")
            self.assertRegex(run("explain", profile, "Gone", "--tcp", address).stdout,
                             r"(?s)frame +none, never received; answered with exception 2.*device answered with exception 2 \(Illegal data address\)")

    def test_what_cannot_be_explained_has_its_status_and_one_line(self):
        profile, capture = planted('"value": {"constant": 1}', "0000 0000")
        rows = [
            (1, [capture, "It"], "has errors"), (2, [profile], "either OBJECT or --bad is required"),
            (2, [profile, "It", "--bad"], "either OBJECT or --bad is required"),
            (2, [profile, "It", "--at", "1"], "--at needs --capture"),
            (2, [profile, "It", "--tcp", "a", "--capture", capture], "cannot be combined with"),
            (4, [profile, "It", "--tcp", "127.0.0.1:1"], "no frame could be read: no connection: .*Connection refused"),
            (5, [profile, "Rets"], r'no object "Rets"; did you mean "Rest"\?'),
            (5, [profile, "It", "--capture", capture, "--at", "2"], 'no snapshot at "2"; the capture has 1 snapshot'),
            (5, [f"{PROFILES}/energy-meter.jsonc", "Tarif changed"], r'did you mean "Tariff changed"\?'),
        ]
        for status, arguments, told in rows:
            with self.subTest(arguments):
                done = run("explain", *arguments)
                self.assertEqual((done.returncode, done.stdout), (status, ""))
                self.assertRegex(done.stderr, told)
                self.assertEqual(done.stderr.count("\n"), 1 if status > 1 else 4)


if __name__ == "__main__":
    unittest.main()
