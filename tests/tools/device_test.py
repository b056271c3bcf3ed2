"""poll, capture and simulate against each other, against software from elsewhere, and without a device."""

import contextlib
import json
import os
import pathlib
import queue
import re
import signal
import socket
import subprocess
import threading
import time
import unittest

from program import MAIN, PUMP, capture_of, end, file, pymodbus, run, simulator, start

PROFILE = file("pump.jsonc", PUMP)
CAPTURE = file("pump.capture.json", capture_of((33, [("main", MAIN, 0, {}), ("slow", "0007", 0, {})])))


REGISTERS = file("registers.jsonc", """{
    "frames": [
        {"name": "two", "function": "holding", "address": 16, "count": 2},
        {"name": "three", "function": "holding", "addresses": ["0x13", "0x11", "0x12"]},
        {"name": "never", "function": "holding", "address": 20, "count": 1},
        {"name": "coils", "function": "coils", "address": 0, "count": 10},
        {"name": "inputs", "function": "discrete inputs", "address": 5, "count": 9}
    ],
    "objects": [{"name": "A", "value": {"address": 16, "type": "int16"}}]
}""")

# Requests as they come and the answers to them.
REQUESTS = """\
aabb 0000 0006 01 03 0010 0002 -> aabb 0000 0007 01 03 04 0a0b 0c0d
0001 0000 0006 ff 03 0011 0003 -> 0001 0000 0009 ff 03 06 1111 1212 1313
0001 0000 0006 00 03 0010 0004 -> 0001 0000 000b 00 03 08 0a0b 0c0d 1212 1313
0001 0000 0006 01 01 0000 000a -> 0001 0000 0005 01 01 02 0d02
0001 0000 0006 01 01 0000 0008 -> 0001 0000 0004 01 01 01 0d
0001 0000 0006 01 01 0001 0009 -> 0001 0000 0005 01 01 02 0601
0001 0000 0006 01 02 0005 0009 -> 0001 0000 0005 01 02 02 4101
0001 0000 0006 01 03 0010 007d -> 0001 0000 0003 01 83 02
0001 0000 0006 01 03 0010 0005 -> 0001 0000 0003 01 83 02
0001 0000 0006 01 04 0010 0002 -> 0001 0000 0003 01 84 02
0001 0000 0006 01 03 ffff 0002 -> 0001 0000 0003 01 83 02
0001 0000 0006 01 03 0010 0000 -> 0001 0000 0003 01 83 03
0001 0000 0006 01 03 0010 007e -> 0001 0000 0003 01 83 03
0001 0000 0004 01 03 0010 -> 0001 0000 0003 01 83 03
0001 0000 0006 01 06 0010 0001 -> 0001 0000 0003 01 86 01
0001 0000 0005 01 2b 0e01 00 -> 0001 0000 0003 01 ab 01
"""


def lines_of(stream):
    """The lines of a running process, as they come."""
    lines = queue.Queue()
    threading.Thread(target=lambda: [lines.put(line.rstrip()) for line in stream], daemon=True).start()
    return lines


@contextlib.contextmanager
def full_listener():
    """An address that takes no further connection, so that whoever connects waits."""
    with contextlib.ExitStack() as stack:
        listener = stack.enter_context(socket.socket())
        listener.bind(("127.0.0.1", 0))
        listener.listen(0)
        for _ in range(4):
            waiting = stack.enter_context(socket.socket())
            waiting.setblocking(False)
            waiting.connect_ex(listener.getsockname())
        yield "127.0.0.1:%d" % listener.getsockname()[1]


def connections_under_way(address):
    """How many connections to the address have been asked for and not answered."""
    port = "0100007F:%04X" % int(address.rpartition(":")[2])
    with open("/proc/net/tcp", encoding="ascii") as sockets:
        return [line.split()[2:4] for line in sockets].count([port, "02"])


def without_time(text):
    lines = [json.loads(line) for line in text.splitlines()]
    text = json.dumps([{**line, "time": ""} for line in lines])
    return json.loads(re.sub(r'(?<=")\d{4}-\d\d-\d\dT[^"]*(?=")|; the device answered with[^";]*', "", text))


