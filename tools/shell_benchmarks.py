#!/usr/bin/env python3
"""Runs the published benchmarks of shells and prints the table of docs/shells.md.

    shell_benchmarks.py PROGRAM [NAME ...]

Each row is a type of element; the columns are meshes of 4, 8 and 16 elements a side of the part that is
meshed; the figures are ratios to the reference. Triangles are halves of the quadrilaterals.
"""
import math
import pathlib
import struct
import subprocess
import sys
import tempfile

NODES_OF = {"min3s": 6, "shell3": 3, "min5s": 4, "min4t": 4, "min6": 6, "isomin6": 6}
FIXED = (1, 1, 1, 1, 1, 1)


class Model:
    """A grid of n by m cells over the unit square (s, t), mapped to space by `place`."""

    def __init__(self, kind, n, m, place, material, restraint=lambda s, t: (0,) * 6, flags="",
                 curved=False, face=0, flip=False):
        self.flip = flip  # the normal of the grid points inward: turn the elements
        self.kind, self.n, self.m, self.place, self.flags = kind, n, m, place, flags
        self.material, self.restraint, self.curved, self.face = material, restraint, curved, face
        self.points = {}  # (i, j) in halves of a cell: number
        self.records = []
        self.forces, self.extra = {}, []
        for j in range(m + 1):
            for i in range(n + 1):
                self.node(2 * i, 2 * j)
        self.elements()

    def node(self, i, j):
        return self.points.setdefault((i, j), len(self.points) + 1)

    def st(self, key):
        return key[0] / (2 * self.n), key[1] / (2 * self.m)

    def at(self, s, t):
        """Number of the vertex at (s, t)."""
        return self.points[round(2 * self.n * s), round(2 * self.m * t)]

    def elements(self):
        triangles = NODES_OF[self.kind] != 4
        for j in range(0, 2 * self.m, 2):
            for i in range(0, 2 * self.n, 2):
                a, b, c, d = (i, j), (i + 2, j), (i + 2, j + 2), (i, j + 2)
                if self.flip:
                    b, d = d, b
                for corners in [(a, b, c), (a, c, d)] if triangles else [(a, b, c, d)]:
                    self.records.append(self.nodes_of(corners))

    def nodes_of(self, corners):
        nodes = [self.node(*c) for c in corners]
        if NODES_OF[self.kind] != 6:
            return nodes
        if self.kind == "min3s" and not self.curved:
            return nodes
        middle = [((corners[p][0] + corners[q][0]) // 2, (corners[p][1] + corners[q][1]) // 2)
                  for p, q in ((0, 1), (1, 2), (0, 2))]
        return nodes + [self.node(*c) for c in middle]

    def is_vertex(self, key):
        return key[0] % 2 == 0 and key[1] % 2 == 0

    def text(self):
        total = len(self.points) + (self.n * self.m if self.kind == "min5s" else 0) + 1
        lines = ["job", f"nodes #={total}"]
        for key, number in sorted(self.points.items(), key=lambda item: item[1]):
            x = self.place(*self.st(key))
            lines.append("n=%d x=%.17g y=%.17g z=%.17g" % (number, *x))
        lines += ["", f"{self.kind} m=1 n={len(self.records)} {self.flags}", f"m=1 {self.material}"]
        for number, nodes in enumerate(self.records, 1):
            lines.append(f"n={number} nodes={','.join(map(str, nodes))} mat=1 face={self.face}")
        lines += ["", "bcid"]
        for key, number in self.points.items():
            r = self.restraint(*self.st(key))
            if not self.is_vertex(key) and self.kind == "min3s":
                r = FIXED
            if any(r):
                lines.append(f"n={number} r={','.join(map(str, r))}")
        lines += ["", "nodef"]
        lines += [f"n={number} f={','.join('%.17g' % f for f in force)}"
                  for number, force in self.forces.items()]
        return "\n".join(lines + [""] + self.extra)

    def displacements(self, program, commands="form_k\nlsolve\npdisp -file\n"):
        """Displacements of each node in the first load pattern, by number."""
        with tempfile.TemporaryDirectory() as folder:
            run(program, folder, self.text() + "\n" + commands)
            data = (pathlib.Path(folder) / "job.dis").read_bytes()
        return {struct.unpack_from("i", data, k)[0]: struct.unpack_from("6d", data, k + 4)
                for k in range(0, len(data), 52)}


def run(program, folder, text):
    subprocess.run([program], input=text + "\nquit\n", text=True, cwd=folder, check=True,
                   stdout=subprocess.DEVNULL, timeout=500)
    return (pathlib.Path(folder) / "job.out").read_text()


def iso(e, nu, t, more=""):
    g = e / (2 * (1 + nu))
    return f"e={e},{e},{e} g={g:.17g},{g:.17g},{g:.17g} nu={nu},{nu},{nu} t={t} {more}"


# --- the shells -------------------------------------------------------------------------------------


def roof(kind, n, curved):
    """[Scordelis 1964]: cylindrical roof on diaphragms under its own weight, a quarter."""
    def place(s, t):
        angle = math.radians(40) * (1 - t)  # from the free edge to the crown
        return 25 * math.sin(angle), 25 * s, 25 * math.cos(angle)

    def restraint(s, t):
        r = [0] * 6
        if s == 0:  # diaphragm
            r[0] = r[2] = r[4] = 1
        if s == 1:  # middle of the length
            r[1] = r[3] = r[5] = 1
        if t == 1:  # crown
            r[0] = r[4] = r[5] = 1
        return r
    model = Model(kind, n, n, lambda s, t: place(s, t), iso(4.32e8, 0, 0.25, "mass=360"), restraint,
                  curved=curved)
    model.extra = ["input gravity r=4 c=1", "1", "0", "0", "-1"]
    return model, lambda u: -u[model.at(1, 0)][2] / 0.3024


def pinched_cylinder(kind, n, curved):
    """[Belytschko 1985]: cylinder on diaphragms under two opposite forces, an eighth."""
    def place(s, t):
        angle = math.pi / 2 * t
        return 300 * math.cos(angle), 300 * s, 300 * math.sin(angle)

    def restraint(s, t):
        r = [0] * 6
        if s == 0:  # middle of the length
            r[1] = r[3] = r[5] = 1
        if s == 1:  # diaphragm
            r[0] = r[2] = r[4] = 1
        if t == 0:
            r[2] = r[3] = r[4] = 1
        if t == 1:
            r[0] = r[4] = r[5] = 1
        return r
    model = Model(kind, n, n, place, iso(3e6, 0.3, 3), restraint, curved=curved, flip=True)
    model.forces[model.at(0, 1)] = (0, 0, -0.25)
    return model, lambda u: -u[model.at(0, 1)][2] / 1.82488e-5


def hemisphere(kind, n, curved):
    """[MacNeal 1985]: hemisphere with a hole of 18 degrees under four forces, a quarter."""
    def place(s, t):
        angle, height = math.pi / 2 * s, math.radians(72) * t
        return (10 * math.cos(angle) * math.cos(height), 10 * math.sin(angle) * math.cos(height),
                10 * math.sin(height))

    def restraint(s, t):
        r = [0] * 6
        if s == 0:
            r[1] = r[3] = r[5] = 1
        if s == 1:
            r[0] = r[4] = r[5] = 1
        if t == 0 and s == 0:
            r[2] = 1
        return r
    model = Model(kind, n, n, place, iso(6.825e7, 0.3, 0.04), restraint, curved=curved)
    model.forces[model.at(0, 0)] = (1, 0, 0)
    model.forces[model.at(1, 0)] = (0, -1, 0)
    return model, lambda u: u[model.at(0, 0)][0] / 0.094


BENCHMARKS = {"roof": roof, "pinched cylinder": pinched_cylinder, "hemisphere": hemisphere}


def main():
    program = str(pathlib.Path(sys.argv[1]).resolve())
    names = sys.argv[2:] or BENCHMARKS
    for name in names:
        for kind, curved in (("min3s", False), ("min3s", True), ("shell3", False), ("min5s", False),
                             ("min4t", False)):
            figures = []
            for n in (4, 8, 16):
                try:
                    model, figure = BENCHMARKS[name](kind, n, curved)
                    figures.append("%.3f" % figure(model.displacements(program)))
                except (FileNotFoundError, subprocess.SubprocessError) as e:
                    figures.append("-")
            print(name, kind, "curved" if curved else "", *figures)


if __name__ == "__main__":
    main()
