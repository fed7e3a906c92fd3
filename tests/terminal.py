#!/usr/bin/env python3
"""Types at the program under a pseudo-terminal, as a person does: editing keys, history over two
sessions, search, completion, Ctrl-C, long lines, end of input.

    terminal.py PROGRAM

The log tells what the program has understood. At the end the same lines are piped into it, and log
and output file must be the same bytes.
"""

import fcntl
import os
import pathlib
import pty
import select
import struct
import subprocess
import sys
import tempfile
import termios
import time

TIME_LIMIT = 20
PROMPT = "quelor-zt> "
LEFT, UP, HOME, END, DELETE = "\x1b[D", "\x1b[A", "\x1b[H", "\x1b[F", "\x1b[3~"
CTRL = {letter: chr(ord(letter) - ord("A") + 1) for letter in "ACDEKRUW"}
TAB, BACKSPACE = "\t", "\x7f"


SKIPPED = 77  # what ctest takes as "skipped"


class Session:
    """A run of the program on a terminal of 60 columns and 10 rows."""

    def __init__(self, program, folder, places):
        self.folder, self.seen = folder, ""
        environment = {"PATH": os.environ["PATH"], "TERM": "xterm", "LC_ALL": "C.UTF-8", **places,
                       "ASAN_OPTIONS": "detect_leaks=0"}  # libedit copies names, and keeps them
        try:
            self.master, slave = pty.openpty()
        except OSError as missing:
            print("no pseudo-terminals here:", missing)
            sys.exit(SKIPPED)
        fcntl.ioctl(slave, termios.TIOCSWINSZ, struct.pack("HHHH", 10, 60, 0, 0))
        self.process = subprocess.Popen([program], stdin=slave, stdout=slave, stderr=slave,
                                        cwd=folder, start_new_session=True, env=environment,
                                        preexec_fn=lambda: fcntl.ioctl(0, termios.TIOCSCTTY, 0))
        os.close(slave)
        self.wait_for("Enter project name: ")
        self.type("p\r", PROMPT)

    def _receive(self):
        if not select.select([self.master], [], [], 0.02)[0]:
            return self.process.poll() is None
        try:
            self.seen += os.read(self.master, 65536).decode("utf-8", "replace")
            return True
        except OSError:  # the program has closed its end
            return False

    def wait_for(self, text):
        """Reads on until the text has come; returns what came up to its end."""
        end = time.monotonic() + TIME_LIMIT
        while text not in self.seen:
            if time.monotonic() > end or not self._receive() and text not in self.seen:
                raise AssertionError(f"{text!r} did not come; the screen has {self.seen[-800:]!r}")
        before, _, self.seen = self.seen.partition(text)
        return before + text

    def type(self, keys, expected=None):
        """Types when the program waits for a line; returns the screen up to the text expected."""
        self.wait_until(lambda: not termios.tcgetattr(self.master)[3] & termios.ICANON)
        os.write(self.master, keys if isinstance(keys, bytes) else keys.encode())
        return self.wait_for(expected) if expected else ""

    def command(self, keys):
        """Types a line that is to be logged."""
        count = len(self.log())
        self.type(keys)
        self.type("\r")
        self.wait_until(lambda: len(self.log()) > count)

    def wait_until(self, holds):
        end = time.monotonic() + TIME_LIMIT
        while not holds():
            assert time.monotonic() < end and self._receive(), f"the screen has {self.seen[-800:]!r}"

    def log(self):
        return (self.folder / "p.log").read_text(encoding="utf-8").splitlines()

    def ends_with(self, lines):
        """Checks the last lines of the log."""
        logged = self.log()[-len(lines):]
        assert logged == lines, f"the log has {logged}, not {lines}"

    def end(self, keys="q\r"):
        self.type(keys)
        while self._receive():
            pass
        assert self.process.wait(TIME_LIMIT) == 0, f"exit status {self.process.returncode}"
        os.close(self.master)


