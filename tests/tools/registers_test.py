"""read and probe: registers without a profile."""

import json
import os
import pty
import re
import signal
import socket
import struct
import threading
import time
import tty
import unittest

from program import end, file, pymodbus, run, start

PM = {100: 0x504D, 101: 0x2D33, 102: 0x4366, 103: 0x8000, 104: 0xE240, 105: 1, 106: 0xFFFB, 107: 0xFFFF}


def answer(pdu, registers, asked):
    """What a device with these registers answers; it takes up to 100 at once, and is silent about register 200."""
    function, first, count = struct.unpack(">BHH", pdu[:5])
    asked.append((function, first, count))
    if first <= 200 < first + count:
        return None
    values = [registers.get(address) for address in range(first, first + count)]
    if count > 100 or None in values:
        return bytes([function | 0x80, 3 if count > 100 else 2])
    return struct.pack(f">BB{count}H", function, 2 * count, *values)


def crc(message):
    value = 0xFFFF
    for byte in message:
        value ^= byte
        for _ in range(8):
            value = value >> 1 ^ (0xA001 if value & 1 else 0)
    return struct.pack("<H", value)


def serial_device(registers, asked):
    """A device at one end of a pseudo terminal; gives the name of the other end, which stays open."""
    line, other = pty.openpty()
    tty.setraw(other)

    def serve():
        while request := os.read(line, 8):
            while len(request) < 8:
                request += os.read(line, 8 - len(request))
            if pdu := answer(request[1:], registers, asked):
                os.write(line, request[:1] + pdu + crc(request[:1] + pdu))
    threading.Thread(target=serve, daemon=True).start()
    return os.ttyname(other)


def tcp_device(registers, asked):
    listener = socket.create_server(("127.0.0.1", 0))

    def serve():
        while True:
            with listener.accept()[0] as client:
                while request := client.recv(300):
                    if pdu := answer(request[7:], registers, asked):
                        client.sendall(request[:4] + struct.pack(">H", len(pdu) + 1) + request[6:7] + pdu)
    threading.Thread(target=serve, daemon=True).start()
    return "127.0.0.1:%d" % listener.getsockname()[1]


class ReadTest(unittest.TestCase):
    def test_registers_are_shown_as_all_that_they_may_be(self):
        shown = run("read", "--tcp", tcp_device(PM, []), "--address", 100, "--count", 8).stdout
        for line in (r"100  504D +\*20557 +\*20557  PM .*\n", r"\n +102  4366 .* \*230.5 .*\n",
                     r"\n +104  E240 .* \*123456 .*\n", r"\n +106  FFFB +65531 +\*-5 .* \*-5 +-\n"):
            self.assertRegex(shown, line)
        rows = [([102, "--count", 2, "--type", "float32", "--scale", 2, "--offset", -1], r"4366 8000    460\n.*\"scale\": 2, \"offset\": -1\n"),
                ([104, "--count", 4, "--type", "uint32", "--order", "little", "--scale", 0.1],
                 r"104  E240 0001 +12345.6\n +106  FFFB FFFF  429496729.1  implausible: huge\nIn.*uint32-to-float.*little"),
                ([40101, "--manual", "--count", 2, "--type", "text"], r'100  40101   504D 2D33  "PM-3"\n'),
                (["100", "--manual", "--count", 1, "--type", "uint16", "--exchange-bytes"], r"40101   504D +19792\nIn a.*sum"),
                ([100, "--count", 2, "--json", "--type", "text"], r'^{"address":100,.*"plausible":true,.*"value":"PM-3"}\n$')]
        for options, text in rows:
            with self.subTest(options=options):
                self.assertRegex(run("read", "--tcp", tcp_device(PM, []), "--address", *options).stdout, text)
        values = json.loads(run("read", "--tcp", tcp_device(PM, []), "--address", 102, "--count", 2, "--json").stdout.split("\n")[0])["values"]
        self.assertIn({"type": "float32", "order": "big", "value": 230.5, "plausible": True}, values)

    def test_many_registers_and_bits_are_read_in_several_requests(self):
        with pymodbus() as address:
            holding = run("read", "--tcp", address, "--address", 7, "--count", 300).stdout
            bits = run("read", "--tcp", address, "--function", "coils", "--address", 3, "--count", 4, "--json").stdout
            partly = run("read", "--tcp", address, "--address", 1950, "--count", 200)
        self.assertEqual([int(text, 16) for text in re.findall(r"(?m)^ *\d+  (\w{4}) ", holding)], [n * 31 + 1 for n in range(7, 307)])
        self.assertEqual([json.loads(line)["value"] for line in bits.splitlines()], [1, 0, 0, 1])
        self.assertEqual((partly.returncode, partly.stderr.count("\n")), (4, 1))

    def test_an_object_of_a_serial_device_is_explained(self):
        frames = ", ".join(f'{{"name": "{n}", "function": "holding", "address": {n}, "count": 2}}' for n in (102, 300))
        objects = ", ".join(f'{{"name": "At {n}", "value": {{"address": {n}, "type": "float32"}}}}' for n in (102, 300))
        profile = file("serial.jsonc", f'{{"frames": [{frames}], "objects": [{objects}]}}')
        line = serial_device(PM, []) + ":19200:N"
        for name, told in (("At 102", r"received +4366 8000, quality Good(?s:.*)\nAt 102 +230\.5 "),
                           ("At 300", r"never received; answered with exception 2")):
            self.assertRegex(run("explain", profile, name, "--rtu", line).stdout, told)

    def test_watch_tells_what_changes_over_rtu(self):
        registers = {0: 1, 1: 2}
        watch = start("read", "--rtu", serial_device(registers, []) + ":19200:N", "--address", 0, "--count", 2,
                      "--watch", "--interval", 0.05, "--json")
        lines = [json.loads(watch.stdout.readline()) for _ in range(2)]
        registers[1] = 3
        lines.append(json.loads(watch.stdout.readline()))
        self.assertEqual(end(watch), 0)
        self.assertEqual([(line["address"], line["hex"], line["changes"]) for line in lines],
                         [(0, "0001", 0), (1, "0002", 0), (1, "0003", 1)])

    def test_what_cannot_be_read_is_one_line(self):
        read = ["read", "--tcp", "127.0.0.1:1", "--address"]
        for status, arguments, told in [
                (2, [*read, 65535, "--count", 2], "2 registers from 65535 on end past 65535"),
                *[(2, [*read, 0, "--count", count], "is not a whole number from 1 to 65536") for count in (0, 65537)],
                (2, [*read, 0, "--count", 65536], "525 requests are needed"),
                (2, [*read, 65536], '"65536" is not an address from 0 to 65535'),
                (2, [*read, 30001, "--manual", "--function", "holding"], '"30001" is not of the function "holding"'),
                (2, [*read, 0, "--type", "flaot32"], 'there is no type "flaot32"; did you mean "float32"?'),
                (2, [*read, 0, "--count", 1, "--type", "int32"], 'the type "int32" takes 2 registers, not 1'),
                (2, [*read, 0, "--function", "coils", "--type", "int16"], "bits have no type"),
                (2, [*read, 0, "--scale", "ten"], '"ten" is not a number'),
                (4, [*read, 0], "Connection refused"),
                (4, ["read", "--tcp", tcp_device({}, []), "--address", 0], "frame holding-0: Illegal data address"),
                (2, ["probe", "--tcp", "127.0.0.1:1", "--from", 9, "--to", 8], "--from 9 is after --to 8"),
                (4, ["probe", "--tcp", "127.0.0.1:1"], "Connection refused"),
                (4, ["probe", "--tcp", tcp_device({}, []), "--from", 200, "--to", 200, "--timeout", 0.05], "no answer to 2 requests"),
                (3, ["probe", "--tcp", "127.0.0.1:1", "--continue", "/nowhere"], "/nowhere: cannot read")]:
            with self.subTest(arguments=arguments):
                done = run(*arguments)
                self.assertEqual((done.returncode, done.stderr.count("\n")), (status, 1), done.stderr)
                self.assertIn(told, done.stderr)


