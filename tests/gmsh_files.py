#!/usr/bin/env python3
"""Has Gmsh open every kind of file that the exporting commands write, and compares what it found in them.

    gmsh_files.py PROGRAM

Gmsh writes each mesh anew; nodes and elements must come back with their numbers, and the displaced
shapes, like the frames of each kind of colour, as the steps of one view. Exit status 77 (skipped) where Gmsh is not installed.
"""

import pathlib
import re
import shutil
import subprocess
import sys
import tempfile

SKIPPED = 77

MODEL = """job
nodes #=100001
1
n=2 x=4
n=4 y=4
n=7 z=3
n=100001 x=4 y=4 z=3

truss m=1 n=3
m=1 e=2e11 a=1e-3
n=1 nodes=1,2 mat=1
n=2 nodes=2,4 mat=1
n=3 nodes=4,1 mat=1

ntruss m=1 n=2
m=1 e=2e11 a=1e-3
n=1 nodes=1,7 mat=1
n=2 nodes=2,100001 mat=1

export_graphics file=mesh.msh
bcid
n=1 r=1,1,1,1,1,1

num_eqs
rigid_modes .disp
export_graphics -deformed file=modes.msh
export_graphics -deformed -autoscale case=5 file=case.msh
export_graphics -deformed -autoscale scale=10 case=4 steps=8 file=cycle.msh
beam3d m=1 n=1
m=1 e=2e11 g=8e10 a=1e-3 j=1e-6 iy=1e-6 iz=1e-6
n=1 mat=1 nodes=4,7 node3=-1

interface n=20
n=9 nodes=1,2,100001,7
n=5 nodes=1,2,4

export_graphics file=kinds.msh
hyd_parameters h=10
hyd_coordaxs
hyd_wave nbeta=1 nfreq=1 -freq
30
2
hyd_nodes #=100005
1
2 0 0 -2
3 3 0 -2
4 3
100005 0 0 1

hyd_panel n=3
n=1 nodes=1,2,3,4
n=3 nodes=100005,1,4

hyd_surf_nodes #=5
1 0 9
2 5 9
3 5 3
5 0 3

hyd_surf_panel n=2
n=1 nodes=1,2,5
n=2 nodes=2,3,5

zero .hyd_umx r=100005 c=2
zero .hyd_umy r=100005 c=2
zero .hyd_umz r=100005 c=2 v=0.5
zeroc .hyd_gencor r=2 v=1,1
zeroc .hyd_surf_disp r=5 v=0.5,1
zeroc .hyd_potincm r=1 v=1
zeroc .hyd_potdiff r=1 v=1
input3dc .hyd_potrad r=1 c=1 t=2
1 0
1 0
hyd_export_graphics -Gmsh -freesurface file=hull.msh
hyd_export_graphics -Gmsh -modes -displ freq=1 angle=1 steps=3 -freesurface -views file=sea.msh
zero time r=4
zero u r=4 c=100005
zero eta r=4 c=5
hyd_export_graphics_th time u u u eta file=history.msh
quit
"""
# File, number of displaced shapes, names of the further views.
FILES = (("mesh.msh", 0), ("modes.msh", 6), ("case.msh", 1), ("cycle.msh", 8), ("kinds.msh", 0),
         ("hull.msh", 0), ("sea.msh", 5, "Pressure amplitude", "Elevation"), ("history.msh", 4))


def section(path, name):
    return re.search(rf"^\${name}\n(.*?)^\$End{name}", path.read_text(), re.S | re.M)[1].splitlines()


def written(path):
    """Numbers of the nodes, numbers and nodes of the elements; their counts must be those said."""
    count, *nodes = section(path, "Nodes")
    assert int(count) == len(nodes), f"{path.name}: {count} nodes are {len(nodes)}"
    count, *elements = section(path, "Elements")
    assert int(count) == len(elements), f"{path.name}: {count} elements are {len(elements)}"
    # Number, type, number of tags, tags, nodes.
    rows = [[int(field) for field in line.split()] for line in elements]
    return {int(line.split()[0]) for line in nodes}, {(row[0], *row[3 + row[2]:]) for row in rows}


def read_back(path):
    """The same of a file of format 4.1, where both stand in blocks with their count at the end of
    the first line: node numbers and then coordinates, or elements."""
    found = []
    for name, lines_of_each in (("Nodes", 2), ("Elements", 1)):
        lines, rows = section(path, name)[1:], []
        while lines:
            count = int(lines[0].split()[-1])
            rows += [tuple(int(field) for field in line.split()) for line in lines[1:1 + count]]
            lines = lines[1 + lines_of_each * count:]
        found.append(set(rows))
    return {number for (number,) in found[0]}, found[1]


def gmsh(folder, *arguments):
    result = subprocess.run(("gmsh", *arguments), cwd=folder, capture_output=True, text=True, timeout=60)
    text = result.stdout + result.stderr
    assert result.returncode == 0 and not re.search("Error|Warning", text), text
    return text


def check(folder, name, shapes, *further):
    expected = written(folder / name)
    gmsh(folder, name, "-0", "-save_all", "-format", "msh41", "-o", "back.msh")
    found = read_back(folder / "back.msh")
    assert found == expected, f"{name}: {expected} became {found}"

    views = [""] * (shapes > 0) + list(further)
    (folder / "views.geo").write_text("\n".join(
        [f'Merge "{name}";', 'Printf("views %g", PostProcessing.NbViews);',
         *(f'Printf(StrCat("view ", View[{i}].Name, ": %g"), View[{i}].NbTimeStep);' for i in range(len(views))), ""]))
    text = gmsh(folder, "views.geo", "-0", "-format", "msh41", "-o", "back.msh")
    assert f"views {len(views)}\n" in text, text
    for view in views:
        # Gmsh counts steps from 0 and ours begin at 1.
        assert f"view {view}: {shapes + 1}\n" in text, text
    print(f"{name}: {len(found[0])} nodes, {len(found[1])} elements, {shapes} shapes")


def main():
    if not shutil.which("gmsh"):
        print("Gmsh is not installed")
        sys.exit(SKIPPED)
    program = str(pathlib.Path(sys.argv[1]).resolve())
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        subprocess.run([program], cwd=folder, input=MODEL, text=True, check=True, capture_output=True)
        for file in FILES:
            check(folder, *file)


if __name__ == "__main__":
    main()