def edits_lines(session):
    session.command("sexi a v=1" + HOME + "\x1b[C" * 2 + DELETE + "t" + END + "2")
    session.command("junk here" + CTRL["U"] + "seti b v=9" + LEFT * 3 + CTRL["K"]
                    + "x" + BACKSPACE + "v=3 word" + CTRL["W"])
    session.command("setch text s='b\u00e9ton'")
    session.ends_with(["seti a v=12", "seti b v=3", "setch text s='b\u00e9ton'"])


def calls_lines_back(session):
    session.command(UP * 4)
    session.command(CTRL["R"] + "b v" + "\x1b")  # the search ends, the line found stays
    session.command(UP + CTRL["A"] + "ls a /* ")
    session.ends_with(["seti a v=12", "seti b v=3", "ls a /* seti b v=3"])


def stops_pages_and_loops(session):
    session.type("help ls l=2\r", "--q to quit--")
    session.type(CTRL["C"], PROMPT)
    session.type("while a\r", "tivla> ")
    session.type("ls b\r", "tivla> ")
    session.type("end_while\r", "b(1,1)")
    os.write(session.master, CTRL["C"].encode())
    session.wait_for("Interrupted")


def completes_words(session):
    for word in ("alpha", "alpine", ".alpha"):
        session.command(f"seti {word} v=5")
    session.command("logf" + TAB + "-on")
    session.type("ls al" + TAB + TAB, "alpha   alpine")  # as far as they agree, then the list
    session.command("h" + TAB)
    session.command("help pal" + TAB)
    session.command("filein bat" + TAB)
    session.command("save stored/new")
    session.command("seti c v=~.al" + TAB)
    session.command("readdb sto" + TAB + "n" + TAB)
    session.ends_with(["logfile -on", "ls alpha", "help palias", "filein batch.txt",
                       "save stored/new", "seti c v=~.alpha", "readdb stored/new"])


def gives_lines_up(session):
    session.type("this is not wanted" + CTRL["C"], PROMPT)
    session.command("ls alpha")
    session.command("inputi m r=1 c=2")
    session.type("7 7" + CTRL["C"], "^C")
    session.command("3\t4")
    session.command(b"seti \xff\xe9d v=2")  # bytes that are no characters
    session.ends_with(["ls alpha", "inputi m r=1 c=2", "3\t4", "seti d v=2"])


def scrolls_a_long_line(session):
    line = "print alpha /* " + "".join(f"{i:5d}" for i in range(200))  # more than the screen holds
    session.command(line + CTRL["A"] + "x" + CTRL["E"] + "end")
    session.ends_with(["x" + line + "end"])


def same_as_piped(program, folder, other):
    lines = (folder / "p.log").read_bytes()
    subprocess.run([program], input=b"p\n" + lines, cwd=other, check=True, stdout=subprocess.DEVNULL)
    for name in ("p.log", "p.out"):
        assert (folder / name).read_bytes() == (other / name).read_bytes(), \
            f"{name} differs from that of a piped session"


def new_folder(parent, name):
    (parent / name / "stored").mkdir(parents=True)
    (parent / name / "batch.txt").write_text("/* nothing\n")
    return parent / name


def main():
    program = str(pathlib.Path(sys.argv[1]).resolve())
    with tempfile.TemporaryDirectory() as home:
        home = pathlib.Path(home)
        first, second, piped = (new_folder(home, name) for name in ("first", "second", "piped"))
        places = {"HOME": str(home), "XDG_STATE_HOME": str(home / "state")}

        history = home / "state" / "quelor-zt" / "history"
        history.parent.mkdir(parents=True)
        history.write_text("".join(f"old {i}\n" for i in range(2500)))
        session = Session(program, first, places)
        edits_lines(session)
        session.end()
        session = Session(program, first, places)
        calls_lines_back(session)
        stops_pages_and_loops(session)
        session.end(CTRL["D"])
        lines = history.read_text(encoding="utf-8").splitlines()
        assert lines[999:1002] == ["old 2499", "seti a v=12", "seti b v=3"], lines[990:]

        session = Session(program, second, {"XDG_STATE_HOME": "/dev/null"})  # no place for a history
        for step in (completes_words, gives_lines_up, scrolls_a_long_line):
            step(session)
        session.end()
        same_as_piped(program, second, piped)


if __name__ == "__main__":
    main()
