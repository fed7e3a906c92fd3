#!/usr/bin/env python3
"""Writes the command files of the examples: the meshes and mode shapes that nobody would type.

Usage: make_examples.py FOLDER [hemisphere|barge|barge_sea|flexible_barge|boxes] [COLUMNS ROWS of the hemisphere]
"""
import math
import pathlib
import sys

GRAV = 9.80665
RHO = 1025.0


def no_dust(value):
    """Rounding errors of sines and cosines of a right angle become 0."""
    return value if abs(value) > 1e-12 else 0.0


def hemisphere(columns=7, rows=36, symmetry=2, ka=(0.1, 0.2, 0.5, 1.0, 2.0, 3.0)):
    """Hemisphere of radius 10 in deep water: `columns` panels along a quarter of the water line,
    `rows` down to the lowest point; a quarter (symmetry 2), half (1) or all (0) of the surface."""
    radius = 10.0
    columns *= {0: 4, 1: 2, 2: 1}[symmetry]
    turn = {0: 2.0, 1: 1.0, 2: 0.5}[symmetry] * math.pi
    nodes = []
    for i in range(rows):
        for j in range(columns + 1):
            theta, phi = math.pi / 2 * i / rows, turn * j / columns
            x = radius * math.cos(theta) * math.cos(phi)
            y = radius * math.cos(theta) * math.sin(phi)
            nodes.append((x, y, -radius * math.sin(theta)))
    nodes.append((0.0, 0.0, -radius))
    row, quads = columns + 1, columns * (rows - 1)
    top = row * (rows - 1) + 1
    mass = RHO * 2 / 3 * math.pi * radius**3
    zcg = -2.0
    inertia = mass * 0.4 * radius**2  # about the origin, as every entry of the mass matrix
    off = mass * zcg
    lines = [
        "/* Floating hemisphere, radius 10 m, deep water, %s of the surface"
        % {0: "all", 1: "half", 2: "a quarter"}[symmetry],
        "hyd_parameters h=2000 symmetry=%d rho=%g grav=%g" % (symmetry, RHO, GRAV),
        "hyd_coordaxs zcg=%g" % zcg,
        "hyd_wave nbeta=1 nfreq=%d -freq" % len(ka),
        "0",
        " ".join("%.10f" % math.sqrt(k / radius * GRAV) for k in ka),
        "hyd_nodes #=%d" % len(nodes),
        *("%d %.9f %.9f %.9f" % (n, no_dust(x), no_dust(y), no_dust(z)) for n, (x, y, z) in enumerate(nodes, 1)),
        "",
        "hyd_panel n=%d" % (columns * rows),
        "n=1 nodes=1,2,%d,%d gen=%d inc=1,1 gen_2d=%d inc_2d=%d,%d inc_el=%d"
        % (row + 2, row + 1, columns - 1, rows - 2, row, row, columns),
        "n=%d nodes=%d,%d,%d,0 gen=%d inc=1,0" % (quads + 1, top, top + 1, len(nodes), columns - 1),
        "",
        "hyd_body_check",
        "hyd_rigid_modes",
        "hyd_rmass",
        "%.6e 0 0 0 %.6e 0" % (mass, off),
        "0 %.6e 0 %.6e 0 0" % (mass, -off),
        "0 0 %.6e 0 0 0" % mass,
        "0 %.6e 0 %.6e 0 0" % (-off, inertia),
        "%.6e 0 0 0 %.6e 0" % (off, inertia),
        "0 0 0 0 0 %.6e" % inertia,
        "hyd_analysis",
        "hyd_analysis_response -residual",
        "hyd_tf",
    ]
    return lines


