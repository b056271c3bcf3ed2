"""The manual page and the completion know the commands and options that the program says it has, and no others."""

import os
import pathlib
import re
import shlex
import subprocess
import unittest

import program

COMPLETION = pathlib.Path(__file__).resolve().parents[2] / "tools/kzm-modbus/completion.bash"
MANUAL = re.sub(r"\\(-)|\\f[BIR]", r"\1", pathlib.Path(os.environ["MANUAL"]).read_text(encoding="utf-8"))


def sections(command=()):
    """The entries of a help text, by the heading above them."""
    found, heading = {}, None
    for line in program.run(*command, "--help").stdout.splitlines():
        heading = line.strip() if line.endswith(":") else heading
        entry = re.match(r" +(-{0,2}[a-z][a-z,-]*)( |$)", line)
        if entry:
            found.setdefault(heading, []).extend(entry[1].split(","))
    return found


COMMANDS = sections()["Commands:"]
OPTIONS = {command: {entry for entries in sections([command]).values() for entry in entries if entry[0] == "-"}
           for command in COMMANDS}
GLOBAL = set(sections()["Options:"])


def complete(*words):
    """What bash offers for the last word."""
    run = " ".join(map(shlex.quote, program.COMMAND))
    script = f"""source {shlex.quote(str(COMPLETION))}
        kzm-modbus() {{ {run} "$@"; }}
        COMP_WORDS=(kzm-modbus "$@") COMP_CWORD=$#
        _kzm_modbus kzm-modbus "${{@: -1}}" "${{COMP_WORDS[COMP_CWORD - 1]}}"
        printf '%s\\n' "${{COMPREPLY[@]}}" """
    return set(subprocess.run(["bash", "-c", script, "bash", *words], capture_output=True, text=True, timeout=30,
                              check=True, cwd=program.PROFILES).stdout.split())


class Manual(unittest.TestCase):
    def test_names_every_command_and_option_and_no_other(self):
        self.assertEqual(set(re.findall(r"(?<![\w-])--?[a-z][a-z-]*", MANUAL)),
                         GLOBAL.union(*OPTIONS.values()))
        commands = MANUAL[MANUAL.index("Commands\n"):MANUAL.index("Options\n")]
        self.assertEqual(set(re.findall(r"(?m)^\.LP\n([a-z]+)\b.*\n\.if", commands)), set(COMMANDS))


    def test_exit_statuses_are_those_of_the_help(self):
        told = re.findall(r"(?m)^  (\d)  (.*)$", program.run("--help").stdout)
        page = MANUAL[MANUAL.index("Exit status\n"):MANUAL.index("Files\n")]
        self.assertEqual(re.findall(r"(?m)^(\d)$", page), [status for status, _ in told])
        self.assertEqual(len(told), 10)


class Completion(unittest.TestCase):
    def test_offers_what_can_be_said(self):
        rows = [
            (("",), set(COMMANDS)),
            (("--log", "trace", "p"), {"poll", "probe"}),
            (("--",), {option for option in GLOBAL if option.startswith("--")}),
            *(((command, "-"), GLOBAL | OPTIONS[command]) for command in COMMANDS),
            (("poll", "x.jsonc", "--log", "w"), {"warning"}),
            (("dictionary", "--table", ""), {"alarm", "measurement", "protection", "circuit-breaker"}),
            (("check", "energy-meter.js"), {"energy-meter.jsonc"}),
            (("show", "energy-meter.jsonc", "--capture", "energy-meter.c"), {"energy-meter.capture.json"}),
            (("capture", "energy-meter.jsonc", "-o", "energy-meter.c"), {"energy-meter.capture.json"}),
            (("poll", "energy-meter.jsonc", "--json", "energy-meter.js"), {"energy-meter.jsonc"}),
            (("poll", "energy-meter.jsonc", "--unit", ""), set()),
        ]
        for words, offered in rows:
            with self.subTest(words):
                self.assertEqual(complete(*words), offered)
