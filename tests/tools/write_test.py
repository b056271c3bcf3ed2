"""write against a Modbus server from elsewhere, and against devices that do not do what they are told."""

import re
import struct
import subprocess
import unittest

from program import PUMP, capture_of, device, file, pymodbus, run, simulator

PROFILE = file("breaker.jsonc", """{
    "frames": [
        {"name": "settings", "function": "holding", "address": 100, "count": 10},
        {"name": "clock", "function": "holding", "address": 200, "count": 1}
    ],
    "enumerations": {"modes": {"0": "Off", "5": "On", "12": "Test"}},
    "objects": [{"name": "Day", "value": {"address": 200, "type": "uint16"}}],
    "services": [{"name": "Breaker", "alias": "q1", "service": 7, "elements": {
        "mode": {"address": 101, "type": "enum16", "mask": "0x000F", "enumeration": "modes"},
        "trip": {"address": 101, "type": "boolean", "mask": "0x0400"},
        "limit": {"address": 103, "type": "int32-to-float", "scale": 0.1},
        "low": {"address": 104, "type": "uint16"},
        "day": {"address": 200, "type": "uint16"}}}]
}""")

TABLES = """\
REGISTER  BEFORE  AFTER
101       0x0C3C  0x0C35
103       0x0C7A  0x0000
104       0x0C99  0x007D

ELEMENT  BEFORE      AFTER
limit    20932520.9  12.5
low      3225        125
mode     Test        On
trip     true        true

"""


def registers_at(address):
    done = subprocess.run(["mbpoll", "-m", "tcp", "-p", address.rpartition(":")[2], "-0", "-1", "-t", "4:hex", "-r", "100",
                           "-c", "6", "127.0.0.1"], capture_output=True, text=True, timeout=10, check=True)
    return " ".join(re.findall(r"0x(\w{4})", done.stdout))


def deaf_answer(request):
    """Registers are read as 1, writes are confirmed and not done."""
    count = struct.unpack(">H", request[10:12])[0]
    body = request[7:12] if request[7] == 16 else b"\x03" + bytes([2 * count]) + b"\0\1" * count
    return request[:4] + struct.pack(">HB", len(body) + 1, request[6]) + body


class WriteTest(unittest.TestCase):
    def write(self, address, *arguments, profile=PROFILE):
        done = run("write", profile, *arguments, "--tcp", address)
        return done.returncode, done.stdout, done.stderr.removeprefix("kzm-modbus: ").rstrip()

    def test_only_what_is_named_is_written_and_only_when_it_is_sent(self):
        with pymodbus() as address:
            values = ("Breaker/q1", "mode=On", "limit=12.5")
            self.assertEqual(self.write(address, *values),
                             (0, TABLES + "Not sent; --send writes 4 registers from 101 on.\n", ""))
            self.assertEqual(registers_at(address), "0C1D 0C3C 0C5B 0C7A 0C99 0CB8")
            self.assertEqual(self.write(address, *values, "--send"),
                             (0, TABLES + "Written and read back: 4 registers from 101 on.\n", ""))
            self.assertEqual(registers_at(address), "0C1D 0C35 0C5B 0000 007D 0CB8")
            self.assertEqual(self.write(address, *values, "--send")[1].splitlines()[-1], "Nothing changes.")
            self.write(address, "Breaker/q1", "trip=false", "mode=12", "--send")
            self.assertEqual(registers_at(address), "0C1D 083C 0C5B 0000 007D 0CB8")

    def test_what_would_be_another_value_is_refused_and_not_sent(self):
        with pymodbus() as address:
            for values, reason in [
                    (["limit=12.55"], "limit: 12.55 would be read back as 12.6"),
                    (["limit=214748364.8"], "limit: 214748364.8 is out of range"),
                    (["mode=Onn"], 'mode: "Onn" is not a label; did you mean "On"? Allowed: "Off", "Test", "On"'),
                    (["limit=12.5", "low=7"], "limit: 12.5 would be read back as 0.7"),
                    (["low=7", "day=1"], "the elements are in different frames; write them one at a time")]:
                with self.subTest(values=values):
                    self.assertEqual(self.write(address, "Breaker/q1", *values, "--send"), (8, "", reason))
            self.assertEqual(registers_at(address), "0C1D 0C3C 0C5B 0C7A 0C99 0CB8")

    def test_wrong_use_has_a_status_and_offers_the_nearest(self):
        for profile, values, status, reason in [
                (PROFILE, ["Breaker", "mode=On"], 5, 'no service writes "Breaker"; did you mean "Breaker/q1"?'),
                (PROFILE, ["Breaker/q1", "moda=On"], 5, 'no element "moda"; did you mean "mode"? Allowed: "day", "limit", "low", "mode", "trip"'),
                (PROFILE, ["Breaker/q1", "low=1", "low=2"], 2, '"low" is given twice'),
                (PROFILE, ["Breaker/q1", "mode"], 2, '"mode" is not ELEMENT=VALUE'),
                (PROFILE, ["Breaker/q1", "low=1"], 4, "127.0.0.1:1 unit 1: cannot read: Connection refused"),
                (file("pump.jsonc", PUMP), ["Flow", "a=1"], 5, 'no service writes "Flow"; the profile has none')]:
            with self.subTest(values=values):
                self.assertEqual(self.write("127.0.0.1:1", *values, profile=profile), (status, "", reason))

    def test_a_device_that_does_not_write_is_told(self):
        capture = file("capture.json", capture_of((1, [("settings", "0000 " * 10, 0, {})])))
        with simulator(PROFILE, capture) as reading:
            for address, reason in [(reading, "the device did not accept the write: Illegal function"),
                                    (device(deaf_answer), "register 104 was written as 7 and reads back as 1")]:
                status, _, error = self.write(address, "Breaker/q1", "low=7", "--send")
                self.assertEqual((status, error), (9, reason))
