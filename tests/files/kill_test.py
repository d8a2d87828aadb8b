#!/usr/bin/env python3
"""Kills runs that write at every step, and reads a state while it is saved: files are whole, old or new.

usage: kill_test.py PROGRAM KILLS RECALLS
"""

import os
import random
import re
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import time
import zlib
from pathlib import Path

SPECIES_MASS, HEAT = 1.0, 208 * 1000 * 1000 / 16  # kg in a cell; J/kg of the reaction


def table(columns, rows):
    """A box in which all cells react alike: whatever differs between two cells is a mixture of two steps."""
    keys = ("NS 1:NT 1000000:DT 1E-6:ST 1:LT 1:UT 1:DD 1;1:DD 2;1:HH 1:RH 1:TT 900:PP 1E5:CP 1E5:CC 1;1:"
            "GP 12;-1E4:GP 13;1:GP 14;-1E-9:GP 15;1E-2:WC 1")
    tabs = "\t" * (columns - 1)
    cells = ("\t".join(["WC 1"] * columns) + "\n") * rows
    return f"{keys}{tabs}\nL{tabs}\n{cells}L{tabs}"


def numbers(text):
    return [float(item) for item in text.split()]


def check_state(path, work):
    """Recalls the state where the run is not, goes on by a step, and looks at what that saves."""
    shutil.copy(path, work / "m_state")
    recalled = subprocess.run([PROGRAM, "run", "m.gmt", "--recall", "--save", "-q", "--set", "NT=1", "--set", "ST=0"],
                              cwd=work, capture_output=True, text=True)
    assert recalled.returncode == 0, f"the state is refused: {recalled.stderr}"
    blocks = (work / "m_state").read_text().split("\n\n")
    energy, first, second = (numbers(block) for block in blocks[2:5])
    for name, block in (("energy", energy), ("species 0", first), ("species 1", second)):
        assert len(set(block)) == 1, f"the {name} is of several steps: {sorted(set(block))[:3]}"
    assert abs(first[0] + second[0] - SPECIES_MASS) < 1e-5, "the species are of two steps"
    assert abs(energy[0] + HEAT * first[0] - 9e7) < 100, "energy and species are of two steps"


def check_table(path, _work):
    rows = path.read_text().strip("\n").split("\n")
    assert len({len(row.split("\t")) for row in rows}) == 1, "the plot file ends within a row"
    assert len(set(numbers(" ".join(rows)))) == 1, "the plot file is of several steps"


def check_log(path, _work):
    lines = path.read_bytes().split(b"\r\n")
    assert lines[-1] == b"" and all(re.fullmatch(rb"[ -]\S+ \t[ -]\S+ ", line) for line in lines[:-1]), "a line is cut"


def check_picture(path, _work):
    bytes_ = path.read_bytes()
    at = 8
    kind = b""
    while at < len(bytes_):
        (length,) = struct.unpack(">I", bytes_[at:at + 4])
        kind = bytes_[at + 4:at + 8]
        (sum_,) = struct.unpack(">I", bytes_[at + 8 + length:at + 12 + length])
        assert zlib.crc32(bytes_[at + 4:at + 8 + length]) == sum_, "a chunk is damaged"
        at += 12 + length
    assert kind == b"IEND", "the picture has no end"


def crc_tables():
    for byte in range(256):
        crc = byte
        for _ in range(8):
            crc = crc >> 1 ^ (0xC96C5795D7870F42 if crc & 1 else 0)
        yield crc


CRC = list(crc_tables())


def check_seal(path, _work):
    """CRC-64/XZ of all that comes before the last line, which tells it."""
    content, line = path.read_bytes().split(b"\nnorvane CRC-64/XZ ")
    crc = (1 << 64) - 1
    for byte in content:
        crc = crc >> 8 ^ CRC[(crc ^ byte) & 255]
    assert line == b"%016x\n" % (crc ^ (1 << 64) - 1), "the seal does not fit"


def check_stop_file(path, _work):
    assert path.read_bytes() in (b"", b" 0 \r\n"), "it holds something else than 0"


def check_nothing(_path, _work):
    pass


# What a killed run may leave, and how it is known to be whole.
FILES = [
    (r"m\.gmt", check_nothing),
    (r"m_state", check_state),
    (r"m_out", check_table),
    (r"m_log", check_log),
    (r"m_\d+\.png", check_picture),
    (r"checkstop", check_stop_file),
    (r"m_checkpoint(_old)?\.nc", check_seal),
    (r".*\.part\d*|m_checkpoint_old\.nc\.link", check_nothing),  # unfinished, under names that nobody reads
]
ALWAYS = {"m_state", "m_out", "m_checkpoint.nc"}  # once they are there, the old one or the new one


