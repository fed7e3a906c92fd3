#!/usr/bin/env python3
"""Runs the program on the commands of one scenario and compares what it leaves.

    run_scenario.py [--update] PROGRAM CASE.cmd

CASE.cmd is fed to standard input in an empty folder, into which the files of CASE.files/ are copied
first; its first line is the project name. CASE.expect holds sections, each a header line and the
text that is expected:

    === screen       standard output behind the text of the project start
    === screen-all   all of standard output
    === out          the project's output file behind the banner
    === NAME         the file NAME

Options on the header line, quoted when they hold blanks:

    tolerance=1e-6   numbers may differ by this part of the largest number of their line; integers
                     and the text between the numbers must agree, blanks in any number counting as one
    columns          with tolerance: the scale is the largest number of the column instead, in each run
                     of lines with equally many numbers (tables whose columns differ in size)
    mask=REGEX       what matches is not compared (dates, processor times); can be repeated
    contains         the lines of the section must occur in this order, other lines may stand between
    absent           the file must not exist

The program must end by itself within a minute with exit status 0 and nothing on standard error.
--update rewrites the sections compared line by line from the actual result.
"""

import argparse
import difflib
import itertools
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import tempfile

TIME_LIMIT = 60
ENCODING = "latin-1"  # every byte is a character, so files are compared byte for byte
NUMBER = re.compile(r"[-+]?(?:\d+\.?\d*|\.\d+)(?:[eEdD][-+]?\d+|[-+]\d{3})?")
START_TEXT = re.compile(r"^        The output will be in file .*\n\n?", re.M)
BANNER_END = re.compile(r"^ *\*( \*)+\n\n?", re.M)


class Section:
    def __init__(self, header):
        lexer = shlex.shlex(header[4:].rstrip("\n"), posix=True)
        lexer.whitespace_split, lexer.escape, lexer.commenters = True, "", ""
        self.name, *options = list(lexer)
        self.header, self.text = header, ""
        self.masks, self.tolerance = [], None
        self.columns = self.contains = self.absent = False
        for option in options:
            if option.startswith("mask="):
                self.masks.append(re.compile(option[5:]))
            elif option.startswith("tolerance="):
                self.tolerance = float(option[10:])
            elif option in ("columns", "contains", "absent"):
                setattr(self, option, True)
            else:
                sys.exit(f"unknown option {option} of section {self.name}")

    def masked(self, text):
        for mask in self.masks:
            text = mask.sub("<masked>", text)
        return text if not text or text.endswith("\n") else text + "\n"


def read_sections(path):
    sections = []
    for line in path.read_bytes().decode(ENCODING).splitlines(keepends=True):
        if line.startswith("=== "):
            sections.append(Section(line))
        elif sections:
            sections[-1].text += line
    return sections


class Run:
    """One run of the program; `text(name)` gives what a section is about, None when absent."""

    def __init__(self, program, case, folder):
        self.folder = folder
        files = case.with_suffix(".files")
        if files.is_dir():
            shutil.copytree(files, folder, dirs_exist_ok=True)
        environment = dict(os.environ, TZ="UTC", LC_ALL="C",
                           UBSAN_OPTIONS="print_stacktrace=1")
        with case.open("rb") as commands:
            done = subprocess.run([program], stdin=commands, capture_output=True, cwd=folder,
                                  env=environment, timeout=TIME_LIMIT, check=False)
        self.status, self.stderr = done.returncode, done.stderr.decode(ENCODING)
        self.stdout = done.stdout.decode(ENCODING)
        first = case.read_bytes().decode(ENCODING).split("\n", 1)[0]
        self.project = first.strip()[:127]

    def text(self, name):
        if name == "screen-all":
            return self.stdout
        if name == "screen":
            return after(START_TEXT, self.stdout)
        path = self.folder / (self.project + ".out" if name == "out" else name)
        if not path.is_file():
            return None
        text = path.read_bytes().decode(ENCODING)
        return after(BANNER_END, text) if name == "out" else text


