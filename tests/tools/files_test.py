"""check, show and the command line: what they print, and what they end with."""

import contextlib
import json
import pathlib
import re
import unittest

from program import MAIN, PROFILES, PUMP, capture_of, file, run

PROFILE = file("pump.jsonc", PUMP)
CAPTURE = file("pump.capture.json", capture_of((33, [("main", MAIN, 0, {"quality": "Questionable"}),
                                                     ("slow", "0007", 20, {})])))
SHOW = ["show", PROFILE, "--capture"]
POLL = ["poll", PROFILE, "--count", "1"]


class FilesTest(unittest.TestCase):
    def test_every_failure_has_its_status_and_one_line_that_tells_why(self):
        rows = [
            (0, [], ["--help"], r"(?s)check.*show.*poll.*capture.*simulate.*Exit status:"),
            (0, [], ["--version"], r"^kzm-modbus \d+\.\d+\.\d+$"),
            *[(0, [], [name, "--help"], r"Examples?:\n +kzm-modbus " + name)
              for name in ("check", "show", "poll", "capture", "simulate", "dictionary", "read", "probe", "guess")],
            (1, SHOW, [PROFILE], r"pump.jsonc has errors"),
            (1, ["check"], [file("junk", bytes(range(256)))], r"junk:1: error: .*"),
            (1, ["check"], [file("empty", "")], r"empty:1: error: .*"),
            (2, [], [], r"a command is required \(see kzm-modbus --help\)"),
            (2, [], ["draw"], r"draw"),
            (2, ["check"], [], r"check: PROFILE is required \(see kzm-modbus check --help\)"),
            (2, ["check"], [PROFILE, "more"], r'check: unexpected argument "more"'),
            (2, POLL, ["--tcp"], r"poll: --tcp needs a value"),
            (2, POLL, ["--tcp", "a", "--json", "--table"], r"poll: --json cannot be combined with --table"),
            *[(2, POLL, more, "exactly one of --tcp, --rtu is required") for more in ([], ["--tcp", "a", "--rtu", "x:9600:N"])],
            (2, ["--exact"], SHOW, r"show: --exact must come after the command"),
            *[(2, POLL, ["--tcp", text], r'--tcp: "' + re.escape(text) + '" is not HOST.*with a port from 1')
              for text in ("host:", ":502", "host:0", "host:65536", "host:5x", "::1", "[::1", "[]:502", "[::1]502",
                          "")],
            *[(2, POLL, ["--rtu", text], r"is not DEVICE:BAUD:PARITY")
              for text in ("/dev/x", "/dev/x:9600", ":9600:N", "/dev/x:9600:", "/dev/x:9600:X", "/dev/x:1e4:N")],
            (2, POLL, ["--rtu", "/dev/x:12345:N"], r"12345 is not a baud rate"),
            (2, POLL, ["--rtu", "/dev/x:9600:N", "--unit", "255"], r"has unit 0 to 247$"),
            *[(2, POLL, ["--tcp", "a", "--unit", text], r"--unit: .* is not a whole number from 0 to 255")
              for text in ("-1", "256", "one", "")],
            (2, POLL, ["--tcp", "a", "--unit", "0248"], r"a:502 unit 248: a Modbus TCP device has unit 0 to 247, or 255"),
            *[(2, ["poll", PROFILE, "--tcp", "a"], ["--count", text], r"is not a whole number from 1 to 1000000000")
              for text in ("0", "-1", "99999999999999999999", "two")],
            *[(2, POLL, ["--tcp", "a", "--interval", text], r"is not a number of seconds from 0.001 to 86400")
              for text in ("0", "-1", "nan", "inf", "1e300", "soon")],
            (2, SHOW, [CAPTURE, "--log", "wraning"], r'--log: "wraning" is unknown; did you mean "warning"\?'),
            (2, ["chek"], [PROFILE], r'no command "chek"; did you mean "check"\?'),
            (2, POLL, ["--tcp", "a", "--cuont=3"], r'poll: no option "--cuont"; did you mean "--count"\?'),
            (2, POLL, ["--tpc", "a"], r'poll: no option "--tpc"; did you mean "--tcp"\?'),
            (2, ["simulate", PROFILE, "--capture"], [CAPTURE, "--listen", "localhost"], r"is not HOST:PORT"),
            (3, ["check"], ["/nowhere/profile"], r"/nowhere/profile: cannot read: No such file"),
            (3, ["check"], ["/proc/self"], r"/proc/self: cannot read: Is a directory"),
            (3, ["check"], ["/dev/zero"], r"larger than 64 MiB"),
            (3, ["capture", PROFILE, "--tcp", "a"], ["-o", "/nowhere/x"], r"/nowhere/x: cannot write: No such file"),
            (3, ["capture", PROFILE, "--tcp", "a"], ["-o", ""], r"cannot write: No such file"),
            (5, SHOW, [CAPTURE, "--object", "level"], r'"level"; did you mean "Level/east" or "Level/west"\?'),
            (5, SHOW, [CAPTURE, "--object", "Flow/x"], r'"Flow/x"; did you mean "Flow"\?'),
            *[(5, SHOW, [CAPTURE, "--at", at], f'no snapshot at "{at}"; the capture has 1 snapshot, from .*33.000Z to .*33.000Z; give a number')
              for at in ("0", "2", "09:27")],
            (5, ["show", f"{PROFILES}/energy-meter.jsonc", "--capture"], [f"{PROFILES}/energy-meter.capture.json", "--object", "hz"], r'did you mean "Hz"\?'),
        ]
        for status, command, arguments, text in rows:
            with self.subTest(arguments=command + arguments):
                done = run(*command, *arguments)
                self.assertEqual(done.returncode, status, done.stderr)
                self.assertRegex(done.stderr if status > 1 or command == SHOW else done.stdout, text)
                if status > 1:
                    self.assertEqual((done.stderr.count("\n"), done.stdout), (1, ""))

    def test_check_tells_every_problem_then_counts(self):
        idle = '"frames": [\n{"name": "idle", "function": "coils", "address": 0, "count": 1},'
        unused = PUMP.replace('"frames": [', idle)
        rows = [
            (0, PUMP, r"^\S+: 9 objects in 3 frames; 0 errors, 0 warnings\n$"),
            (6, unused, r"(?s)^\S+:4: warning: /frames/0.*\n\S+: 9 objects in 4 frames; 0 errors, 1 warning\n$"),
            (1, unused.replace("float32", "float33").replace('40, "type": "uint16"', '50, "type": "uint16"'),
             r"^\S+:10: error: /objects/0/\S+: .*\n\S+:25: error: /objects/8/\S+: .*\n\S+: 2 errors, 0 warnings\n$"),
        ]
        for status, text, expected in rows:
            done = run("check", file("checked.jsonc", text))
            self.assertEqual((done.returncode, done.stderr), (status, ""), done.stdout)
            self.assertRegex(done.stdout, expected)

    def test_an_input_is_never_written_over_whatever_its_name(self):
        profile = pathlib.Path(file("precious.jsonc", PUMP))
        symbolic, hard = profile.with_name("symbolic.jsonc"), profile.with_name("hard.jsonc")
        symbolic.symlink_to(profile.name)
        hard.hardlink_to(profile)
        respelt = profile.parent / ".." / profile.parent.name / "." / profile.name
        for source, target in [(profile, profile), (profile, respelt), (profile, symbolic), (symbolic, profile),
                               (profile, hard), (profile, "/proc/self/cwd/precious.jsonc")]:
            with self.subTest(source=source, target=target), contextlib.chdir(profile.parent):
                done = run("capture", source, "--tcp", "127.0.0.1:1", "-o", target)
                self.assertEqual((done.returncode, done.stdout), (2, ""))
                self.assertIn(f"{target}: would be written over, but is read by this command", done.stderr)
                self.assertEqual(profile.read_text(encoding="utf-8"), PUMP)

    def test_a_table_aligns_and_tells_why_a_value_is_missing(self):
        done = run(*SHOW, CAPTURE)
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        now = "2026-03-14T09:26:33.000Z"
        self.assertEqual(done.stdout.splitlines(), [
            "NAME       ALIAS  VALUE                                         UNIT  QUALITY       DATE-TIME",
            "Flow                                                       0.1  m³/h  Questionable  " + now,
            "Total                                                305419896  m³    Questionable  " + now,
            "Level      east   not available: the device sent 0xFFFF         %     Bad           2026-01-01T00:00:00.000Z",
            "Level      west   not available by its flag                     %     Bad           " + now,
            "Note              a?[m                                                Questionable  " + now,
            "Heat: in                                                    -5  °C    Questionable  " + now,
            "Heat: out         frame slow is out of date (13 s, limit 12 s)  °C    Bad           " + now,
            "Raw: a                                                      -5",
            "Raw: a/b                                                     0",
            "Raw: c            frame never was never received",
            "Sum                                        0.30000000000000004        Good          " + now,
            "Spare             frame never was never received                      Bad           " + now,
        ])

    def test_a_series_is_replayed_with_the_clock_of_each_snapshot(self):
        series = file("series.json", capture_of((0, [("slow", "0001", 0, {})]), (12, []), (13, []),
                                                (14, [("slow", "0002", 0, {})])))
        done = run(*SHOW, series, "--object", "Heat", "--json")
        lines = [json.loads(line) for line in done.stdout.splitlines()]
        self.assertEqual([(line["time"][17:19], line["value"]["elements"]["out"].get("value"),
                           line["why"].split("; ")[1:]) for line in lines],
                         [("00", 1, []), ("12", 1, []), ("13", None, ["out: frame slow is out of date (13 s, limit 12 s)"]),
                          ("14", 2, [])])
        for at, shown in [("1", 0), ("3", 2), ("2026-03-14T09:26:14.000Z", 3), ("26:12", 1)]:
            self.assertEqual(run(*SHOW, series, "--object", "Heat", "--json", "--at", at).stdout.splitlines(),
                             done.stdout.splitlines()[shown:shown + 1])
        self.assertRegex(run(*SHOW, series).stdout,
                         r"(?s)^2026-03-14T09:26:00.000Z\nNAME.*\n\n2026-03-14T09:26:12.000Z\nNAME")

    def test_old_values_have_their_age_and_raw_ones_their_registers(self):
        old = file("old.json", capture_of((33, [("main", MAIN, 30, {}), ("slow", "0007", 31, {})])))
        show = [*SHOW, old, "--object", "Flow", "--object", "Heat"]
        self.assertEqual([re.split(" {2,}", line)[-1] for line in run(*show).stdout.splitlines()],
                         ["AGE", "3 s", "3 s", "2026-03-14T09:26:33.000Z"])
        self.assertEqual([re.split(" {2,}", line)[-2:] for line in run(*show, "--raw").stdout.splitlines()],
                         [["REGISTERS", "AGE"], ["3DCC CCCD", "3 s"], ["FFFB", "3 s"], ["0007", "2 s"]])
        flow, heat = map(json.loads, run(*show, "--raw", "--json").stdout.splitlines())
        self.assertEqual((flow["reason"], flow["statusCode"], flow["received"], flow["raw"]),
                         ("good", 0, "2026-03-14T09:26:30.000Z", [{"role": "value", "function": 3, "address": 10,
                          "registers": "3DCC CCCD", "frame": "main", "age": 3.0}]))
        self.assertEqual([(one["role"], one["address"]) for one in heat["raw"]], [("in / value", 18), ("out / value", 20)])

    def test_the_examples_become_the_expected_objects_and_alarms(self):
        for command, profile, capture, expected in [
                (["show", "--exact"], "energy-meter", "energy-meter", "energy-meter"),
                (["show", "--exact"], "sunspec-inverter", "sunspec-inverter", "sunspec-inverter"),
                (["show", "--exact"], "circuit-breaker", "circuit-breaker", "circuit-breaker"),
                (["alarms", "--all"], "energy-meter", "energy-meter.series", "energy-meter.alarms"),
                (["alarms", "--all"], "circuit-breaker", "circuit-breaker", "circuit-breaker.alarms")]:
            done = run(*command, PROFILES / (profile + ".jsonc"), "--json", "--capture",
                       PROFILES / (capture + ".capture.json"))
            objects = json.loads((PROFILES / (expected + ".expected.json")).read_text(encoding="utf-8"))
            self.assertEqual([json.loads(line) for line in done.stdout.splitlines()], objects)

    def test_numbers_have_the_digits_of_their_element_or_all_when_asked(self):
        rows = [  # the value, its registers, the number shown, all digits
            ('{"address": %d, "type": "float32"}', "3DCC CCCD", "0.1", "0.10000000149011612"),
            ('{"address": %d, "type": "float32"}', "7F7F FFFF", "3.4028235e+38", "3.4028234663852886e+38"),
            ('{"address": %d, "type": "float32", "scale": 0.1}', "4366 4CCD", "23.03", "23.030000305175783"),
            ('{"address": %d, "type": "uint16-to-float", "scale": 0.1}', "001D", "2.9", "2.9000000000000004"),
            ('{"address": %d, "type": "uint32-to-float", "scale": 0.1}', "075B CD15", "12345678.9", "12345678.9"),
            ('{"address": %d, "type": "float64"}', "4007 3333 3333 3334", "2.9000000000000004", "2.9000000000000004"),
            ('{"address": %d, "type": "float64", "scale": 0.1}', "403D 0000 0000 0000", "2.9", "2.9000000000000004"),
            ('{"address": %d, "type": "uint64"}', "0020 0000 0000 0000", "9007199254740992", "9007199254740992"),
            ('{"chain": "product", "inputs": {"a": {"address": %d, "type": "float32"}, "b": {"constant": 3}}}', "3DCC CCCD",
             "0.3", "0.30000000447034836"),
            ('{"chain": "sum", "inputs": {"a": {"address": %d, "type": "uint16-to-float", "scale": 0.1},'
             ' "b": {"constant": 0.2}}}', "0001", "0.3", "0.30000000000000004"),
        ]
        objects, words = [], []
        for number, (value, registers, _, _) in enumerate(rows):
            objects.append('{"name": "%d", "value": %s}' % (number, value % len(words)))
            words += registers.split()
        profile = file("digits.jsonc", """{"frames": [{"name": "all", "function": "holding", "address": 0, "count": %d}],
            "objects": [%s, {"name": "plain", "plain": true, "elements": {"a": {"value": {"address": 0, "type": "float32"}}}}]
            }""" % (len(words), ", ".join(objects)))
        show = ["show", profile, "--capture", file("digits.json", capture_of((1, [("all", " ".join(words), 0, {})])))]
        for options, shown in [([], 2), (["--exact"], 3)]:
            lines = [re.sub(r'.*"value":([^{}]*?)}.*', r"\1", line) for line in
                     run(*show, "--json", *options).stdout.splitlines()]
            self.assertEqual(lines, [row[shown] for row in [*rows, rows[0]]])
            cells = [line.split() for line in run(*show, *options).stdout.splitlines()[1:]]
            self.assertEqual([line[2 if line[0] == "plain:" else 1] for line in cells], lines)

    def test_a_custom_key_finds_its_object_and_comes_back_whole(self):
        key = "7b8_e7_9b_a4_ff_28"
        custom = PUMP.replace('"name": "Flow", "unit"', f'"key": "{key}", "unit"')
        show = ["show", file("custom.jsonc", custom), "--capture", CAPTURE, "--object", key]
        line = json.loads(run(*show, "--json").stdout)
        self.assertEqual((line["value"]["_id"], line["value"]["name"], line["value"]["unit"], line["alias"]),
                         (key, "Measurement.CustomMeasurement", "m³/h", "盤\ufffd("))
        self.assertIn("Measurement.CustomMeasurement", run(*show).stdout)

    def test_a_table_shows_the_parts_that_the_device_fills(self):
        done = run("show", PROFILES / "circuit-breaker.jsonc", "--object", "25",
                   "--capture", PROFILES / "circuit-breaker.capture.json")
        self.assertEqual([re.split(" {2,}", line)[:4] for line in done.stdout.splitlines()[1:]], [
            ["Alarm.VoltageLossAlarm: snapshot_rms_current_phs_a", "1234.5", "A", "Good"],
            ["Alarm.VoltageLossAlarm: snapshot_rms_current_phs_b", "1180.25", "A", "Good"],
            ["Alarm.VoltageLossAlarm: snapshot_rms_current_phs_c", "not available: the device sent 0x7FC00000", "A", "Bad"],
            ["Alarm.VoltageLossAlarm: state", "Active", "Good", "2026-03-02T14:05:41.000Z"],
        ])

    def test_log_lines_go_to_standard_error_when_asked_for(self):
        for level, shown in [((), False), (("--log", "6"), True), (("--log", "information"), True)]:
            done = run(*SHOW, CAPTURE, "--object", "Spare", *level)
            self.assertEqual("[DataModel::" in done.stderr, shown, done.stderr)
