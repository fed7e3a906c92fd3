#!/usr/bin/env python3
"""Times whole runs of hyd_analysis on a hemisphere and measures their peak memory.

    bench/whole_run.py PROGRAM [ROWS COLUMNS SYMMETRY DEPTH]

COLUMNS panels lie along a quarter of the water line; without numbers two meshes of 4,032 panels on
the whole surface are run, one without symmetry and one with double symmetry. One frequency, one
heading, one core: the program and its OpenBLAS have one thread.
"""
import pathlib
import resource
import subprocess
import sys
import tempfile

sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent / "tools"))
import make_examples  # noqa: E402  (the path above comes first)

COMPLEX8 = 8


def run(program, rows, columns, symmetry, depth):
    lines = make_examples.hemisphere(columns, rows, symmetry, ka=(1.0,))
    lines = [line.replace("h=2000", f"h={depth:g}") for line in lines]
    lines[lines.index("hyd_analysis")] = "hyd_analysis -no_pot"
    with tempfile.TemporaryDirectory() as folder:
        pathlib.Path(folder, "h.txt").write_text("\n".join(lines) + "\n")
        subprocess.run([program], input=b"h\nfilein h.txt -noecho\nq\n", cwd=folder, check=True,
                       stdout=subprocess.DEVNULL)
        report = pathlib.Path(folder, "h.out").read_text()
    images = {0: 1, 1: 2, 2: 4}[symmetry]
    panels = rows * columns * 4 // images
    matrices = 2 * images * COMPLEX8 * panels**2
    peak = 1024 * resource.getrusage(resource.RUSAGE_CHILDREN).ru_maxrss
    print(f"{panels} panels, symmetry {symmetry}, depth {depth:g}")
    print(f"peak memory {peak / 2**20:.0f} MB, {peak / matrices:.2f} times the matrices")
    summary = report[report.index(" Summary of Analysis Times"):].split("\n")
    print("\n".join(summary[:11]), "\n")


def main():
    program = str(pathlib.Path(sys.argv[1]).resolve())
    if len(sys.argv) > 2:
        rows, columns, symmetry = map(int, sys.argv[2:5])
        run(program, rows, columns, symmetry, float(sys.argv[5]))
    else:
        run(program, 72, 14, 2, 2000.0)  # the smaller first: the peak is that of all children
        run(program, 72, 14, 0, 2000.0)


if __name__ == "__main__":
    main()
