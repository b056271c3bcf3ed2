#!/usr/bin/python3
"""Runs the benchmarks of a build folder and prints one table. Times are the best of all repetitions: what others do on
the machine only ever adds to them."""

import argparse
import json
import os
import statistics
import subprocess
import tempfile
import timeit

from pymodbus.constants import Endian
from pymodbus.payload import BinaryPayloadDecoder

SIZES = (10, 100, 1000, 10000)
PYMODBUS = {
    "uint16": "decode_16bit_uint",
    "int32": "decode_32bit_int",
    "int64": "decode_64bit_int",
    "float32": "decode_32bit_float",
    "float32-swapped": "decode_32bit_float",
}


class Table:
    """Prints rows as they come and counts those that miss their aim."""

    missed = 0

    def section(self, title, figure, floor):
        print(f"\n{title:<52}{figure:>12}{floor:>12}{'ratio':>8}  aim")

    def row(self, what, figure, floor=None, most=None, least=None, unit=""):
        ratio = figure / floor if floor else None
        judged = figure if floor is None else ratio
        verdict = ""
        if most is not None or least is not None:
            good = judged is not None and (judged <= most if most is not None else judged >= least)
            verdict = f"{'at most' if most is not None else 'at least'} {most if most is not None else least}{unit}  "
            verdict += "ok" if good else "MISSED"
            self.missed += not good
        cells = [f"{figure:,.{digits(figure)}f}", "" if floor is None else f"{floor:,.{digits(floor)}f}",
                 "" if ratio is None else f"{ratio:.2f}"]
        print(f"  {what:<50}{cells[0]:>12}{cells[1]:>12}{cells[2]:>8}  {verdict}".rstrip())


def digits(number):
    return 0 if number == int(number) or number >= 1000 else 1