def grid(first, corners, na, nb):
    """Records of a plane face: corners A, B (na panels), C, D (nb panels from B to C), clockwise as
    seen from the fluid. Returns node records, quad record, panel record, node and panel count."""
    (a, b, c, d) = corners
    n_a, n_b = first, first + na
    n_d, n_c = first + nb * (na + 1), first + nb * (na + 1) + na
    nodes = ["%d %g %g %g" % (n, *p) for n, p in ((n_a, a), (n_b, b), (n_d, d), (n_c, c))]
    quad = "quad=%d,%d,%d,%d inc=1,%d" % (n_a, n_b, n_d, n_c, na + 1)
    panel = "nodes=%d,%d,%d,%d gen=%d inc=1,1 gen_2d=%d inc_2d=%d,%d inc_el=%d" % (
        n_a, n_a + 1, n_a + na + 2, n_a + na + 1, na - 1, nb - 1, na + 1, na + 1, na)
    return nodes, quad, panel, (na + 1) * (nb + 1), na * nb


def box_faces(x0, x1, y0, y1, draft, nx, ny, nz, half=False):
    """Wet faces of a box, corners clockwise as seen from the fluid."""
    top, low = 0.0, -draft
    faces = [
        ([(x0, y1, top), (x0, y1, low), (x1, y1, low), (x1, y1, top)], nz, nx),
        ([(x0, y1, low), (x0, y0, low), (x1, y0, low), (x1, y1, low)], ny, nx),
        ([(x1, y0, top), (x1, y1, top), (x1, y1, low), (x1, y0, low)], ny, nz),
        ([(x0, y0, top), (x0, y0, low), (x0, y1, low), (x0, y1, top)], nz, ny),
    ]
    if not half:
        faces.append(([(x1, y0, top), (x1, y0, low), (x0, y0, low), (x0, y0, top)], nz, nx))
    return faces


def mesh(bodies):
    """Node and panel commands of several lists of faces, and the ranges of each body."""
    nodes, quads, panels, ranges = [], [], [], []
    n_node = n_panel = 0
    for faces in bodies:
        node0, panel0 = n_node + 1, n_panel + 1
        for corners, na, nb in faces:
            records, quad, panel, count, elements = grid(n_node + 1, corners, na, nb)
            nodes += records
            quads.append(quad)
            panels.append("n=%d %s" % (n_panel + 1, panel))
            n_node += count
            n_panel += elements
        ranges.append((node0, n_node, panel0, n_panel))
    lines = ["hyd_nodes #=%d" % n_node, *nodes, "", "hyd_node_gen", *quads, "",
             "hyd_panel n=%d" % n_panel, *panels, ""]
    return lines, ranges


def grid_points(faces):
    """Coordinates of the generated nodes, in their order."""
    points = []
    for (a, b, c, d), na, nb in faces:
        for j in range(nb + 1):
            for i in range(na + 1):
                s, t = i / na, j / nb
                points.append([(1 - s) * (1 - t) * a[k] + s * (1 - t) * b[k] + s * t * c[k]
                               + (1 - s) * t * d[k] for k in range(3)])
    return points


class FreeFreeBeam:
    """Vertical bending mode n (1, 2) of a free-free beam of length L, unit displacement at the
    ends:  W = [cosh + cos - sigma (sinh + sin)](lambda (x + L/2)) / 2"""

    def __init__(self, n, length):
        self.length = length
        self.lam = {1: 4.730040744862704, 2: 7.853204624095838}[n] / length
        s = self.lam * length
        self.sigma = (math.cosh(s) - math.cos(s)) / (math.sinh(s) - math.sin(s))

    def value(self, x):
        s = self.lam * (x + self.length / 2)
        return (math.cosh(s) + math.cos(s) - self.sigma * (math.sinh(s) + math.sin(s))) / 2

    def slope(self, x):
        s = self.lam * (x + self.length / 2)
        return self.lam * (math.sinh(s) - math.sin(s)
                           - self.sigma * (math.cosh(s) + math.cos(s))) / 2


def matrix(name, rows):
    return ["input %s r=%d c=%d" % (name, len(rows), len(rows[0])),
            *(" ".join("%.9g" % (v + 0.0) for v in row) for row in rows)]


def mode_records(number, mode, points):
    """Records of hyd_flex_modes: displacements and rotations of all nodes in a bending mode."""
    return ["%d 0 %d" % (number, number - 7),
            *("%d %.9f 0 %.9f 0 %.9f 0" % (i, -z * mode.slope(x) + 0.0, mode.value(x), -mode.slope(x) + 0.0)
              for i, (x, _, z) in enumerate(points, 1)), ""]