def check_folder(folder, work, always):
    missing = always - {path.name for path in folder.iterdir()}
    assert not missing, f"there is neither an old nor a new {missing}"
    for path in sorted(folder.iterdir()):
        check = next((check for pattern, check in FILES if re.fullmatch(pattern, path.name)), None)
        assert check, f"{path.name} is not in the table of this test"
        try:
            check(path, work)
        except Exception as fault:
            raise AssertionError(f"{path.name}: {fault}") from fault
        if path.suffix == ".png":
            path.unlink()
    parts = [path for path in folder.iterdir() if ".part" in path.name]
    assert len(parts) <= 3, f"killed runs pile up files: {parts}"


def start(folder, *options):
    return subprocess.Popen([PROGRAM, "run", "m.gmt", "-q", *options], cwd=folder, stdout=subprocess.DEVNULL,
                            stderr=subprocess.PIPE)


def kill_runs(folder, work, kills):
    (folder / "m.gmt").write_text(table(60, 50))
    (work / "m.gmt").write_text(table(60, 50))
    outputs = ["--snapshots", "1", "--checkpoint-every", "1"]
    first = [PROGRAM, "run", "m.gmt", "-q", "--set", "NT=2"]
    if subprocess.run(first + outputs, cwd=folder, check=False).returncode == 2:  # built without checkpoints
        del outputs[2:]
        subprocess.run(first, cwd=folder, check=True)
    always = ALWAYS & {path.name for path in folder.iterdir()}
    marked = 0
    for number in range(kills):
        run = start(folder, *outputs, *(["--recall"] if random.random() < 0.5 else []))
        time.sleep(random.uniform(0.01, 0.25))
        assert run.poll() is None, f"the run ended by itself: {run.stderr.read().decode()}"
        run.send_signal(signal.SIGKILL)
        run.communicate()
        with open(folder / "m_state", "rb") as state:
            marked += state.read(1) == b"#"
        try:
            check_folder(folder, work, always)
        except AssertionError as fault:
            raise AssertionError(f"kill {number + 1}: {fault}") from fault
    print(f"{kills} kills: all files whole, {marked} of them in the midst of a save")


def recall_during_saves(folder, work, recalls):
    """The state is reached by a link, so that the recalling run writes elsewhere."""
    (folder / "m.gmt").write_text(table(500, 400))
    (work / "m.gmt").write_text(table(500, 400))
    (work / "m_state").unlink(missing_ok=True)
    (folder / "m_state").unlink(missing_ok=True)
    (work / "m_state").symlink_to(folder / "m_state")
    subprocess.run([PROGRAM, "run", "m.gmt", "-q", "--set", "NT=1"], cwd=folder, check=True)
    run = start(folder, "--plot-every", "1000000")
    disturbed = 0
    saved = (folder / "m_state").stat().st_mtime_ns
    try:
        while (folder / "m_state").stat().st_mtime_ns == saved and run.poll() is None:
            time.sleep(0.05)
        for number in range(recalls):
            options = [option for text in ("NT=1", "ST=0", "UT=0", "LT=0", "SW=1") for option in ("--set", text)]
            recalled = subprocess.run([PROGRAM, "run", "m.gmt", "--recall", "-q", *options], cwd=work,
                                      capture_output=True, text=True)
            assert recalled.returncode == 0, f"recall {number + 1} is refused: {recalled.stderr}"
            disturbed += "Another process" in recalled.stderr
            values = set(numbers((work / "m_out").read_text()))
            assert len(values) == 1, f"recall {number + 1} takes a mixture: {sorted(values)[:3]}"
        assert run.poll() is None, "the run ended by itself"
    finally:
        run.kill()
        run.communicate()
    assert disturbed > 0 or recalls < 40, "no recall met a save"
    print(f"{recalls} recalls during saves: no mixture, {disturbed} met a save")


def main():
    global PROGRAM
    PROGRAM = os.path.abspath(sys.argv[1])
    kills, recalls = int(sys.argv[2]), int(sys.argv[3])
    seed = int(os.environ.get("SEED", random.randrange(1 << 30)))
    random.seed(seed)
    print(f"SEED={seed}", flush=True)
    with tempfile.TemporaryDirectory(prefix="norvane-kill-") as top:
        folder, work = Path(top, "run"), Path(top, "look")
        folder.mkdir()
        work.mkdir()
        kill_runs(folder, work, kills)
        recall_during_saves(folder, work, recalls)


if __name__ == "__main__":
    main()
