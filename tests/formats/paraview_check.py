#!/usr/bin/env python3
"""Compares what ParaView shows of a series of frames with what is in the file: usage: paraview_check.py NORVANE"""
import pathlib
import subprocess
import sys
import tempfile

import check_frames
import numpy
from frames_read_back_test import norvane, table


def bounds_of(data, dimensions):
    """Lower and upper edge of each cell along x, y, z; flat where the grid has no such dimension."""
    bounds = numpy.zeros((data["cell"].size, 3, 2))
    for k, axis in enumerate("xyz"[:dimensions]):
        lower = data[f"lower_{axis}"][:].ravel()
        bounds[:, k, 0] = lower
        bounds[:, k, 1] = (lower.astype(float) + data[f"size_{axis}"][:].ravel()).astype(numpy.float32)
    return bounds


def check(program, shape, cell, kind, name="m"):
    with tempfile.TemporaryDirectory() as top:
        folder = pathlib.Path(top)
        (folder / f"{name}.gmt").write_text(table(shape, "DT 1E-6:NT 25:UT 0:ST 0:NS 1", cell))
        norvane(program, folder, "run", "-q", f"{name}.gmt", "--frames", "10")
        reader = pathlib.Path(__file__).with_name("paraview_read.py")
        subprocess.run(["pvpython", reader, folder / f"{name}_frames.xdmf", folder / "seen.npz"], check=True)
        seen = numpy.load(folder / "seen.npz")
        assert seen["kind"] == kind, seen["kind"]
        with check_frames.open_frames(folder / f"{name}_frames.nc") as data:
            assert list(seen["times"]) == list(data["time"][:]), seen["times"]
            for frame in range(len(seen["times"])):
                assert (seen[f"{frame} bounds"] == bounds_of(data, len(shape))).all()
                for field in data.norvane_fields.split():
                    shown = seen[f"{frame} {field}"]
                    assert shown.tobytes() == data[field][frame].tobytes(), (frame, field)
                assert (seen[f"{frame} cell"] == data["cell"][:].ravel()).all()
    print(f"{shape}: {kind}, {len(seen['times'])} times, bounds and {len(data_names(seen))} fields are the same")


def data_names(seen):
    return {name.split(" ", 1)[1] for name in seen.files if name.startswith("0 ")} - {"bounds"}


def main():
    program = str(pathlib.Path(sys.argv[1]).resolve())
    plain = lambda i, j: f"TT {300 + 7 * i + j}"  # noqa: E731
    uneven = lambda i, j: f"TT {300 + i}" + (f":DD -1;{0.01 * (i + 1)}" if j == 0 else "")  # noqa: E731
    ragged = lambda i, j: f"TT {310 + j}:DD 1;0.0{1 + (3 * i + 5 * j) % 7}"  # noqa: E731
    for shape in [9], [6, 4], [5, 4, 3]:
        check(program, shape, plain, "vtkRectilinearGrid")
    check(program, [6, 4], uneven, "vtkRectilinearGrid", name="with blank & sign")
    check(program, [6, 4], ragged, "vtkUnstructuredGrid")
    check(program, [5, 4, 3], ragged, "vtkUnstructuredGrid")


if __name__ == "__main__":
    main()
