#!/usr/bin/env python3
"""Feeds the program input that no user means: random bytes, lines and records without end, blocks and
loops that are never closed, and every command of `index` without, or with senseless, arguments and
records, the input ending at whatever prompt comes then.

    robustness.py PROGRAM

Each run must end by itself with exit status 0 and nothing on standard error.
"""

import pathlib
import random
import re
import subprocess
import sys
import tempfile

TIME_LIMIT = 30
NOT_FED = ("system_command",)  # would run what it is given


def run(program, data):
    with tempfile.TemporaryDirectory() as folder:
        return subprocess.run([program], input=data, capture_output=True, cwd=folder,
                              timeout=TIME_LIMIT, check=False)


def commands(program):
    """The words of the commands, from the lines of `index`."""
    text = run(program, b"p\nindex\nq\n").stdout.decode("latin-1")
    rows = re.findall(r"^  (\S+?(?:, \S+?)*) {2,}\S", text, re.M)
    words = [row.split(",")[0] for row in rows]
    return [word for word in words if word not in NOT_FED]


def random_inputs(source):
    for length in (1, 10, 100, 1000, 30000):
        yield b"p\n" + source.randbytes(length)
        yield source.randbytes(length)
    # Mostly what a record may hold, so that the parser and the block readers see more of it.
    letters = b"abipq .~'&=-,/*0159\t\n\0"
    # `a` is never true, or a `while` might go on for ever.
    words = [b"if a", b"if b", b"else", b"endif", b"do i f=1 l=2", b"end_do", b"while a",
             b"end_while", b"break_loop", b"return", b"filein none", b"login", b"seti a v=0",
             b"seti b v=1"]
    for _ in range(30):
        lines = [bytes(source.choices(letters, k=source.randrange(60))) for _ in range(30)]
        yield b"p\n" + b"\n".join(lines)
        yield b"p\n" + b"\n".join(source.choices(words, k=40))


def odd_inputs():
    yield b""
    yield b"p"
    yield b"\n" * 10
    yield b"\0" * 10000
    yield b"p\n" + b"x" * 1000000
    yield b"p\n" + b"&\n" * 100000
    yield b"p\n" + b"x&\n" * 100000
    yield b"p\n" + b"'" * 2000
    yield b"p" * 100000 + b"\n"
    yield b"../no/such/folder\n\n"
    for block in (b"do i f=1 l=3\n", b"while a\n", b"if nothing\n", b"else\n"):
        yield b"p\nseti a v=1\n" + block
        yield b"p\nseti a v=1\n" + block * 20


def command_inputs(word, source):
    word = word.encode()
    values = b"".join(b"%d %g\n" % (source.randrange(-3, 9), source.uniform(-1e3, 1e3))
                      for _ in range(5))
    yield b"p\n" + word
    yield b"p\n" + word + b"\n" + values
    yield b"p\nseti a v=3\n" + word + b" a b c r=2 c=2 n=3 -f\n" + values + b"\n\n"
    yield b"p\nsetr a v=-1.5\n" + word + b" ~a a a r=-1 c=1e9 e=~a v=nan nodes=\n" + values


def main():
    program = str(pathlib.Path(sys.argv[1]).resolve())
    source = random.Random(20)
    words = commands(program)
    if len(words) < 20:
        sys.exit(f"index shows {len(words)} commands only")
    inputs = [*odd_inputs(), *random_inputs(source)]
    for word in words:
        inputs += command_inputs(word, source)
    faults = 0
    for data in inputs:
        try:
            done = run(program, data)
            fault = "" if done.returncode == 0 and not done.stderr else \
                f"exit status {done.returncode}\n{done.stderr.decode('latin-1')[:3000]}"
        except subprocess.TimeoutExpired:
            fault = f"no end after {TIME_LIMIT} seconds"
        if fault:
            faults += 1
            print(f"input {data[:300]!r} of {len(data)} bytes: {fault}")
    print(f"{len(inputs)} inputs, {faults} faults")
    sys.exit(1 if faults else 0)


if __name__ == "__main__":
    main()