BARGE = {"length": 100.0, "beam": 20.0, "draft": 5.0, "ei": 2.0e11}
BARGE_STATIONS = (-BARGE["length"] / 2, 0.0, BARGE["length"] / 2)


def barge_faces():
    half = BARGE["length"] / 2
    return box_faces(-half, half, 0.0, BARGE["beam"] / 2, BARGE["draft"], 40, 4, 4, half=True)


def barge_head(title, mesh_lines):
    """The commands up to the rigid modes, with two flexible modes to come."""
    return [
        "/* Barge 100 x 20 x 5 m in 20 m of water, half mesh, six rigid and " + title,
        "hyd_parameters h=20 symmetry=1 nmodef=2 hdamp=.01 rho=%g grav=%g" % (RHO, GRAV),
        "hyd_coordaxs",
        "hyd_wave nbeta=2 nfreq=8",
        "180 135",
        "5 6 7 8 9 10 12 14",
        *mesh_lines,
        "hyd_body_check",
        "hyd_rigid_modes",
    ]


def barge_mass():
    """Structural mass of the six rigid modes, in a matrix with room for two more."""
    mass = RHO * BARGE["beam"] * BARGE["draft"] * BARGE["length"]
    mstr = [[0.0] * 8 for _ in range(8)]
    for i, m in enumerate((mass, mass, mass, mass * 7.0**2, mass * 29.5**2, mass * 29.5**2)):
        mstr[i][i] = m
    return mstr


def barge_structure():
    """Bending modes, mass and stiffness of the barge; the modes are typed in, with unit displacement
    at the ends."""
    modes = [FreeFreeBeam(n, BARGE["length"]) for n in (1, 2)]
    mstr, kstr = barge_mass(), [[0.0] * 8 for _ in range(8)]
    for i, mode in enumerate(modes, 6):
        mstr[i][i] = mstr[0][0] / 4
        kstr[i][i] = BARGE["ei"] * mode.lam**4 * BARGE["length"] / 4
    return modes, mstr, kstr


def barge():
    """Barge 100 x 20 x 5 m in 20 m of water, half mesh, six rigid and two bending modes."""
    mesh_lines, _ = mesh([barge_faces()])
    modes, mstr, kstr = barge_structure()
    modemat = [[0, 0, 1, 0, -x, 0, modes[0].value(x), modes[1].value(x)] for x in BARGE_STATIONS]
    lines = barge_head("two bending modes", mesh_lines) + ["hyd_flex_modes"]
    points = grid_points(barge_faces())
    for number, mode in enumerate(modes, 7):
        lines += mode_records(number, mode, points)
    lines += matrix("hyd_mstr", mstr) + matrix("hyd_kstr", kstr) + matrix("hyd_modemat", modemat)
    lines += ["hyd_analysis", "hyd_analysis_response symmetrize=on", "hyd_tf"]
    return lines