def run(program, quick):
    """The repetitions of each benchmark by its name."""
    pace = ["--benchmark_min_time=0.0001"] if quick else [
        "--benchmark_min_time=0.02", "--benchmark_repetitions=15", "--benchmark_enable_random_interleaving=true"]
    with tempfile.NamedTemporaryFile() as out:
        subprocess.run([program, f"--benchmark_out={out.name}", *pace], check=True,
                       stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        report = json.load(out)
    runs = {}
    for one in sorted(report["benchmarks"], key=lambda one: one["family_index"]):
        if one.get("error_occurred"):
            raise SystemExit(f"{one['name']}: {one['error_message']}")
        if one["run_type"] == "iteration":
            runs.setdefault(one["name"], []).append(one)
    return runs


def best(runs, name):
    return min(one["cpu_time"] for one in runs[name])


def pairs(runs, section, floor):
    """The rows of a section, whose two sides must have decoded the same value."""
    for name in runs:
        if name.startswith(section + "/") and name.endswith("/library"):
            row = name[: -len("/library")]
            labels = [runs[f"{row}/{side}"][0].get("label") for side in ("library", floor)]
            if labels[0] != labels[1]:
                raise SystemExit(f"{row}: {labels[0]} by the library, {labels[1]} by the floor")
            yield row.removeprefix(section + "/"), best(runs, name), best(runs, f"{row}/{floor}"), labels[0]


def pymodbus_time(row, label, quick):
    expected = json.loads(label)
    words = Endian.Little if row.endswith("swapped") else Endian.Big

    def decode():
        decoder = BinaryPayloadDecoder.fromRegisters(expected["registers"], byteorder=Endian.Big, wordorder=words)
        return getattr(decoder, PYMODBUS[row])()

    if decode() != expected["value"]:
        raise SystemExit(f"{row}: {decode()} by pymodbus, {expected['value']} by the library")
    count = 1 if quick else 2000
    return min(timeit.repeat(decode, number=count, repeat=10)) / count * 1e9


def report_elements(table, runs):
    table.section("One element through Build, beside the same by hand", "ns", "by hand")
    for row, library, floor, _ in pairs(runs, "element", "floor"):
        table.row(row, library, floor, most=1.5)


def report_objects(table, runs):
    for pattern, title, most in (("ten", "One object of a model, ten of the objects in turn", 1.3),
                                 ("every", "One object of a model, all of the objects in turn", 1.3),
                                 ("attributes", "The caller's part of that: the JSON attributes alone", None)):
        table.section(title, "ns", "of 10")
        floor = best(runs, f"object/{pattern}/10")
        for size in SIZES:
            table.row(f"{size:,} objects", best(runs, f"object/{pattern}/{size}"), floor, most=most)
    table.section("Heap allocations of one object", "count", "JSON alone")
    for size in SIZES:
        one = runs[f"object/ten/{size}"][0]
        table.row(f"{size:,} objects", one["allocations"], one["json"], most=1)


def report_threads(table, runs):
    table.section("Objects per millisecond with two threads", "two", "one")
    for cache, title in (("plain-cache", "a cache without locks"), ("gateway-cache", "the gateway's register cache")):
        one, two = (max(run["items_per_second"] for run in runs[f"threads/{cache}/real_time/threads:{count}"])
                    for count in (1, 2))
        table.row(title, two / 1e3, one / 1e3, least=1.9)


def report_logging(table, runs):
    table.section("One object, log lines off", "ns", "no lines")
    for row, library, floor, _ in pairs(runs, "logging", "floor"):
        table.row(f"its value a {row}", library, floor, most=1.02)


def report_watching(table, runs):
    table.section("One object, nobody watching", "ns", "unwatchable")
    for row, library, floor, _ in pairs(runs, "watching", "floor"):
        table.row(f"its value a {row}", library, floor, most=1.02)
    table.section("One object explained", "ns", "one request")
    for size in SIZES:
        table.row(f"{size:,} objects", best(runs, f"explain/{size}"), best(runs, f"object/every/{size}"), most=20)
    table.row("10,000 objects, all of them", best(runs, "explain/10000") * 10000 / 1e6, most=1000, unit=" ms")


def report_peers(table, runs, quick):
    table.section("One value beside libmodbus' getters", "ns", "libmodbus")
    rows = list(pairs(runs, "peer", "libmodbus"))
    for row, library, floor, _ in rows:
        table.row(row, library, floor)
    table.section("One value by pymodbus, beside this library", "ns", "library")
    for row, library, _, label in rows:
        table.row(row, pymodbus_time(row, label, quick), library)


def libraries(build):
    return {name: os.path.realpath(os.path.join(build, path)) for name, path in (
        ("the library", "src/libkzm-modbus-device-model.so"),
        ("the dictionary alone", "benchmarks/libload-dictionary.so"),
        ("nothing", "benchmarks/libload-nothing.so"))}


def report_loading(table, build, quick):
    costs = {}
    for _ in range(1 if quick else 100):
        for name, path in libraries(build).items():
            command = [f"{build}/benchmarks/load-cost", os.path.realpath(f"{build}/platform/libkzm-platform.so"), path]
            cost = json.loads(subprocess.run(command, check=True, capture_output=True).stdout)
            costs.setdefault(name, []).append(cost)
    for key, title in (("us", "From dlopen to ready"), ("heap", "Heap taken by loading"),
                       ("private", "Private pages after loading")):
        table.section(title, {"us": "us", "heap": "bytes", "private": "kB"}[key], "nothing")
        medians = {name: statistics.median(cost[key] for cost in of_one) for name, of_one in costs.items()}
        for name in ("the library", "the dictionary alone"):
            table.row(name, medians[name], medians["nothing"])


def stripped_size(path, tools):
    with tempfile.NamedTemporaryFile() as out:
        subprocess.run([f"{tools}strip", "-o", out.name, path], check=True)
        return os.path.getsize(out.name)


def count_lines(command, text):
    output = subprocess.run(command, check=True, capture_output=True, text=True).stdout
    return sum(text in line for line in output.splitlines())


def initialisers(path):
    """Pointers in .init_array, all libraries having one of the compiler's own."""
    output = subprocess.run(["readelf", "-SW", path], check=True, capture_output=True, text=True).stdout
    fields = next(line for line in output.splitlines() if " .init_array " in line).split("INIT_ARRAY")[1].split()
    with open(path, "rb") as file:
        pointer = 8 if file.read(5)[4] == 2 else 4  # the class byte of the ELF header
    return int(fields[2], 16) // pointer


def report_files(table, build, machine, tools):
    found = libraries(build)
    for title, unit, measure, most in (
            ("Stripped size", "kB", lambda path: stripped_size(path, tools) / 1000, 600),
            ("Relocations, all", "count", lambda path: count_lines(["readelf", "-rW", path], " R_"), None),
            ("Relocations, relative", "count", lambda path: count_lines(["readelf", "-rW", path], "_RELATIVE"), None),
            ("Initialisers", "count", initialisers, None)):
        table.section(f"{title}, {machine}", unit, "nothing")
        for name in ("the library", "the dictionary alone"):
            table.row(name, measure(found[name]), measure(found["nothing"]))
        if most is not None:
            table.row("the library", measure(found["the library"]), most=most, unit=" kB")


def machine():
    with open("/proc/cpuinfo") as file:
        model = next(line.split(":")[1].strip() for line in file if line.startswith("model name"))
    return f"{model}, {os.cpu_count()} cores; load {os.getloadavg()[0]:.1f}"


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("build")
    parser.add_argument("--quick", action="store_true")
    parser.add_argument("--arm", help="a build folder for 32-bit ARM")
    options = parser.parse_args()
    print(machine())
    runs = run(f"{options.build}/benchmarks/kzm-benchmarks", options.quick)
    table = Table()
    report_elements(table, runs)
    report_objects(table, runs)
    report_threads(table, runs)
    report_logging(table, runs)
    report_watching(table, runs)
    report_peers(table, runs, options.quick)
    report_loading(table, options.build, options.quick)
    report_files(table, options.build, "x86-64", "")
    if options.arm:
        report_files(table, options.arm, "32-bit ARM", "arm-linux-gnueabihf-")
    print(f"\n{table.missed} figures miss their aim" if table.missed else "\nEvery figure meets its aim")


main()