def after(mark, text):
    """The text behind the first match; all of it when there is none."""
    match = mark.search(text)
    return text[match.end():] if match else text


def same_numbers(expected, actual, tolerance, scales):
    """Whether two lines agree, each number within the tolerance times its scale."""
    wanted, found = NUMBER.findall(expected), NUMBER.findall(actual)
    words = [" ".join(NUMBER.sub(" # ", line).split()) for line in (expected, actual)]
    if words[0] != words[1] or len(wanted) != len(found):
        return False
    for a, b, scale in zip(wanted, found, scales):
        if a == b:
            continue
        if is_integer(a) or is_integer(b) or abs(value(a) - value(b)) > tolerance * scale:
            return False
    return True


def scales_of(lines, columns):
    """The scale of every number: the largest of its line, or of its column in a run of lines."""
    values = [[abs(value(text)) for text in NUMBER.findall(line)] for line in lines]
    if not columns:
        return [[max(row, default=0)] * len(row) for row in values]
    scales = []
    for _, run in itertools.groupby(values, key=len):
        run = list(run)
        scales += [[max(column) for column in zip(*run)]] * len(run)
    return scales


def is_integer(text):
    return re.fullmatch(r"[-+]?\d+", text) is not None


def value(text):
    text = text.replace("D", "e").replace("d", "e")
    return float(re.sub(r"(?<=[\d.])([-+]\d{3})$", r"e\1", text))


def missing_line(expected, actual):
    """The first expected line that does not follow the ones before it; None when all do."""
    rest = iter(actual)
    return next((line for line in expected if not any(line == other for other in rest)), None)


def compare(section, actual):
    """Text of the difference, empty when there is none."""
    if section.absent:
        return "" if actual is None else f"{section.name} exists\n"
    if actual is None:
        return f"{section.name} does not exist\n"
    wanted = section.masked(section.text).split("\n")
    found = section.masked(actual).split("\n")
    if section.contains:
        line = missing_line(wanted[:-1], found)
        return "" if line is None else f"{section.name} lacks: {line}\n" + section.masked(actual)
    if section.tolerance is not None and len(wanted) == len(found):
        scales = scales_of(wanted, section.columns)
        found = [a if same_numbers(a, b, section.tolerance, scale) else b
                 for a, b, scale in zip(wanted, found, scales)]
    lines = difflib.unified_diff(wanted, found, "expected " + section.name,
                                 "actual " + section.name, lineterm="")
    return "".join(line + "\n" for line in lines)


def update(path, sections, run):
    for section in sections:
        actual = run.text(section.name)
        if actual is not None and not section.contains and not section.absent:
            section.text = section.masked(actual)
    text = "".join(section.header + section.text for section in sections)
    path.write_bytes(text.encode(ENCODING))


def check(case, sections, run):
    report = ""
    if run.status != 0:
        report += f"exit status {run.status}\n"
    if run.stderr:
        report += f"standard error:\n{run.stderr}\n"
    for section in sections:
        report += compare(section, run.text(section.name))
    if report:
        print(f"{case}:\n{report}")
    return 1 if report else 0


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--update", action="store_true")
    parser.add_argument("program", type=lambda text: str(pathlib.Path(text).resolve()))
    parser.add_argument("case", type=pathlib.Path)
    options = parser.parse_args()
    expect = options.case.with_suffix(".expect")
    if options.update and not expect.exists():
        expect.write_text("=== screen\n=== out\n", encoding=ENCODING)
    if not expect.exists():
        sys.exit(f"{expect} does not exist")
    with tempfile.TemporaryDirectory() as folder:
        try:
            run = Run(options.program, options.case, pathlib.Path(folder))
        except subprocess.TimeoutExpired:
            sys.exit(f"{options.case}: no end after {TIME_LIMIT} seconds")
        sections = read_sections(expect)
        if options.update:
            update(expect, sections, run)
            sections = read_sections(expect)
        sys.exit(check(options.case, sections, run))


if __name__ == "__main__":
    main()
