#!/usr/bin/env python3
"""Checks that includes point only downward, that no two folders need each other, that no header holds a
variable, and that the memory of the BLAS is asked for where it is called.

    check_includes.py SOURCE_FOLDER

Tables stand above commands, commands above services, services above numeric kernels. A file may
include headers of its own kind and of those below it; a numeric kernel includes nothing else of this
program than numeric kernels. FOLDERS stand in the order in which they build on each other: a file,
tables aside, includes headers of its own folder and of those before it.
"""

import fnmatch
import pathlib
import re
import sys

FOLDERS = ("numeric", "kernel", "matrix", "fem", "solvers", "elements", "dynamics", "hydro_model", "green",
           "hydro_analysis", "hydro_response")

KINDS = ("numeric kernel", "service", "command", "table")

# The first pattern that fits a file gives its kind; files that fit none are commands.
PATTERNS = (
    ("table", "kernel/quelorzt.cpp kernel/main_loop.* kernel/quelorzt_cmd.cpp kernel/util_cmd.cpp"
              " kernel/db_cmd.cpp kernel/loop_cmd.cpp matrix/mat_cmd.cpp matrix/func_cmd.cpp"
              " matrix/misc_cmd.cpp fem/fem_cmd.cpp fem/fe_elm_cmd.cpp elements/element_table.cpp"),
    ("numeric kernel", "numeric/* fem/node_ordering.* green/* matrix/gauss.* matrix/polynomial.*"
                       " dynamics/fft_kernels.* dynamics/jacobif.* dynamics/subspace.*"
                       " hydro_model/waven.* hydro_model/hydrostatics.* hydro_model/panel_motion.*"
                       " hydro_analysis/coefficients.* hydro_analysis/csolve.*"
                       " hydro_analysis/incoming_wave.* hydro_analysis/influence*.*"
                       " hydro_analysis/solve2.* hydro_analysis/symmetry.hpp"
                       " hydro_response/drag.* hydro_response/far_field.* hydro_response/field_potential.*"
                       " hydro_response/response_values.* hydro_response/wave_spectra.*"
                       " elements/bar.* elements/catenary.* elements/frame.* elements/plane_beam.*"
                       " elements/local_axes.hpp elements/shell_section.* elements/shell_triangle.*"
                       " elements/shell_forces.* elements/shell_quad.* elements/plate6.*"),
    ("command", "kernel/condit.* kernel/help.* kernel/*_cmd.*"),
    ("service", "kernel/* solvers/matrix.* matrix/blocks.* fem/elemutil.* fem/node_family.* fem/nodes.* fem/bcid.hpp"
                " fem/assembly.* fem/constraint.* fem/eqns.* fem/formkm.* elements/element_family.* elements/grid_input.*"
                " elements/cable_records.*"
                " elements/shell_family.* elements/triangle_shells.*"
                " fem/export_to_gmsh.* fem/nodal_values.* fem/rigid_modes.* fem/state.*"
                " fem/loads.* fem/masses.* fem/node_records.*"
                " hydro_response/source_files.*"),
)

INCLUDE = re.compile(r'^\s*#\s*include\s+"([^"]+)"', re.M)
VARIABLE = re.compile(r"^(?:inline|static|extern|thread_local)\b(?! \"C\")(?!.*\bconstexpr\b)[^()]*[;{=]", re.M)


def kind_of(name):
    for kind, patterns in PATTERNS:
        if any(fnmatch.fnmatch(name, pattern) for pattern in patterns.split()):
            return KINDS.index(kind)
    return KINDS.index("command")


def folder_of(name):
    return name.split("/")[0]


def level_of(name):
    return FOLDERS.index(folder_of(name))


def faults_of(root, path):
    name = path.relative_to(root).as_posix()
    text = path.read_text(encoding="utf-8")
    for header in INCLUDE.findall(text):
        if not (root / header).is_file():
            yield f'{name}: no file "{header}" under the root'
        elif kind_of(header) > kind_of(name):
            yield f"{name} ({KINDS[kind_of(name)]}) includes {header} ({KINDS[kind_of(header)]})"
        elif KINDS[kind_of(name)] != "table" and level_of(header) > level_of(name):
            yield f"{name} includes {header}: {folder_of(header)}/ builds on {folder_of(name)}/"
    if "numeric/lapack.hpp" in INCLUDE.findall(text) and "require_blas_memory" not in text:
        yield f"{name}: calls LAPACK without require_blas_memory"
    if path.suffix == ".hpp":
        for variable in VARIABLE.findall(text):
            yield f"{name}: variable in a header: {variable.strip()}"


def main():
    root = pathlib.Path(sys.argv[1])
    files = [path for folder in FOLDERS for path in sorted((root / folder).rglob("*.[ch]pp"))]
    faults = [fault for path in files for fault in faults_of(root, path)]
    print("\n".join(faults) or f"{len(files)} files checked")
    sys.exit(1 if faults or not files else 0)


if __name__ == "__main__":
    main()
