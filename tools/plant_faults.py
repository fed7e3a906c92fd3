#!/usr/bin/env python3
"""Puts small faults into a copy of the tree, one at a time, and tells which ones the tests do not see.

    tools/plant_faults.py [--all] [--jobs N] [--list FILE] [--tree FOLDER] [WORD...]

With words, only faults whose source file or remark holds one of them. The list, tools/faults.txt, holds
blocks between blank lines; lines with # at their start are remarks on the list:

    fem/eqns.cpp: a node listed twice in the order is numbered twice
    > fem scenario/dynamics       who should see it; without this line the tests of the source's folder
    @ text that stands before     with it the place is looked for behind this text
    - text to find                one or more lines, exact, once in the file
    + replacement                 none or more lines

A name behind > is a folder (its unit test program and its scenarios), a program `test_fem`, one with a
filter `test_fem:Eqns.*`, scenarios `scenario/fem` or `scenario/fem/state`, or a script of tests/ that
takes the program, such as `robustness.py`. With --all a fault that its tests do not see meets all tests.

The copy is kept (build/faults), so that only what changed is built again. The tree itself is only read.
The exit status is 1 when a fault lives or cannot be planted.
"""

import argparse
import os
import pathlib
import re
import shutil
import subprocess
import sys
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
TIME_LIMIT = 300  # seconds for a test program: a fault may well make it run for ever


class Fault:
    def __init__(self, block):
        head, *lines = block
        self.source, _, self.remark = (part.strip() for part in head.partition(":"))
        if not self.remark:
            sys.exit(f"no remark in the list: {head}")
        text = {mark: [line[2:] for line in lines if line[0] == mark] for mark in ">@-+"}
        if sum(map(len, text.values())) != len(lines) or not text["-"]:
            sys.exit(f"a line of another form in the list under: {head}")
        self.tests = " ".join(text[">"]).split() or [self.source.split("/")[0]]
        self.behind, self.find, self.put = ("\n".join(text[mark]) for mark in "@-+")

    def planted(self, code):
        """The code with the fault; None when its place is not there or not one."""
        head, behind, rest = code.partition(self.behind) if self.behind else ("", "", code)
        if self.behind and not behind:
            return None
        if self.behind and self.find in rest:
            return head + behind + rest.replace(self.find, self.put, 1)
        return code.replace(self.find, self.put) if code.count(self.find) == 1 else None


def read_list(path):
    lines = (line for line in path.read_text().splitlines() if not line.startswith("#"))
    blocks = "\n".join(lines).split("\n\n")
    return [Fault(block.strip("\n").split("\n")) for block in blocks if block.strip()]


def copy_tree(tree):
    """Brings the copy up to date; files that are equal keep their time, so nothing is built again."""
    listed = subprocess.run(["git", "ls-files", "-z", "--cached", "--others", "--exclude-standard"],
                            cwd=ROOT, capture_output=True, check=True, text=True).stdout
    names = {name for name in listed.split("\0") if name and os.path.lexists(ROOT / name)}
    for old in tree.rglob("*"):
        name = old.relative_to(tree)
        if name.parts[0] != "build" and not old.is_dir() and str(name) not in names:
            old.unlink()
    for name in names:
        source, target = ROOT / name, tree / name
        target.parent.mkdir(parents=True, exist_ok=True)
        if source.is_symlink():  # to a folder of files that scenarios share
            target.unlink(missing_ok=True)
            target.symlink_to(os.readlink(source))
        elif not target.exists() or source.read_bytes() != target.read_bytes():
            shutil.copy(source, target)