def barge_sea():
    """The whole barge with its dry sides and deck, in a sea that is drawn: for Gmsh."""
    half, width, freeboard = BARGE["length"] / 2, BARGE["beam"] / 2, 3.0
    nx, ny = 32, 6
    wet = box_faces(-half, half, -width, width, BARGE["draft"], nx, ny, 2)
    a, b, c, d = (-half, width), (half, width), (half, -width), (-half, -width)
    dry = [([(*p, freeboard), (*p, 0.0), (*q, 0.0), (*q, freeboard)], 1, n)
           for p, q, n in ((a, b, nx), (b, c, ny), (c, d, nx), (d, a, ny))]
    dry.append(([(*a, freeboard), (*b, freeboard), (*c, freeboard), (*d, freeboard)], nx, 1))
    mesh_lines, _ = mesh([wet + dry])
    modes, mstr, kstr = barge_structure()
    lines = [
        "/* The barge, whole, in a wave of 8 s from the side of the bow: a picture for Gmsh",
        "hyd_parameters h=20 nmodef=2 hdamp=.01 rho=%g grav=%g" % (RHO, GRAV),
        "hyd_coordaxs",
        "hyd_wave nbeta=1 nfreq=1",
        "150",
        "8",
        *mesh_lines,
        "hyd_rigid_modes",
        "hyd_flex_modes",
    ]
    points = grid_points(wet + dry)
    for number, mode in enumerate(modes, 7):
        lines += mode_records(number, mode, points)
    lines += matrix("hyd_mstr", mstr) + matrix("hyd_kstr", kstr)
    lines += ["hyd_analysis -source", "hyd_analysis_response symmetrize=on", "hyd_tf"]
    # Eight panels about the water plane of the hull, each to be divided.
    xs, ys = (-125.0, -half, half, 125.0), (75.0, width, -width, -75.0)
    parts_x, parts_y = (24, 32, 24), (20, ny, 20)
    cells = [(i, j) for j in range(3) for i in range(3) if (i, j) != (1, 1)]
    lines += ["/* The sea about it, for the picture alone", "hyd_surf_nodes #=16"]
    lines += ["%d %g %g 0" % (4 * j + i + 1, x, y) for j, y in enumerate(ys) for i, x in enumerate(xs)]
    lines += ["", "hyd_surf_panel n=%d" % len(cells)]
    for n, (i, j) in enumerate(cells, 1):
        corner = 4 * j + i + 1
        lines.append("n=%d nodes=%d,%d,%d,%d" % (n, corner, corner + 1, corner + 5, corner + 4))
    lines.append("")
    for n, (i, j) in enumerate(cells, 1):
        lines.append("hyd_surf_panel -subdivide range=%d,%d nxm=%d,%d" % (n, n, parts_x[i], parts_y[j]))
    lines += [
        "hyd_surf_elevation",
        "/* Twelve frames of the motion, in colours of pressure and elevation: barge_sea.msh",
        "hyd_export_graphics -Gmsh -displ freq=1 angle=1 steps=12 -freesurface -views",
    ]
    return lines


def flexible_barge():
    """The same barge, its bending modes from a finite-element model: a spine of beams in the water
    plane, to which the nodes of the wet surface are rigidly linked."""
    length, segments = BARGE["length"], 40
    mesh_lines, _ = mesh([barge_faces()])
    points = grid_points(barge_faces())
    spine = len(points) + 1
    per_length = RHO * BARGE["beam"] * BARGE["draft"]
    hull = mesh_lines[1:mesh_lines.index("")]
    generation = mesh_lines.index("hyd_node_gen")
    quads = mesh_lines[generation + 1:mesh_lines.index("", generation)]
    lines = [
        *barge_head("two bending modes of a finite-element model", mesh_lines),
        "/* The beam: sideways bending, torsion and stretching are stiffer than upright bending",
        "nodes #=%d" % (spine + segments),
        *hull,
        "n=%d x=%g" % (spine, -length / 2),
        "n=%d x=%g lgen=1" % (spine + segments, length / 2),
        "",
        "node_gen",
        *quads,
        "",
        "bcid",
        "",
        "beam3d m=1 n=%d" % segments,
        "m=1 e=%g g=8e10 a=1 j=40 iy=1 iz=20 mbar=%g mI=%g,0,0"
        % (BARGE["ei"], per_length, per_length * 7.0**2),
        "n=1 mat=1 nodes=%d,%d node3=-3 gen=%d inc=1" % (spine, spine + 1, segments - 1),
        "",
        "nodal_constraint",
        *("type=body c=%d r=%d" % (i, spine + round((x / length + 0.5) * segments))
          for i, (x, _, _) in enumerate(points, 1)),
        "",
        "form_k",
        "form_m",
        "eigval #=8 shift=1",
        "/* A picture of the modes, for Gmsh: flexible_barge.msh",
        "cp .phi .disp",
        "export_graphics -deformed -autoscale scale=5 T=.omega2",
        "/* Modes 7 and 8, behind six of a rigid body, are symmetric about the x-z plane",
        "inputi .hyd_modesym r=1 c=8",
        "1 2 1 2 1 2 1 1",
        "to_vector .hyd_modesym",
        "hyd_flex_modes .phi",
        "/* The modes have unit mass; their stiffness is the square of the frequency",
        *matrix("hyd_mstr", barge_mass()),
        "ident unit r=2",
        "put unit hyd_mstr r=7 c=7",
        "cp .omega2 stiffness r=7",
        "zero hyd_kstr r=8 c=8",
        "putdg stiffness hyd_kstr r=7",
        *matrix("hyd_modemat", [[0, 0, 1, 0, -x, 0, 0, 0] for x in BARGE_STATIONS]),
        "/* Heave of the spine at the stern, midships and the bow: its third equations",
    ]
    for row, x in enumerate(BARGE_STATIONS, 1):
        equation = 6 * round((x / length + 0.5) * segments) + 3
        lines += ["cp .phi heave r=%d n=1 c=7 m=2" % equation, "put heave hyd_modemat r=%d c=7" % row]
    return lines + ["hyd_analysis", "hyd_analysis_response symmetrize=on", "hyd_tf"]


