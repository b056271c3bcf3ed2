"""dictionary: what it tells of an element, what it finds, and the whole as JSON."""

import json
import unittest

from program import run


def dictionary(*arguments):
    done = run("dictionary", *arguments)
    assert (done.returncode, done.stderr) == (0, ""), done.stderr
    return done.stdout


class DictionaryTest(unittest.TestCase):
    def test_a_key_shows_its_element_with_all_attributes(self):
        self.assertEqual(dictionary("DTMinIA;MinIA").splitlines(), [
            "key    DTMinIA;MinIA",
            "table  measurement",
            "name   ElectricalMeasurement.RmsMinCurrentPhsA",
            "unit   A",
            "class  $iot.measurement.NumericalMeasurementValue<Float>",
            "",
            "ATTRIBUTE  FED BY   INITIAL VALUE",
            "_id",
            "datetime   DTMinIA",
            'mode                "Ro"',
            "name",
            "quality",
            'unit                ""',
            "value      MinIA",
        ])
        self.assertRegex(dictionary("25"), r'\nelements.snapshot_rms_current_phs_b.value +IB _VLoss\n')
        element = json.loads(dictionary("59", "--json"))
        self.assertEqual(element["sources"], {"value": "XCBR1_Pos", "quality": "XCBR1_Pos_Qual"})

    def test_searches_look_in_keys_names_units_and_ids_in_any_case(self):
        rows = [
            (["--search", "ib _vLOSS"], ["25"]),
            (["--search", "m³/S", "--class", "gasflowRATE"], ["85b"]),
            (["--search", "STEP12", "--class", "$iot.measurement.NumericalMeasurementValue<Integer>"],
             ["ZCAP1_ClsCntStep12"]),
            (["--search", "ptuf.", "--table", "protection"], ["7aa", "7ab", "7ac", "7ad"]),
            (["--search", "xcbr1_pos"], ["15", "59"]),
        ]
        for arguments, keys in rows:
            lines = dictionary(*arguments).splitlines()
            self.assertRegex(lines[0], "^KEY +TABLE +NAME +UNIT +CLASS$")
            self.assertEqual([line.split()[0] for line in lines[1:]], keys, arguments)

    def test_the_whole_dictionary_comes_as_json_and_a_selection_in_the_same_form(self):
        whole = json.loads(dictionary("--json"))
        self.assertEqual(set(whole["tables"]), {"alarm", "measurement", "protection", "circuit-breaker"})
        for table, key in [("alarm", "15"), ("measurement", "Hz"), ("protection", "78b"), ("circuit-breaker", "59")]:
            self.assertIn(json.loads(dictionary(key, "--json")), whole["tables"][table])
            self.assertIn(whole["tables"][table][-1]["class"], whole["dynamic_classes"])
        some = json.loads(dictionary("--json", "--table", "protection"))
        self.assertEqual(some["tables"], {table: rows if table == "protection" else []
                                          for table, rows in whole["tables"].items()})

    def test_what_is_not_there_has_its_status_and_tells_what_is_near(self):
        rows = [
            (5, ["MinIA"], 'no key "MinIA"; did you mean "DTMinIA;MinIA"'),
            (5, ["rmscurrent"], 'no key "rmscurrent"; --search TEXT searches names, too'),
            (5, ["--search", "no such text"], "no element of the dictionary matches the options"),
            (2, ["--table", "alarms"], "alarm"),
            (2, ["Hz", "--table", "alarm"], "cannot be combined with"),
        ]
        for status, arguments, text in rows:
            done = run("dictionary", *arguments)
            self.assertEqual((done.returncode, done.stdout), (status, ""), arguments)
            self.assertIn(text, done.stderr)