class Copy:
    """The copy of the tree with its build folder."""

    def __init__(self, tree, jobs):
        self.tree, self.jobs, self.build = tree, jobs, tree / "build" / "release"
        tree.mkdir(parents=True, exist_ok=True)
        copy_tree(tree)
        subprocess.run(["cmake", "--preset", "release"], cwd=tree, check=True, stdout=subprocess.DEVNULL)

    def make(self, target):
        """The compiler's words when the build fails, else nothing."""
        done = subprocess.run(["nice", "cmake", "--build", self.build, f"-j{self.jobs}", "--target",
                               target], capture_output=True, text=True, check=False)
        return done.stdout + done.stderr if done.returncode else ""

    def calls(self, test):
        """The calls of one name of a list: pairs of a build target and a command line."""
        name, _, wanted = test.partition(":")
        if name.endswith(".py"):
            return [("quelorz-zt", [sys.executable, self.tree / "tests" / name, self.build / "quelorz-zt"])]
        if name.startswith("test_"):
            return [(name, [self.build / "tests" / name, "--gtest_brief=1",
                            *([f"--gtest_filter={wanted}"] if wanted else [])])]
        if name.startswith("scenario/"):
            place = self.tree / "tests" / name
            cases = sorted(place.rglob("*.cmd")) if place.is_dir() else [place.with_suffix(".cmd")]
            script = self.tree / "tests" / "run_scenario.py"
            return [("quelorz-zt", [sys.executable, script, self.build / "quelorz-zt", case]) for case in cases]
        units = self.calls("test_" + name) if any((self.tree / "tests/unit" / name).glob("*_test.cpp")) else []
        return units + (self.calls("scenario/" + name) if (self.tree / "tests/scenario" / name).is_dir() else [])

    def everything(self):
        return [("all", ["ctest", "--test-dir", self.build, f"-j{self.jobs}", "--stop-on-failure"])]

    def seen_by(self, calls):
        """The first of the calls that fails, as text; empty when none does. Raises what cannot be built."""
        built = set()
        for target, command in calls:
            problem = "" if target in built else self.make(target)
            if problem:
                raise RuntimeError(problem)
            built.add(target)
            try:
                done = subprocess.run(["nice", *command], cwd=self.build, capture_output=True,
                                      timeout=TIME_LIMIT, check=False)
            except subprocess.TimeoutExpired:
                return f"{called(command)} (no end)"
            if done.returncode:
                failed = re.search(rb"\[  FAILED  \] ([\w./]+)", done.stdout)
                return called(command) + (" " + failed[1].decode() if failed else "")
        return ""


def called(command):
    last = pathlib.Path(command[-1])
    return "all tests" if command[0] == "ctest" else last.stem if last.exists() else pathlib.Path(command[0]).name


def verdict(copy, fault, use_all):
    """A word for the fault and who saw it."""
    path = copy.tree / fault.source
    code = path.read_text() if path.is_file() else ""
    planted = fault.planted(code)
    if planted is None or planted == code:
        return "no place", ""
    path.write_text(planted)
    try:
        calls = [call for test in fault.tests for call in copy.calls(test)]
        test = copy.seen_by(calls) or (copy.seen_by(copy.everything()) if use_all else "")
    except RuntimeError as problem:
        return "no build", "; ".join(re.findall("error: .*", str(problem)))
    finally:
        path.write_text(code)
    return ("seen", test) if test else ("LIVES", "")


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--all", action="store_true")
    parser.add_argument("--jobs", type=int, default=1)
    parser.add_argument("--list", type=pathlib.Path, default=ROOT / "tools" / "faults.txt")
    parser.add_argument("--tree", type=pathlib.Path, default=ROOT / "build" / "faults")
    parser.add_argument("words", nargs="*")
    options = parser.parse_args()
    faults = [f for f in read_list(options.list)
              if not options.words or any(w in f"{f.source}: {f.remark}" for w in options.words)]
    if not faults:
        sys.exit("no such fault in the list")
    copy = Copy(options.tree.resolve(), options.jobs)
    whole = {test: None for fault in faults for test in fault.tests}
    failing = copy.seen_by([call for test in whole for call in copy.calls(test)])
    if failing:
        sys.exit(f"{failing} fails without any fault")
    count = {}
    for fault in faults:
        start = time.monotonic()
        word, test = verdict(copy, fault, options.all)
        count[word] = count.get(word, 0) + 1
        print(f"{word:8} {time.monotonic() - start:4.0f} s  {fault.source}: {fault.remark}"
              + (f"  [{test}]" if test else ""), flush=True)
    print(f"{len(faults)} faults: " + ", ".join(f"{n} {word}" for word, n in sorted(count.items())))
    sys.exit(count.get("seen", 0) != len(faults))


if __name__ == "__main__":
    main()
