#!/usr/bin/env python3
"""What is left when things go wrong around the program: no memory, a signal, a kill, an end without
saving, a second session on the same project, standard streams that are closed.

    survival.py PROGRAM

Where memory is limited the sanitizers cannot run; those cases are left out then.
"""

import atexit
import os
import pathlib
import resource
import shutil
import signal
import subprocess
import sys
import tempfile
import time

TIME_LIMIT = 60
MODEL = pathlib.Path(__file__).resolve().parent / "scenario/hydro_analysis/model/box.txt"
PROGRAM = str(pathlib.Path(sys.argv[1]).resolve())
SANITIZED = b"__asan_init" in pathlib.Path(PROGRAM).read_bytes()
GIVEN_UP = 'Not enough memory for command "{}"; it is given up, the session goes on'


def run(lines, addresses=None, **options):
    """Feeds the lines in the present folder; exit status and screen. `addresses` in MiB."""
    def limit():
        if addresses:
            resource.setrlimit(resource.RLIMIT_AS, (addresses << 20, addresses << 20))
    done = subprocess.run([PROGRAM], input=("\n".join(lines) + "\n").encode("latin-1"),
                          stdout=subprocess.PIPE, timeout=TIME_LIMIT, preexec_fn=limit,
                          check=False, **options)
    return done.returncode, done.stdout.decode("latin-1")


def text(name):
    return pathlib.Path(name).read_text(encoding="latin-1")


def wait_until(holds, what):
    end = time.monotonic() + TIME_LIMIT
    while not holds():
        assert time.monotonic() < end, f"{what} did not come"
        time.sleep(0.01)


class Session:
    """A session whose input stays open."""

    def __init__(self, *lines, **options):
        options.setdefault("stdout", subprocess.DEVNULL)
        self.process = subprocess.Popen([PROGRAM], stdin=subprocess.PIPE, **options)
        atexit.register(self.process.kill)
        self.project = lines[0]
        self.process.stdin.write("".join(line + "\n" for line in lines).encode())
        self.process.stdin.flush()

    def has_printed(self, what, to=".out"):
        path = pathlib.Path(self.project + to)
        wait_until(lambda: path.exists() and what in text(path), f"{what!r} in {path}")
        return self

    def end(self, by):
        self.process.send_signal(by)
        status = self.process.wait(TIME_LIMIT)
        self.process.stdin.close()
        return status


def same_as_saved(name, *lines):
    """Whether the database file is that of a session which makes the same arrays and saves."""
    run(["same", *lines, "save", "q"])
    return pathlib.Path(name).read_bytes() == pathlib.Path("same.db").read_bytes()


# --- memory

def scratch_refused():
    status, screen = run(["p", "setr keep v=1", "zero a r=25000000", "sort a b", "ls", "q"], 350)
    assert status == 0 and GIVEN_UP.format("sort") in screen, screen[-500:]
    assert "a(25000000)         keep(1,1)\n    2 objects" in screen, screen[-500:]


def blas_without_its_buffer():
    for addresses in range(70, 190, 20):
        status, screen = run(["p", "zero a r=9 c=9 v=1", "mult a a b", "mult a a a", "ls", "q"],
                             addresses)
        assert status == 0 and screen.count(GIVEN_UP.format("mult")) == 2, (addresses, screen[-500:])
        assert "\n    1 objects" in screen and "a(9,9)" in screen, "only what was there is left"
    assert "    2 objects" in run(["p", "zero a r=9 c=9", "mult a a b", "ls", "q"], 400)[1]


# --- ends without saving

def rescue_where_nothing_is_saved():
    made = ["seti a v=7", "setr b v=2.5"]
    for name, end in (("read", "readdb none"), ("size", "zero c r=2000000000 c=2000000"),
                      ("line", "x" * 2049)):
        status, screen = run([name, *made, end])
        assert status == 0 and screen.count("Press RETURN") == 1, screen[-500:]
        assert screen.count(f"    Database rescued in file {name}.rescue.db\n") == 1, screen[-500:]
        assert same_as_saved(f"{name}.rescue.db", *made), name
    for end in ("savequit", "seti a v=7\nend_do"):
        os.makedirs("full.db", exist_ok=True)  # in the way
        assert "full.rescue.db" in run(["full", "seti a v=7", end])[1]
        assert same_as_saved("full.rescue.db", "seti a v=7")
        os.remove("full.rescue.db")
    run(["empty", "readdb none"])
    run(["quit", "seti a v=1", "q"])
    assert not os.path.exists("empty.rescue.db") and not os.path.exists("quit.rescue.db")


