#!/usr/bin/env python3
"""Checks that a file of frames is whole: usage: check_frames.py m_frames.nc [REFERENCE.nc]

Each frame can be read, steps rise, and the description of the mesh beside it names no more than these frames. With the
file of a run that nobody disturbed each frame holds the bits of the one of the same step there. Prints what is wrong,
and ends with status 1 then; 77 where python3-netcdf4 is missing.
"""
import pathlib
import sys
import xml.etree.ElementTree

try:
    import netCDF4
    import numpy
except ImportError as missing:
    print(f"skipped: {missing}; install python3-netcdf4")
    sys.exit(77)


def same(a, b):
    return a.dtype == b.dtype and a.tobytes() == b.tobytes()


def open_frames(path):
    data = netCDF4.Dataset(path)
    data.set_auto_maskandscale(False)
    return data


def values_of(path):
    """All of a file that nobody writes any more."""
    with open_frames(path) as data:
        return {name: data[name][:] for name in ["step", *data.norvane_fields.split()]}


def fault_of_mesh(path, times, grows):
    if not path.exists():
        return None
    marks = xml.etree.ElementTree.parse(path).getroot().iter("Time")
    named = [float(mark.get("Value")) for mark in marks]
    if grows:  # it may be later than the data that were opened
        named = named[: len(times)]
    return None if named == list(times[: len(named)]) else f"{path.name} names other times"


def fault_of(path, reference=None, grows=False):
    """What is wrong with a file; None: nothing. `grows`: a run is writing it."""
    try:
        with open_frames(path) as data:
            steps, times = data["step"][:], data["time"][:]
            if len(steps) != len(times) or (numpy.diff(steps) <= 0).any():
                return f"{path}: steps {steps} at {times}"
            for name in data.norvane_fields.split():
                values = data[name][:]
                if len(values) != len(steps):
                    return f"{path}: {name} has {len(values)} frames of {len(steps)}"
                for frame, step in enumerate(steps if reference else []):
                    place = int(numpy.searchsorted(reference["step"], step))
                    if reference["step"][place] != step or not same(values[frame], reference[name][place]):
                        return f"{path}: {name} of step {step} has other bits"
            return fault_of_mesh(pathlib.Path(str(path)[:-3] + ".xdmf"), times, grows)
    except (OSError, IndexError, KeyError, RuntimeError, xml.etree.ElementTree.ParseError) as fault:
        return f"{path}: {fault}"


if __name__ == "__main__":
    if len(sys.argv) not in (2, 3):
        sys.exit(__doc__)
    found = fault_of(sys.argv[1], values_of(sys.argv[2]) if len(sys.argv) == 3 else None)
    if found:
        print(found)
    sys.exit(1 if found else 0)
