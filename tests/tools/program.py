"""Runs kzm-modbus: KZM_MODBUS is its command, with an emulator before it where there is one."""

import contextlib
import json
import os
import pathlib
import shlex
import signal
import socket
import subprocess
import tempfile
import threading
import unittest

COMMAND = shlex.split(os.environ["KZM_MODBUS"])
PROFILES = pathlib.Path(__file__).resolve().parents[2] / "profiles"
SERVER = pathlib.Path(__file__).resolve().parent / "pymodbus_server.py"
FOLDER = tempfile.TemporaryDirectory()
unittest.TestCase.maxDiff = None

PUMP = """{
    "device": {"model": "Pump"},
    "frames": [
        {"name": "main", "function": "holding", "address": 10, "count": 10},
        {"name": "slow", "function": "input", "address": 20, "count": 1},
        {"name": "never", "function": "holding", "address": 40, "count": 1}
    ],
    "objects": [
        {"name": "Flow", "unit": "m³/h", "value": {"address": 10, "type": "float32"}},
        {"name": "Total", "unit": "m³", "value": {"address": 12, "type": "uint32"}},
        {"name": "Level", "alias": "east", "unit": "%", "timestamp": {"constant": "2026-01-01T00:00:00.000Z"},
         "value": {"address": 14, "type": "uint16", "notAvailable": "0xFFFF"}},
        {"name": "Level", "alias": "west", "unit": "%", "value": {"address": 14, "type": "uint16"},
         "availability": {"address": 15, "type": "boolean"}},
        {"name": "Note", "value": {"address": 16, "type": "text", "count": 2}},
        {"name": "Heat", "unit": "°C", "elements": {
            "in": {"value": {"address": 18, "type": "int16"}},
            "out": {"value": {"address": 20, "type": "int16"}}}},
        {"name": "Raw", "plain": true, "elements": {
            "a": {"value": {"address": 18, "type": "int16"}},
            "a/b": {"value": {"address": 19, "type": "int16"}},
            "c": {"value": {"address": 40, "type": "int16"}}}},
        {"name": "Sum", "value": {"constant": 0.30000000000000004}},
        {"name": "Spare", "value": {"address": 40, "type": "uint16"}}
    ]
}"""

# Flow 0.1, Total 305419896, Level not available, its flag 0, Note "a" ESC "[m", Heat -5.
MAIN = "3DCC CCCD 1234 5678 FFFF 0000 611B 5B6D FFFB 0000"


def capture_of(*snapshots):
    """Each snapshot: its second, and its frames as (name, registers, more members)."""
    def time(second):
        return "2026-03-14T09:26:%06.3fZ" % second
    return json.dumps({"snapshots": [
        {"time": time(second), "frames": [
            {"frame": name, "registers": [registers], **({"time": time(own)} if own else {}), **more}
            for name, registers, own, more in frames]}
        for second, frames in snapshots]})


def file(name, content):
    path = pathlib.Path(FOLDER.name, name)
    path.write_bytes(content if isinstance(content, bytes) else content.encode())
    return str(path)


def run(*arguments):
    return subprocess.run([*COMMAND, *map(str, arguments)], capture_output=True, text=True, timeout=30, check=False)


def start(*arguments, **streams):
    streams = {"stdout": subprocess.PIPE, "stderr": subprocess.PIPE, "text": True, **streams}
    return subprocess.Popen([*COMMAND, *map(str, arguments)], **streams)


def end(process):
    """Ends it as a user does, and gives its exit status."""
    process.send_signal(signal.SIGINT)
    status = process.wait(timeout=10)
    for stream in (process.stdout, process.stderr):
        if stream:
            stream.close()
    return status


@contextlib.contextmanager
def simulator(profile, capture, address="127.0.0.1:0"):
    """Serves a capture, and gives the address."""
    process = start("simulate", profile, "--capture", capture, "--listen", address, stderr=None)
    try:
        yield process.stdout.readline().removeprefix("listening on ").strip()
    finally:
        status = end(process)
    assert status == 0, status


def device(answer_to):
    """Serves one client with what a function makes of its requests; gives its address."""
    listener = socket.create_server(("127.0.0.1", 0))

    def serve():
        with listener, listener.accept()[0] as client:
            while request := client.recv(300):
                client.sendall(answer_to(request))
    threading.Thread(target=serve, daemon=True).start()
    return "127.0.0.1:%d" % listener.getsockname()[1]


@contextlib.contextmanager
def pymodbus():
    """A server whose holding register n holds n * 31 + 1; gives its address."""
    with subprocess.Popen(["/usr/bin/python3", "-B", SERVER], stdin=subprocess.PIPE, stdout=subprocess.PIPE,
                          text=True) as server:
        try:
            yield "127.0.0.1:" + server.stdout.readline().strip()
        finally:
            server.stdin.close()
