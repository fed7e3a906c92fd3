#!/usr/bin/env python3
"""Makes a picture of a hull in the sea from a file of hyd_export_graphics -displ -freesurface -views.

    sea_picture.py MESH.msh PICTURE.png [--step STEP] [--exaggerate FACTOR]

STEP is the frame (1, 2, ...), FACTOR multiplies the motions of hull and sea. For the one in the README:

    ./run examples/barge/barge_sea.txt
    tools/sea_picture.py results/barge_sea/barge_sea.msh docs/pictures/barge_sea.png

Gmsh draws on the display of a virtual X server; on Debian: tools/need_packages gmsh xvfb xauth xfonts-75dpi
"""

import argparse
import pathlib
import subprocess
import sys
import tempfile

SEA_OPACITY = 150
SEA = ((4, 30, 66), (12, 60, 110), (30, 100, 155), (70, 145, 190), (130, 190, 215), (195, 226, 238), (248, 253, 255))
HULL = ((225, 225, 220), (255, 235, 140), (252, 170, 60), (225, 65, 40), (120, 0, 45))

# Views of the file: 0 displacements, 1 pressure amplitude, 2 elevation. Both scalars are drawn where
# the displacements put them.
COMMANDS = """
Merge "{mesh}";
General.MenuWidth = 0; General.GraphicsWidth = 1100; General.GraphicsHeight = 600;
General.Trackball = 0; General.Orthographic = 0; General.SmallAxes = 0; General.AntiAliasing = 1;
General.RotationX = -66; General.RotationY = 0; General.RotationZ = 35; General.TranslationY = -0.12;
General.ScaleX = 1.8; General.ScaleY = 1.8; General.ScaleZ = 2.7;
General.BackgroundGradient = 0; General.Color.Background = {{255, 255, 255}};
General.Color.Text = {{40, 40, 40}}; General.GraphicsFont = "Helvetica"; General.GraphicsFontSize = 18;
Mesh.SurfaceEdges = 0; Mesh.SurfaceFaces = 0; Mesh.Lines = 0; Mesh.Points = 0;
View[0].Visible = 0;
For i In {{1:2}}
  View[i].UseGeneralizedRaise = 1; View[i].GeneralizedRaiseView = 0;
  View[i].GeneralizedRaiseX = "v0"; View[i].GeneralizedRaiseY = "v1"; View[i].GeneralizedRaiseZ = "v2";
  View[i].GeneralizedRaiseFactor = {factor};
  View[i].TimeStep = {step}; View[i].ShowTime = 0;
  View[i].IntervalsType = 2; View[i].NbIso = 5; View[i].Light = 1; View[i].SmoothNormals = 1;
  View[i].AutoPosition = 0; View[i].PositionX = 120 + 560 * (i - 1); View[i].PositionY = 80;
  View[i].Width = 300; View[i].Height = 16;
EndFor
View[1].Name = "pressure amplitude on the hull, Pa"; View[1].Format = "%.0f";
View[2].Name = "elevation of the sea, m"; View[2].Format = "%.1f";
View[1].ColorTable = {hull}; View[2].ColorTable = {sea};
Draw;
Print "{picture}";
Exit;
"""


def colours(stops, opacity, count=96):
    """Gmsh's colour table: `count` colours evenly between the stops."""
    table = []
    for i in range(count):
        place = i * (len(stops) - 1) / (count - 1)
        k = min(int(place), len(stops) - 2)
        mix = [round(a + (b - a) * (place - k)) for a, b in zip(stops[k], stops[k + 1])]
        table.append("{%d,%d,%d,%d}" % (*mix, opacity))
    return "{" + ",".join(table) + "}"


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("mesh", type=pathlib.Path)
    parser.add_argument("picture", type=pathlib.Path)
    parser.add_argument("--step", type=int, default=4)
    parser.add_argument("--exaggerate", type=float, default=2.0)
    wanted = parser.parse_args()
    picture = wanted.picture.resolve()
    picture.unlink(missing_ok=True)
    with tempfile.TemporaryDirectory() as folder:
        script = pathlib.Path(folder) / "picture.geo"
        script.write_text(COMMANDS.format(mesh=wanted.mesh.resolve(), picture=picture, step=wanted.step,
                                          factor=wanted.exaggerate, hull=colours(HULL, 255),
                                          sea=colours(SEA, SEA_OPACITY)))
        # Gmsh's exit status says nothing here; the picture does.
        subprocess.run(("xvfb-run", "-a", "-s", "-screen 0 1280x1024x24", "gmsh", script), timeout=120,
                       check=False)
    if not picture.exists() or picture.stat().st_size == 0:
        sys.exit("Gmsh made no picture")


if __name__ == "__main__":
    main()
