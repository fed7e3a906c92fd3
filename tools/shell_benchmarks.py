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
        self.forces, self.before, self.extra = {}, [], []
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
        lines += [""] + self.before
        lines += [f"{self.kind} m=1 n={len(self.records)} {self.flags}", f"m=1 {self.material}"]
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


def numbers_behind(out, name):
    """The numbers that `print` has written last, a column."""
    lines = out[out.rindex("ROW/COL"):].splitlines()[1:]
    values = []
    for line in lines:
        words = line.split()
        if not words:
            break
        values += [float(word) for word in words[1:]]
    return values


def iso(e, nu, t, more=""):
    g = e / (2 * (1 + nu))
    return f"e={e},{e},{e} g={g:.17g},{g:.17g},{g:.17g} nu={nu},{nu},{nu} t={t} {more}"


# --- the shells -------------------------------------------------------------------------------------


def roof(kind, n, curved):
    """[MacNeal 1985]: cylindrical roof on diaphragms under its own weight, a quarter."""
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


def twisted_beam(kind, n, curved, out_of_plane, more=""):
    """[MacNeal 1985]: cantilever 12 by 1.1 by 0.32, twisted by a right angle, 3 n by n / 2 elements."""
    def place(s, t):
        angle, y = math.pi / 2 * s, 1.1 * (t - 0.5)
        return 12 * s, y * math.cos(angle), y * math.sin(angle)
    model = Model(kind, 3 * n, n // 2, place, iso(29e6, 0.22, 0.32, more),
                  lambda s, t: FIXED if s == 0 else (0,) * 6, curved=curved)
    # At the tip the width lies along z: a force along z acts in the plane of the section's width.
    force = (0, 1, 0) if out_of_plane else (0, 0, 1)
    share = n // 2
    for j in range(share + 1):
        part = (0.5 if j in (0, share) else 1) / share
        model.forces[model.at(1, j / share)] = tuple(part * f for f in force)
    axis, reference = (1, 0.001754) if out_of_plane else (2, 0.005424)
    return model, lambda u: u[model.at(1, 0.5)][axis] / reference


def hypar(kind, n, curved, thickness, reference):
    """[Bathe 2000]: z = x^2 - y^2 over a unit square under its own weight, one edge clamped, a half."""
    def place(s, t):
        x, y = s - 0.5, 0.5 * t
        return x, y, x * x - y * y

    def restraint(s, t):
        if s == 0:
            return FIXED
        return (0, 1, 0, 1, 0, 1) if t == 0 else (0,) * 6
    model = Model(kind, 2 * n, n, place, iso(2e11, 0.3, thickness, "mass=8000"), restraint,
                  curved=curved)
    model.extra = ["input gravity r=4 c=1", "1", "0", "0", "-1"]
    return model, lambda u: -u[model.at(1, 0)][2] / reference


def plate(kind, n, _, thickness, clamped, reference):
    """Unit square under uniform pressure, a quarter; the deflection of the centre times D."""
    e, nu = 10.92 / thickness**3, 0.3  # D = 1

    def restraint(s, t):
        r = [1, 1, 0, 0, 0, 1]
        if s == 1 or t == 1:
            r[2] = 1
        if s == 0 or (t == 1 or s == 1) and clamped:
            r[4] = 1
        if t == 0 or (t == 1 or s == 1) and clamped:
            r[3] = 1
        if not clamped and s == 1:
            r[3] = 1
        if not clamped and t == 1:
            r[4] = 1
        return r
    by_element = NODES_OF[kind] == 4 and kind != "min5s" or kind in ("min6", "isomin6")
    model = Model(kind, n, n, lambda s, t: (s / 2, t / 2, 0), iso(e, nu, thickness), restraint,
                  face=1, flags="q=pressure" if by_element else "-pressure")
    if by_element:
        model.before = [f"zero pressure r={len(model.points)} v=1"]
    else:
        model.extra = ["nodal_pressure", "n=all pat=1 p=1", ""]
    sign = 1 if by_element else -1
    return model, lambda u: sign * u[model.at(0, 0)][2] / reference


def free_plate(kind, n, _):
    """[NAFEMS FV12]: free square plate of 10 m, 0.05 m thick: 1.622, 2.360, 2.922 Hz."""
    model = Model(kind, n, n, lambda s, t: (10 * s, 10 * t, 0), iso(200e9, 0.3, 0.05, "mass=8000"),
                  lambda s, t: (1, 1, 0, 0, 0, 1))
    commands = "form_k\nform_m\neigval #=6 shift=50 -random -freq digits=10 maxit=200\nprint .omega\n"

    def figures(out):
        omega = numbers_behind(out, ".omega")[3:6]
        return [w / (2 * math.pi) / f for w, f in zip(omega, (1.622, 2.360, 2.922))]
    return model, commands, figures


