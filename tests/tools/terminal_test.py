"""What the program does differently on a terminal."""

import fcntl
import os
import pty
import signal
import struct
import subprocess
import termios
import unittest

from program import MAIN, PUMP, capture_of, file, simulator, start

PROFILE = file("pump.jsonc", PUMP)
CAPTURE = file("pump.capture.json", capture_of((33, [("main", MAIN, 0, {"quality": "Questionable"})])))
HOME, SHOWN_CURSOR = b"\x1b[H", b"\x1b[?25h"


def on_terminal(*arguments, until=None, **environment):
    """What a run prints on a terminal of 9 lines, and its exit status; SIGINT ends it once `until` was seen."""
    terminal, side = pty.openpty()
    fcntl.ioctl(side, termios.TIOCSWINSZ, struct.pack("HHHH", 9, 80, 0, 0))
    process = start(*arguments, stdout=side, stderr=subprocess.DEVNULL,
                    env={**os.environ, "NO_COLOR": "", **environment})
    os.close(side)
    seen = b""
    try:
        while part := os.read(terminal, 65536):
            seen += part
            if until and until(seen):
                process.send_signal(signal.SIGINT)
                until = None
    except OSError:  # the terminal's other side is closed
        pass
    os.close(terminal)
    return seen, process.wait(timeout=10)


class TerminalTest(unittest.TestCase):
    def test_qualities_are_coloured_unless_the_environment_says_no(self):
        show = ["show", PROFILE, "--capture", CAPTURE]
        coloured = on_terminal(*show)[0]
        for text in (b"\x1b[33mQuestionable\x1b[0m", b"\x1b[31mBad\x1b[0m",
                     b"\x1b[2mframe never was never received\x1b[0m"):
            self.assertIn(text, coloured)
        self.assertNotIn(b"\x1b", on_terminal(*show, NO_COLOR="1")[0])
        told = on_terminal("explain", PROFILE, "Level/east", "--capture", CAPTURE)[0]
        self.assertRegex(told, rb'\x1b\[31mthey hold 0xFFFF: "not available"\x1b')

    def test_poll_refreshes_one_table_in_place_and_gives_the_terminal_back(self):
        with simulator(PROFILE, CAPTURE) as address:
            seen, status = on_terminal("poll", PROFILE, "--tcp", address, "--interval", "0.05",
                                       until=lambda text: text.count(HOME) >= 3)
        self.assertEqual(status, 0)
        self.assertTrue(seen.endswith(SHOWN_CURSOR), seen)
        screens = seen.split(HOME)[1:]
        for screen in screens:
            # As high as the terminal, the cursor's line included: title, headings, 3 rows, the note, 2 errors.
            self.assertEqual(screen.count(b"\r\n"), 8, screen)
            self.assertRegex(screen, rb"(?s)Pump at .*NAME.*Flow.*\.\.\. 9 more.*frame slow: .*frame never: ")