class ProbeTest(unittest.TestCase):
    REGISTERS = {address: address + 1 for address in [*range(3, 150), 152, *range(160, 230), *range(400, 420)]}

    def test_what_answers_is_found_captured_and_continued(self):
        found = file("found.json", "")
        asked = []
        for line in (["--tcp", tcp_device(self.REGISTERS, asked)], ["--rtu", serial_device(self.REGISTERS, asked) + ":115200:N"]):
            asked.clear()
            done = run("probe", *line, "--to", 499, "--timeout", 0.1, "-o", found)
            self.assertEqual((done.returncode, done.stderr), (0, ""))
            self.assertEqual([row.split()[:3] for row in done.stdout.splitlines() if row.endswith("answer") and "no" not in row],
                             [["3", "149", "147"], ["152", "152", "1"], ["160", "199", "40"], ["201", "229", "29"], ["400", "419", "20"]])
            self.assertIn("200   200      1  no answer", done.stdout)
            self.assertIn("answered: 100 registers; the device refuses 101.", done.stdout)
            frames = json.loads("{" + done.stdout[done.stdout.index('"frames"'):] + "}")["frames"]
            self.assertEqual(frames[:2], [{"name": "holding-3", "function": "holding", "address": 3, "count": 100},
                                          {"name": "holding-103", "function": "holding", "address": 103, "count": 47}])
            requests = len(asked)
        asked.clear()
        again = run("probe", "--tcp", tcp_device(self.REGISTERS, asked), "--to", 519, "--timeout", 0.1, "--continue", found, "--thorough", "-o", found)
        self.assertIn("420   519    100  refused", again.stdout)
        self.assertNotIn("not asked", again.stdout)
        self.assertFalse([request for request in asked if request[1] in self.REGISTERS], requests)
        served = run("capture", "--registers", "holding:3-102", "--tcp", tcp_device(self.REGISTERS, []), "-o", "/proc/self/fd/1").stdout
        lines = json.loads(served[:served.rindex("}") + 1])["snapshots"][0]["frames"][0]["registers"]
        with open(found, encoding="utf-8") as stream:
            capture = json.load(stream)
        self.assertEqual(capture["snapshots"][0]["frames"][0]["registers"], lines)
        self.assertEqual(capture["missing"][0], {"function": "holding", "address": 0, "count": 3})

    def test_an_interrupted_probe_shows_what_it_has(self):
        found = file("part.json", "")
        asked = []
        probe = start("probe", "--tcp", tcp_device(self.REGISTERS, asked), "--from", 3, "--pause", 0.1, "-o", found)
        while len(asked) < 12:
            time.sleep(0.01)
        probe.send_signal(signal.SIGINT)
        output, errors = probe.communicate(timeout=10)
        self.assertEqual(probe.returncode, 0)
        self.assertRegex(errors, r"^kzm-modbus: interrupted; \d+ of 9997 are known; --continue .*part.json goes on\n$")
        self.assertRegex(output, r'\n +3 .*answer\n(?s:.*)"holding-3"')
        done = run("probe", "--tcp", tcp_device(self.REGISTERS, []), "--continue", found, "--to", 160, "--timeout", 0.1)
        self.assertIn("150   151      2  refused", done.stdout)


if __name__ == "__main__":
    unittest.main()