def buckling(kind, n, _):
    """[Timoshenko 1961]: square plate, supported, under compression in x: N b^2 / (pi^2 D) = 4."""
    thickness, nu = 0.01, 0.3
    e = 10.92 / thickness**3  # D = 1

    def restraint(s, t):
        r = [0, 0, 0, 0, 0, 1]
        if s in (0, 1):
            r[2] = r[3] = 1
        if t in (0, 1):
            r[2] = r[4] = 1
        if s == 0:
            r[0] = 1
        if s == 0 and t == 0:
            r[1] = 1
        return r
    model = Model(kind, n, n, lambda s, t: (s, t, 0), iso(e, nu, thickness, "local=1"), restraint,
                  flags="-kg")
    for j in range(n + 1):
        model.forces[model.at(1, j / n)] = (-(0.5 if j in (0, n) else 1) / n,)
    commands = """form_k
copy .kstr k0
copy .kstr .mstr
lsolve
state
form_k
sub .mstr .kstr
seti .mstr_type v=0
mv k0 .kstr
eigval #=1 -random digits=10 maxit=200
print .omega2
"""
    return model, commands, lambda out: [numbers_behind(out, ".omega2")[0] / math.pi**2 / 4]


# --- the table --------------------------------------------------------------------------------------

SHELLS = [("min3s", False), ("min3s", True), ("min5s", False), ("min4t", False)]
PLATES = [("min3s", False), ("min5s", False), ("min4t", False), ("min6", False), ("isomin6", False)]


def table():
    def partial(function, *more):
        return lambda kind, n, curved: function(kind, n, curved, *more)
    yield "Scordelis-Lo roof", roof, SHELLS
    yield "pinched cylinder", pinched_cylinder, SHELLS
    yield "hemisphere", hemisphere, SHELLS
    yield "twisted beam, in plane", partial(twisted_beam, False), SHELLS
    yield "twisted beam, out of plane", partial(twisted_beam, True), SHELLS
    stiff = "gamma=1.18852e5"  # G12 / 100
    yield "twisted beam, in plane, gamma = G12/100", partial(twisted_beam, False, stiff), SHELLS[3:]
    yield "twisted beam, out of plane, gamma = G12/100", partial(twisted_beam, True, stiff), SHELLS[3:]
    yield "hypar, t/L = 1/100", partial(hypar, 0.01, 9.3355e-5), SHELLS
    yield "hypar, t/L = 1/1000", partial(hypar, 0.001, 6.3941e-3), SHELLS
    yield "plate, supported, t/L = 1/1000", partial(plate, 1e-3, False, 0.00406235), PLATES
    yield "plate, clamped, t/L = 1/1000", partial(plate, 1e-3, True, 0.00126532), PLATES
    # The Mindlin plate on hard supports: 0.00406235 + 0.0736713 t^2 / (5 (1 - nu)).
    yield "plate, supported, t/L = 1/10", partial(plate, 0.1, False, 0.00427284), PLATES


MESHES = (4, 8, 16)


def displacement_figure(program, benchmark, kind, n, curved):
    model, figure = benchmark(kind, n, curved)
    return "%.3f" % figure(model.displacements(program))


def printed_figures(program, benchmark, kind, n, curved):
    model, commands, figures = benchmark(kind, n, curved)
    with tempfile.TemporaryDirectory() as folder:
        out = run(program, folder, model.text() + "\n" + commands)
    return " ".join("%.3f" % f for f in figures(out))


def rows():
    for name, benchmark, kinds in table():
        yield name, benchmark, kinds, displacement_figure
    with_drilling = [("min3s", False), ("min5s", False), ("min4t", False)]
    yield "free plate, three frequencies", free_plate, with_drilling, printed_figures
    yield "buckling", buckling, with_drilling[:2], printed_figures


def main():
    program = str(pathlib.Path(sys.argv[1]).resolve())
    print("| benchmark | element | 4 | 8 | 16 |\n|---|---|---|---|---|")
    for name, benchmark, kinds, figure_of in rows():
        if not any(word in name for word in sys.argv[2:] or [""]):
            continue
        for kind, curved in kinds:
            figures = [figure_of(program, benchmark, kind, n, curved) for n in MESHES]
            element = f"`{kind}`" + (", curved" if curved else "")
            print("|", name, "|", element, "|", " | ".join(figures), "|", flush=True)


if __name__ == "__main__":
    main()
