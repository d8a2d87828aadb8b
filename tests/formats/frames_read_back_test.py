#!/usr/bin/env python3
"""Reads frames back with netCDF4 and xarray: usage: frames_read_back_test.py NORVANE

Values are compared with the tables of "norvane export --csv", whose nine digits give a single back, and with m_out.
"""
import csv
import hashlib
import io
import pathlib
import random
import subprocess
import sys
import tempfile

import check_frames
import numpy

try:
    import xarray
except ImportError as missing:
    print(f"skipped: {missing}; install python3-xarray")
    sys.exit(77)

AXES = ["x", "y", "z", "d4", "d5"]


def table(shape, keys, cell):
    """A drawing with these lengths along dimensions 1, 2 ..., and the text of each cell."""
    columns, rows = shape[0], shape[1] if len(shape) > 1 else 1
    blocks = int(numpy.prod(shape[2:])) if len(shape) > 2 else 1
    lines = [keys + "\t" * (columns - 1)]
    for block in range(blocks + 1):
        mark, dimension = "L", 3
        for length in shape[2:-1] if block else []:
            dimension += 1
            if block % int(numpy.prod(shape[2:dimension - 1])) == 0:
                mark = f"L{dimension}"
        if block == blocks and len(shape) > 3:
            mark = f"L{len(shape)}"
        lines.append(mark + "\t" * (columns - 1))
        if block < blocks:
            lines += ["\t".join(cell(i, j) for i in range(columns)) for j in range(rows)]
    return "\n".join(lines) + "\n"


def norvane(program, folder, *arguments, status=0):
    done = subprocess.run([program, *arguments], cwd=folder, capture_output=True, text=True)
    assert done.returncode == status, (arguments, done.returncode, done.stdout, done.stderr)
    return done.stdout


def exported(program, folder, *options):
    rows = list(csv.reader(io.StringIO(norvane(program, folder, "export", "m.gmt", "--csv", "-", *options))))
    return {name.split()[0]: numpy.array(column) for name, column in zip(rows[0], zip(*rows[1:]))}


def check_values(data, frame, columns, names):
    for name in names:
        expected = columns[name].astype(numpy.float64).astype(numpy.float32)
        assert data[name][frame].dtype == numpy.float32
        assert data[name][frame].tobytes() == expected.tobytes(), name


def check_grid(data, shape, rectilinear):
    axes = AXES[: len(shape)][::-1]
    assert data["T"].dimensions == ("time", *axes), data["T"].dimensions
    assert data["T"].shape[1:] == tuple(shape[::-1])
    assert data["T"].filters()["zlib"] and data["T"].filters()["shuffle"]
    assert (data["cell"][:].ravel() == numpy.arange(1, numpy.prod(shape) + 1)).all()
    for axis in axes:
        lower, size = data[f"lower_{axis}"][:], data[f"size_{axis}"][:]
        upper = (lower.astype(float) + size.astype(float)).astype(numpy.float32)
        middle = (lower.astype(float) + upper.astype(float)) / 2
        assert (axis in data.variables) == rectilinear
        if rectilinear:
            line = tuple(slice(None) if each == axis else 0 for each in axes)
            assert (data[axis][:] == middle[line]).all()
            assert data[axis].bounds == f"{axis}_bounds"
            assert (data[f"{axis}_bounds"][:] == numpy.stack([lower[line], upper[line]], axis=1)).all()
        else:
            assert f"centre_{axis}" in data["T"].coordinates
            assert (data[f"centre_{axis}"][:] == middle).all()


def check_attributes(data, text):
    assert data.Conventions == "CF-1.8" and data.source.startswith("Norvane ")
    assert data.table == text and data.table_sha256 == hashlib.sha256(text.encode()).hexdigest()
    assert data["T"].units == "K" and data["T"].standard_name == "air_temperature"
    assert data["u"].units == "m/s" and "upper face" in data["u"].comment
    assert data["time"].units == "s" and data.dimensions["time"].isunlimited()


