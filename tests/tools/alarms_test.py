"""The computed alarms of recorded series and of a live device."""

import json
import unittest

from program import PUMP, capture_of, end, file, run, simulator, start

PROFILE = file("breaker.jsonc", """{
    "device": {"model": "Breaker"},
    "frames": [
        {"name": "main", "function": "holding", "address": 100, "count": 2},
        {"name": "slow", "function": "holding", "address": 200, "count": 1}
    ],
    "alarms": [
        {"name": "Over current", "alias": "over", "priority": "HIGH", "type": "Electrical", "description": "Above 100 A",
         "chain": "greater", "left": {"address": 101, "type": "uint16"}, "right": {"constant": 100}},
        {"name": "Breaker moved", "alias": "moved", "priority": "LOW", "changes": true, "chain": "not equal",
         "left": {"address": 100, "type": "uint16"}, "right": {"previous": "position"}},
        {"name": "Hot", "alias": "hot", "priority": "MEDIUM", "chain": "greater",
         "left": {"address": 200, "type": "uint16", "notAvailable": "0xFFFF"}, "right": {"constant": 60}}
    ],
    "objects": [{"name": "Position", "value": {"address": 100, "type": "uint16"}}]
}""")

# A new state; the same again; over current, and the slow frame too old; then without value, then Bad.
SERIES = file("series.json", capture_of(
    (1, [("main", "0001 0064", 0, {}), ("slow", "003D", 0, {})]),
    (2, [("main", "0002 0064", 0, {})]),
    (3, [("main", "0002 0064", 0, {})]),
    (14, [("main", "0002 0065", 0, {})]),
    (15, [("main", "0002 0065", 0, {}), ("slow", "FFFF", 0, {})]),
    (16, [("main", "0003 0000", 0, {"quality": "Bad"})])))

HISTORY = """\
1 Over current: Inactive Good
1 Breaker moved: Inactive Bad
1 Hot: Active Good
2 Breaker moved: Active Good
3 Breaker moved: Inactive Good
14 Over current: Active Good
14 Hot: 42 Bad: input left: frame slow is out of date (13 s, limit 12 s)
16 Over current: 42 Bad: input left: frame main is marked Bad; the value is the last one received
16 Breaker moved: 42 Bad: input left: frame main is marked Bad; the value is the last one received
"""


def history(lines):
    text = ""
    for line in map(json.loads, lines):
        state = line["value"]["elements"]["state"]
        text += "%d %s: %s %s%s\n" % (int(line["time"][17:19]), line["value"]["elements"]["customer_alarm_name"]["value"],
                                      state["value"] or line["status"], state["quality"],
                                      ": " + line["why"] if "why" in line else "")
    return text


class AlarmsTest(unittest.TestCase):
    def test_a_series_is_replayed_with_the_clock_and_the_previous_values_of_its_snapshots(self):
        done = run("alarms", PROFILE, "--capture", SERIES, "--json")
        self.assertEqual((done.returncode, done.stderr), (0, ""))
        self.assertEqual(history(done.stdout.splitlines()), HISTORY)
        line = json.loads(done.stdout.splitlines()[0])
        self.assertEqual({key: line[key] for key in line if key != "value"}, {
            "name": "Alarm.CustomAlarm", "alias": "over", "status": 0, "momentary": False,
            "reason": "good", "statusCode": 0, "received": "2026-03-14T09:26:01.000Z",
            "time": "2026-03-14T09:26:01.000Z"})
        self.assertEqual({name: element["value"] for name, element in line["value"]["elements"].items()}, {
            "state": "Inactive", "criticality": "High", "type": "Electrical", "customer_alarm_name": "Over current",
            "customer_alarm_description": "Above 100 A"})
        self.assertEqual(line["value"]["elements"]["state"]["datetime"], "2026-03-14T09:26:01.000Z")
        every = run("alarms", PROFILE, "--capture", SERIES, "--json", "--all").stdout.splitlines()
        self.assertEqual(len(every), 6 * 3)
        self.assertEqual(json.loads(every[1])["momentary"], True)

    def test_lines_stay_in_the_columns_of_the_first_evaluation(self):
        lines = run("alarms", PROFILE, "--capture", SERIES).stdout.splitlines()
        self.assertEqual(lines[0], "TIME                      ALARM          ALIAS  STATE     QUALITY       CRITICALITY  "
                         "KIND       TYPE        DESCRIPTION  WHY UNKNOWN")
        self.assertEqual(lines[6:8], [
            "2026-03-14T09:26:14.000Z  Over current   over   Active    Good          High         lasting    Electrical  "
            "Above 100 A",
            "2026-03-14T09:26:14.000Z  Hot            hot    unknown   Bad           Medium       lasting"
            "                             input left: frame slow is out of date (13 s, limit 12 s)"])
        self.assertEqual(len(lines), 1 + len(HISTORY.splitlines()))

    def test_a_live_device_tells_each_change_as_it_comes(self):
        moves = file("moves.json", capture_of((1, [("main", "0001 0000", 0, {}), ("slow", "0000", 0, {})]),
                                              (1.3, [("main", "0001 00C8", 0, {})])))
        with simulator(PROFILE, moves) as address:
            watch = start("alarms", PROFILE, "--tcp", address, "--interval", 0.02, "--json")
            told = [json.loads(watch.stdout.readline())["value"]["elements"] for _ in range(5)]
            self.assertEqual(end(watch), 0)
        self.assertEqual([(one["customer_alarm_name"]["value"], one["state"]["value"], one["state"]["quality"])
                          for one in told if one["customer_alarm_name"]["value"] != "Hot"],
                         [("Over current", "Inactive", "Good"), ("Breaker moved", "Inactive", "Bad"),
                          ("Breaker moved", "Inactive", "Good"), ("Over current", "Active", "Good")])

    def test_wrong_use_has_a_status(self):
        pump = file("pump.jsonc", PUMP)
        for arguments, status in [([pump, "--tcp", "127.0.0.1:1"], 5), ([PROFILE], 2),
                                  ([PROFILE, "--capture", SERIES, "--tcp", "127.0.0.1:1"], 2),
                                  ([PROFILE, "--capture", SERIES, "--count", 2], 2),
                                  ([PROFILE, "--tcp", "127.0.0.1:1", "--count", 1], 4)]:
            with self.subTest(arguments=arguments):
                self.assertEqual(run("alarms", *arguments).returncode, status)