class DeviceTest(unittest.TestCase):
    def test_a_served_capture_is_polled_and_captured_as_the_objects_it_holds(self):
        recorded = file("recorded.json", "what stood there before")
        shown = run("show", PROFILE, "--capture", CAPTURE, "--json").stdout
        with simulator(PROFILE, CAPTURE) as address:
            polled = run("poll", PROFILE, "--tcp", address, "--count", 1)
            captured = run("capture", PROFILE, "--tcp", address, "--count", 2, "--interval", 0.01, "-o", recorded)
            printed = run("capture", PROFILE, "--tcp", address, "-o", "/proc/self/fd/1")
            table = run("poll", PROFILE, "--tcp", address, "--count", 1, "--table")
        self.assertEqual((polled.returncode, captured.returncode), (0, 0))
        self.assertEqual(without_time(polled.stdout), without_time(shown))
        self.assertEqual(polled.stderr, "kzm-modbus: frame never: Illegal data address\n")
        self.assertEqual(captured.stdout, recorded + ": 2 snapshots, 2 of 3 frames\n")
        series = without_time(run("show", PROFILE, "--capture", recorded, "--json").stdout)
        self.assertEqual(series, without_time(shown) * 2)
        self.assertIn('"frame": "main"', printed.stdout)
        self.assertRegex(table.stdout, r"(?s)^Pump at \S+ unit 1, .*NAME.*Flow +0\.1.*\n\n$")
        self.assertEqual(table.stderr, polled.stderr)

    def test_mbpoll_reads_the_registers_of_a_served_capture(self):
        with simulator(PROFILE, CAPTURE) as address:
            port = address.rpartition(":")[2]
            for kind, first, expected in [("4", 10, MAIN.split()), ("3", 20, ["0007"])]:
                done = subprocess.run(["mbpoll", "-m", "tcp", "-p", port, "-a", "17", "-0", "-1", "-t", kind + ":hex",
                                       "-r", str(first), "-c", str(len(expected)), "127.0.0.1"],
                                      capture_output=True, text=True, timeout=10, check=True)
                self.assertEqual(re.findall(r"0x(\w{4})", done.stdout), expected, done.stdout)

    def test_requests_are_answered_one_by_one_or_all_at_once_and_what_is_no_modbus_ends_its_connection(self):
        capture = file("registers.json", capture_of((1, [
            ("two", "0A0B 0C0D", 0, {}), ("three", "1313 1111 1212", 0, {}),
            ("coils", "0001 0000 0001 0001 0000 0000 0000 0000 0000 0001", 0, {}),
            ("inputs", "0001 0000 0000 0000 0000 0000 0001 0000 0001", 0, {})])))
        rows = [[bytes.fromhex(side) for side in line.split("->")] for line in REQUESTS.splitlines()]
        with simulator(REGISTERS, capture) as served:
            address = served.split(":")

            def connect():
                return socket.create_connection(address, timeout=5)
            with connect() as waiting, connect() as client, client.makefile("rb") as answers:
                waiting.sendall(bytes.fromhex("0001 0000 0006 01"))
                for request, answer in [*rows, [b"".join(side) for side in zip(*rows)]]:
                    client.sendall(request)
                    self.assertEqual(answers.read(len(answer)), answer, request.hex())
                for garbage in ("474554202f20", "000100000001ff03", "0001000000ff0103", "000100010006010300100001"):
                    with connect() as other, contextlib.suppress(ConnectionResetError):
                        other.sendall(bytes.fromhex(garbage))
                        self.assertEqual(other.recv(1), b"", garbage)
                waiting.sendall(bytes.fromhex("03 0010 0001"))
                self.assertEqual(waiting.makefile("rb").read(11), bytes.fromhex("0001 0000 0005 01 03 02 0a0b"))

    def test_clients_that_do_not_wait_for_their_answers_end_no_simulator(self):
        with simulator(PROFILE, CAPTURE) as served:
            for _ in range(20):
                with socket.create_connection(served.split(":"), timeout=5) as client:
                    client.sendall(bytes.fromhex("0001 0000 0006 01 03 000a 0001") * 80)
            self.assertEqual(run("poll", PROFILE, "--tcp", served, "--count", 1).returncode, 0)

    def test_a_served_series_is_played_and_its_last_snapshot_stays(self):
        series = file("series.json", capture_of((1, [("slow", "0001", 0, {})]), (2, [("slow", "0002", 0, {})])))
        with simulator(PROFILE, series) as address:
            poll = start("poll", PROFILE, "--tcp", address, "--interval", 0.05, "--object", "Heat")
            values = [0]
            while values[-1] != 2:
                values.append(json.loads(poll.stdout.readline())["value"]["elements"]["out"]["value"])
            self.assertEqual(json.loads(poll.stdout.readline())["value"]["elements"]["out"]["value"], 2)
            self.assertEqual(end(poll), 0)
        self.assertEqual(sorted(set(values)), [0, 1, 2])

    def test_the_server_of_pymodbus_is_captured_as_it_is(self):
        profile = file("pymodbus.jsonc", json.dumps({"frames": [
            {"name": "coils", "function": "coils", "address": 2, "count": 11},
            {"name": "inputs", "function": "discrete inputs", "address": 1, "count": 1900},
            {"name": "holding", "function": "holding", "addresses": [7, 300, 6, 8, 5]},
            {"name": "input", "function": "input", "address": 1000, "count": 125},
            {"name": "nowhere", "function": "input", "address": 3000, "count": 2}],
            "objects": [{"name": "A", "value": {"frame": "holding", "address": 300, "type": "int16"}}]}))
        with pymodbus() as address:
            done = run("capture", profile, "--tcp", address, "-o", "/proc/self/fd/1")
        self.assertRegex(done.stderr, r"^kzm-modbus: frame nowhere: Illegal data address\n")
        frames = json.loads(done.stdout[:done.stdout.rindex("}") + 1])["snapshots"][0]["frames"]
        self.assertEqual([[int(register, 16) for line in frame["registers"] for register in line.split()]
                          for frame in frames],
                         [[n % 3 == 0 for n in range(2, 13)], [n % 5 == 0 for n in range(1, 1901)],
                          [n * 31 + 1 for n in (7, 300, 6, 8, 5)], [65535 - n for n in range(1000, 1125)]])

    def test_registers_are_captured_and_served_without_a_profile(self):
        recorded = file("registers.capture.json", "")
        with pymodbus() as address:
            done = run("capture", "--registers", "holding:7-206,coils:3-4,discrete-inputs:5", "--tcp", address, "-o", recorded)
        self.assertEqual(done.stdout, recorded + ": 1 snapshot, 4 of 4 frames\n")
        served = start("simulate", "--capture", recorded, "--listen", "127.0.0.1:0", stderr=None)
        address = served.stdout.readline().removeprefix("listening on ").strip()
        again = run("capture", "--registers", "holding:100-101,coils:3", "--tcp", address, "-o", "/proc/self/fd/1")
        self.assertEqual(end(served), 0)
        self.assertIn('"0C1D 0C3C"', again.stdout)
        old = file("old.json", capture_of((1, [("slow", "0001", 0, {})])))
        for status, told, command in [
                (1, "does not describe its frames", ["simulate", "--listen", "127.0.0.1:0", "--capture", old]),
                (1, 'the profile has no frame "holding-7"', ["show", PROFILE, "--capture", recorded]),
                *[(2, told, ["capture", "--tcp", "a", "-o", old, *more]) for told, more in [
                    ("exactly one of PROFILE, --registers is required", []),
                    ("exactly one of PROFILE, --registers is required", [PROFILE, "--registers", "holding:0"]),
                    ("525 requests are needed; at most 255", ["--registers", "holding:0-65535"]),
                    ("holding:1-2 and holding:2-3 overlap", ["--registers", "holding:1-2,coils:2,holding:2-3"]),
                    *[(f'"{text}" is not FUNCTION:FIRST-LAST', ["--registers", text])
                      for text in ("", "holding", "holding:", "holding:2-1", "holding:65536", "holding:0-", "words:1")]]]]:
            with self.subTest(command=command):
                done = run(*command)
                self.assertEqual((done.returncode, done.stdout), (status, ""))
                self.assertIn(told, done.stderr)

    def test_poll_goes_on_and_recovers_when_the_device_was_away(self):
        with simulator(PROFILE, CAPTURE) as address:
            poll = start("poll", PROFILE, "--tcp", address, "--interval", 0.02, "--object", "Note")
            objects, errors = lines_of(poll.stdout), lines_of(poll.stderr)
            self.assertEqual(errors.get(timeout=5), "kzm-modbus: frame never: Illegal data address")
        self.assertIn("Connection refused", errors.get(timeout=5))
        with simulator(PROFILE, file("more.json", capture_of((33, [(name, registers, 0, {}) for name, registers in [
                ("main", MAIN.replace("611B", "621B")), ("slow", "0000"), ("never", "0000")]]))), address):
            self.assertEqual(errors.get(timeout=5), "kzm-modbus: all frames are read again")
            values = [json.loads(objects.get(timeout=5))["value"]["value"][0]]
            while values[-1] != "b":
                values.append(json.loads(objects.get(timeout=5))["value"]["value"][0])
            self.assertEqual(end(poll), 0)

    def test_an_address_that_never_answers_times_out_or_is_interrupted_without_an_error_of_the_device(self):
        kept = file("untouched.json", "kept")
        with full_listener() as address:
            done = run("poll", PROFILE, "--tcp", address, "--timeout", 0.2, "--count", 1)
            self.assertEqual((done.returncode, done.stderr),
                             (4, f"kzm-modbus: no connection: {address}: Connection timed out\n"
                                 f"kzm-modbus: {address} unit 1: no frame could be read\n"))
            for command, status, told in [
                    (["poll"], 0, ""), (["poll", "--table"], 0, ""),
                    (["capture", "-o", kept], 4,
                     f"kzm-modbus: interrupted before a frame was read; {kept} is not written\n")]:
                before = connections_under_way(address)
                waiting = start(*command, PROFILE, "--tcp", address, "--timeout", 60)
                while connections_under_way(address) == before:
                    time.sleep(0.01)
                waiting.send_signal(signal.SIGINT)
                self.assertEqual((waiting.communicate(timeout=10), waiting.returncode), (("", told), status), command)
        self.assertEqual(pathlib.Path(kept).read_text(encoding="utf-8"), "kept")

    def test_a_device_that_cannot_be_reached_has_a_status_and_leaves_files_alone(self):
        kept = file("kept.json", "kept")
        for line, reason in [(["--tcp", "127.0.0.1:1"], "127.0.0.1:1: Connection refused"),
                             (["--rtu", "/nowhere/tty:9600:N"], "/nowhere/tty: No such file or directory")]:
            for command, *more in (["poll"], ["poll", "--table"], ["capture", "-o", kept]):
                done = run(command, PROFILE, *line, "--count", 2, "--interval", 0.01, *more)
                self.assertEqual(done.returncode, 4)
                self.assertRegex(done.stderr, f"^kzm-modbus: no connection: .*{reason}.*\nkzm-modbus: .* unit 1: no frame "
                                 "could be read\n$")
        with open(kept, encoding="utf-8") as stream:
            self.assertEqual(stream.read(), "kept")
        self.assertFalse([name for name in os.listdir(os.path.dirname(kept)) if ".part" in name])
        with simulator(PROFILE, CAPTURE) as taken:
            done = run("simulate", PROFILE, "--capture", CAPTURE, "--listen", taken)
        self.assertEqual((done.returncode, done.stderr),
                         (4, "kzm-modbus: cannot listen on %s: Address already in use\n" % taken))