def check_table(program, shape, cell, rectilinear, species=0):
    keys = f"DT 1E-6:NT 7:UT 1:ST 0:NS {species}"
    text = table(shape, keys, cell)
    with tempfile.TemporaryDirectory() as folder:
        pathlib.Path(folder, "m.gmt").write_text(text)
        norvane(program, folder, "run", "-q", "m.gmt", "--frames", "3")
        names = ["T", "p", "rho", *["u", "v", "w", "u4", "u5"][: len(shape)]]
        names += [f"c{k}" for k in range(species + 1)] if species else []
        with check_frames.open_frames(pathlib.Path(folder, "m_frames.nc")) as data:
            assert data.norvane_fields.split() == names + ["velocity_centre"], data.norvane_fields
            assert list(data["step"][:]) == [0, 3, 6, 7]
            assert list(data["time"][:]) == [step * float(numpy.float32(1e-6)) for step in (0, 3, 6, 7)]
            check_values(data, 0, exported(program, folder), names)
            check_grid(data, shape, rectilinear)
            check_attributes(data, text)
            shown = numpy.loadtxt(pathlib.Path(folder, "m_out"), ndmin=2)
            last = data["T"][-1].reshape(-1, *data["T"].shape[-2:])[0] if len(shape) > 1 else data["T"][-1:]
            assert numpy.allclose(last - 273.15, shown, rtol=2e-6, atol=0), "the last frame is not what m_out shows"
        assert pathlib.Path(folder, "m_frames.xdmf").exists() == (len(shape) <= 3)
        fault = check_frames.fault_of(pathlib.Path(folder, "m_frames.nc"))
        assert fault is None, fault


def check_xarray(program):
    text = table([6, 4], "DT 1E-6:NT 20:UT 0", lambda i, j: f"TT {300 + 10 * i}")
    with tempfile.TemporaryDirectory() as folder:
        pathlib.Path(folder, "m.gmt").write_text(text)
        norvane(program, folder, "run", "-q", "m.gmt", "--frames", "5", "--frames-fields", "T,velocity_centre")
        frames = xarray.open_dataset(pathlib.Path(folder, "m_frames.nc"))
        assert sorted(set(frames.data_vars) & {"T", "p", "u", "velocity_centre"}) == ["T", "velocity_centre"]
        line = frames.T.sel(x=0.035, method="nearest").isel(time=0)
        assert line.dims == ("y",) and (line == 330).all()
        assert frames.T.isel(time=-1).mean() > 300 and frames.sizes["time"] == 5
        frames.close()
        norvane(program, folder, "export", "m.gmt", "-o", "start.nc")
        start = xarray.open_dataset(pathlib.Path(folder, "start.nc"))
        assert start.sizes["time"] == 1 and (start.T.values.ravel()[:6] == 300 + 10 * numpy.arange(6)).all()
        start.close()


def main():
    program = str(pathlib.Path(sys.argv[1]).resolve())
    chance = random.Random(1)
    plain = lambda i, j: f"TT {chance.randint(290, 360)}"  # noqa: E731
    uneven = lambda i, j: f"TT {chance.randint(290, 360)}" + (f":DD -1;{0.01 * (i + 1)}" if j == 0 else "")  # noqa: E731
    ragged = lambda i, j: f"TT 310:DD 1;0.0{chance.randint(1, 9)}"  # noqa: E731
    for shape in [9], [5, 4], [4, 3, 2], [3, 2, 2, 3], [2, 3, 2, 2, 2]:
        check_table(program, shape, plain, True)
    check_table(program, [5, 4], uneven, True)
    check_table(program, [5, 4], ragged, False)
    check_table(program, [4, 3, 3], ragged, False, species=2)
    check_table(program, [400, 500], plain, True)  # several chunks
    check_xarray(program)


if __name__ == "__main__":
    main()