def signals():
    for name, number, lines in (("idle", signal.SIGTERM, []),
                                ("data", signal.SIGHUP, ["inputi c r=2 c=2", "1 2"]),
                                ("loop", signal.SIGTERM, ["while a", "add a a b", "end_while"])):
        session = Session(name, "seti a v=1", *lines)
        session.has_printed((lines or ["seti"])[-1], to=".log")
        assert session.end(number) == 128 + number, name
        assert f"\n    Database rescued in file {name}.rescue.db\n" in text(name + ".out")
        status, screen = run(["next", f"readdb {name}.rescue", "printi a", "q"])
        assert status == 0 and "    1        1\n" in screen, screen
    os.mkfifo("pipe")
    waiting = Session("pipe_read", "filein pipe").has_printed("filein")
    assert waiting.end(signal.SIGTERM) == 128 + signal.SIGTERM
    assert Session("none").has_printed("* *\n").end(signal.SIGTERM) == 128 + signal.SIGTERM
    assert not os.path.exists("none.rescue.db")
    ignoring = Session("nohup", "seti a v=1", preexec_fn=lambda: signal.signal(signal.SIGHUP,
                                                                           signal.SIG_IGN))
    ignoring.has_printed("a v=1").process.send_signal(signal.SIGHUP)
    ignoring.process.communicate(b"save hung\nq\n", TIME_LIMIT)
    assert ignoring.process.returncode == 0 and os.path.exists("hung.db"), "nohup does its work"


def between_frequencies():
    shutil.copy(MODEL, "box.txt")
    lines = ["filein box", "hyd_analysis", "hyd_analysis #added_freqs=400 -no_pot",
             " ".join(f".{i}" for i in range(300, 700))]
    for project, number, status in (("killed", signal.SIGKILL, -signal.SIGKILL),
                                    ("ended", signal.SIGTERM, 128 + signal.SIGTERM)):
        session = Session(project, *lines).has_printed("Wave frequency      5\n")
        assert session.end(number) == status, project
    assert "Database rescued in file ended.rescue.db" in text("ended.out")


# --- two sessions

def two_sessions():
    os.mkdir("folder")
    first = Session("p", "seti a v=1").has_printed("a v=1")  # waits for input
    in_use = "Project p is in use by another session; give another name\n"
    status, screen = run(["p"])
    assert status == 0 and screen.count(in_use) == 1 and screen.endswith("name: \n"), screen
    status, screen = run(["p", "other", "name?", "q"])
    assert status == 0 and screen.count(in_use) == 1 and "\nquelor-zt>   other\n" in screen, screen
    assert "is in use" in run(["folder/../p"])[1], "the same files by another name"
    assert "Error initiating new project" in run(["p", "p", "p"])[1]
    assert "a v=1" in text("p.out"), "the output of the first session is whole"
    assert first.end(signal.SIGKILL) == -signal.SIGKILL
    status, screen = run(["p", "new_project", "p", "new_project", "other", "name?", "q"])
    assert "is in use" not in screen, "the lock has gone with the session; one's own is no other's"
    assert sorted(os.listdir()) == ["folder", "other.log", "other.out", "p.log", "p.out"]


# --- standard streams

def closed_streams():
    for project, closed in (("in", "<&-"), ("out", ">&-"), ("error", "2>&-")):
        typed = f"printf '{project}\\nseti a v=1\\nq\\n' | '{PROGRAM}' {closed}"
        subprocess.run(["sh", "-c", typed], check=True, timeout=TIME_LIMIT,
                       stdout=subprocess.DEVNULL)
    assert not os.path.exists("in.log")
    assert text("out.log") == text("error.log") == "seti a v=1\nq\n"
    assert text("out.out") == text("error.out")


def main():
    cases = [rescue_where_nothing_is_saved, signals, between_frequencies, two_sessions,
             closed_streams]
    if not SANITIZED:
        cases += [scratch_refused, blas_without_its_buffer]
    for case in cases:
        with tempfile.TemporaryDirectory() as folder:
            os.chdir(folder)
            began = time.monotonic()
            case()
            print(f"{case.__name__}: {time.monotonic() - began:.1f} s")
            os.chdir("/")


if __name__ == "__main__":
    main()
