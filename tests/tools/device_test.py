"""poll, capture and simulate against each other, software from elsewhere, and devices that misbehave."""

import json
import os
import queue
import re
import socket
import struct
import subprocess
import sys
import threading
import time
import unittest

from program import MAIN, PUMP, capture_of, end, file, run, simulator, start

PROFILE = file("pump.jsonc", PUMP)
CAPTURE = file("pump.capture.json", capture_of((33, [("main", MAIN, 0, {}), ("slow", "0007", 0, {})])))
COUNTER = file("counter.jsonc", """{
    "device": {"model": "Counter"},
    "frames": [{"name": "f", "function": "holding", "address": 0, "count": 2}],
    "objects": [{"name": "Count", "value": {"address": 0, "type": "uint32"}}]
}""")


class Device:
    """A Modbus TCP device that counts the requests it answers, and answers them as it is told to."""

    def __init__(self):
        self.behaviour = "answer"
        self.count = 0
        self.port = 0
        self.listen()

    def listen(self):
        self.listener = socket.create_server(("127.0.0.1", self.port))
        self.port = self.listener.getsockname()[1]
        threading.Thread(target=self.accept, args=(self.listener,), daemon=True).start()

    def accept(self, listener):
        while True:
            try:
                client = listener.accept()[0]
            except OSError:
                return
            threading.Thread(target=self.serve, args=(client,), daemon=True).start()

    def serve(self, client):
        with client:
            while request := client.recv(12):
                if self.behaviour in ("close", "gone"):
                    return
                if self.behaviour == "delay":
                    time.sleep(0.5)
                self.count += 1
                answer = {"exception": b"\x83\x02", "short": b"\x03\x02\x00\x01"}.get(
                    self.behaviour, b"\x03\x04" + struct.pack(">I", self.count))
                try:
                    client.sendall(request[:4] + struct.pack(">HB", len(answer) + 1, request[6]) + answer)
                except OSError:
                    return

    def behave(self, behaviour):
        self.behaviour = behaviour
        if behaviour == "gone":
            self.listener.shutdown(socket.SHUT_RDWR)
            self.listener.close()
        elif self.listener.fileno() < 0:
            self.listen()


def lines_of(stream):
    """The lines of a running process, as they come."""
    lines = queue.Queue()
    threading.Thread(target=lambda: [lines.put(line.rstrip()) for line in stream], daemon=True).start()
    return lines


def without_time(text):
    lines = [json.loads(line) for line in text.splitlines()]
    return json.loads(re.sub(r'"\d{4}-\d\d-\d\dT[^"]*"', '""', json.dumps([{**line, "time": ""} for line in lines])))


class DeviceTest(unittest.TestCase):
    maxDiff = None

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
        self.assertRegex(table.stdout,
                         r"(?s)^Pump at \S+ unit 1, .*NAME.*Flow +0\.1.*\nframe never: Illegal data address\n")

    def test_mbpoll_reads_the_registers_of_a_served_capture(self):
        with simulator(PROFILE, CAPTURE) as address:
            port = address.rpartition(":")[2]
            for kind, first, expected in [("4", 10, MAIN.split()), ("3", 20, ["0007"])]:
                done = subprocess.run(["mbpoll", "-m", "tcp", "-p", port, "-a", "17", "-0", "-1", "-t", kind + ":hex",
                                       "-r", str(first), "-c", str(len(expected)), "127.0.0.1"],
                                      capture_output=True, text=True, timeout=10, check=True)
                self.assertEqual(re.findall(r"0x(\w{4})", done.stdout), expected, done.stdout)

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

    def test_poll_goes_on_and_recovers_from_a_device_that_misbehaves(self):
        device = Device()
        poll = start("poll", COUNTER, "--tcp", "127.0.0.1:%d" % device.port, "--timeout", 0.25, "--interval", 0.02)
        objects, errors = lines_of(poll.stdout), lines_of(poll.stderr)

        def next_object():
            return json.loads(objects.get(timeout=5))["value"]

        for behaviour, reason, quality in [
                ("close", r"frame f: .*(closed|reset)", "Good"), ("delay", r"frame f: .*timed out", "Good"),
                ("exception", r"frame f: Illegal data address", "Bad"), ("short", r"frame f: .+", "Good"),
                ("gone", r"no connection: Connection refused", "Good")]:
            with self.subTest(behaviour=behaviour):
                while not objects.empty():
                    last = next_object()
                last = next_object()
                device.behave(behaviour)
                while not re.search(reason, errors.get(timeout=5)):
                    pass
                while not objects.empty():
                    next_object()
                kept = [next_object(), next_object()][1]
                self.assertEqual(kept["quality"], quality)
                self.assertGreaterEqual(kept["value"], last["value"])
                device.behave("answer")
                while errors.get(timeout=5) != "kzm-modbus: all frames are read again":
                    pass
                while next_object()["value"] <= kept["value"]:
                    pass
                self.assertEqual(next_object()["quality"], "Good")
        self.assertEqual(end(poll), 0)

    def test_a_device_that_cannot_be_reached_has_a_status_and_leaves_files_alone(self):
        device = Device()
        device.behave("gone")
        address = "127.0.0.1:%d" % device.port
        kept = file("kept.json", "kept")
        for arguments in (["poll"], ["capture", "-o", kept]):
            done = run(arguments[0], COUNTER, "--tcp", address, "--count", 2, "--interval", 0.01, *arguments[1:])
            self.assertEqual(done.returncode, 4)
            self.assertEqual(done.stderr.count("no connection: Connection refused"), 1)
        with open(kept, encoding="utf-8") as stream:
            self.assertEqual(stream.read(), "kept")
        self.assertFalse([name for name in os.listdir(os.path.dirname(kept)) if ".part" in name])
        with simulator(PROFILE, CAPTURE) as taken:
            done = run("simulate", PROFILE, "--capture", CAPTURE, "--listen", taken)
        self.assertEqual((done.returncode, done.stderr),
                         (4, "kzm-modbus: cannot listen on %s: Address already in use\n" % taken))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