def rigid_mass(length, beam, draft, zcg):
    """Mass matrix of a floating box about the body origin in the water plane, as six rows."""
    m = RHO * length * beam * draft
    ixx = m * (beam**2 / 9 + zcg**2)
    iyy = m * (length**2 / 14 + zcg**2)
    izz = m * length**2 / 14
    rows = [[0.0] * 6 for _ in range(6)]
    for i, v in enumerate((m, m, m, ixx, iyy, izz)):
        rows[i][i] = v
    rows[0][4] = rows[4][0] = m * zcg
    rows[1][3] = rows[3][1] = -m * zcg
    return [" ".join("%.9g" % (v + 0.0) for v in row) for row in rows]


def boxes():
    """Two different boxes side by side, no symmetry, 12 modes, three headings."""
    first = box_faces(-20.0, 20.0, -6.0, 6.0, 4.0, 16, 5, 3)
    second = box_faces(-15.0, 15.0, 10.0, 20.0, 3.0, 12, 4, 2)
    mesh_lines, ranges = mesh([first, second])
    lines = [
        "/* Two boxes side by side in 30 m of water, no symmetry, 12 modes, three headings",
        "hyd_parameters h=30 nbodies=2 rho=%g grav=%g" % (RHO, GRAV),
        "hyd_coordaxs body=1 zcg=-1",
        "hyd_coordaxs body=2 yb=15 zcg=-.5",
        "hyd_wave nbeta=3 nfreq=4",
        "0 45 80",
        "5 6.5 8 11",
        *mesh_lines,
    ]
    for body, (n0, n1, p0, p1) in enumerate(ranges, 1):
        region = "body=%d nodes=%d,%d panels=%d,%d" % (body, n0, n1, p0, p1)
        lines += ["hyd_body_check " + region, "hyd_rigid_modes " + region]
    lines += ["hyd_rmass body=1", *rigid_mass(40, 12, 4, -1.0),
              "hyd_rmass body=2", *rigid_mass(30, 10, 3, -0.5)]
    lines += ["hyd_analysis -source",
              "hyd_analysis #added_freqs=2 -periods -source", "7.2 9.5",
              "hyd_analysis_response",
              "hyd_tf"]
    return lines


EXAMPLES = {"hemisphere": hemisphere, "barge": barge, "barge_sea": barge_sea, "flexible_barge": flexible_barge,
            "boxes": boxes}
FOLDERS = {"barge_sea": "barge"}  # of those that share one


def main():
    folder = pathlib.Path(sys.argv[1])
    wanted = sys.argv[2:3] or list(EXAMPLES)
    for name in wanted:
        arguments = [int(v) for v in sys.argv[3:]] if name == "hemisphere" else []
        target = folder / FOLDERS.get(name, name)
        target.mkdir(parents=True, exist_ok=True)
        (target / (name + ".txt")).write_text("\n".join(EXAMPLES[name](*arguments)) + "\n")


if __name__ == "__main__":
    main()
