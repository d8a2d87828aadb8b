#!/usr/bin/env python3
"""Kills runs that write frames at every step: usage: frames_kill_test.py NORVANE [KILLS]

Whenever the kill comes, the file of frames is whole. The last runs are watched by a reader instead.
"""
import pathlib
import random
import signal
import subprocess
import sys
import tempfile
import time

import check_frames

TABLE = "DT 1E-6:NT {steps}:UT 0:LT 0" + "\t" * 29 + "\nL" + "\t" * 29 + "\n" + \
    ("TT 400:PP 1.2E5" + "\t" * 29 + "\n") * 15 + "L" + "\t" * 29 + "\n"


class Runs:
    def __init__(self, program, folder):
        self.program, self.folder = program, pathlib.Path(folder)
        (self.folder / "m.gmt").write_text(TABLE.format(steps=400))
        self.frames = self.folder / "m_frames.nc"

    def start(self, *options):
        command = [self.program, "run", "-q", "m.gmt", "--threads", "1", "--frames", "1", *options]
        return subprocess.Popen(command, cwd=self.folder)

    def hidden(self):
        return [path.name for path in self.folder.iterdir() if path.name.startswith(".")]


def killed_runs(runs, kills, reference):
    seed = random.randrange(1 << 30)
    chance = random.Random(seed)
    seen = []
    for kill in range(kills):
        runs.frames.unlink(missing_ok=True) if kill % 2 else None
        run = runs.start()
        time.sleep(chance.uniform(0.02, 0.4))
        run.send_signal(signal.SIGKILL)
        run.wait()
        if not runs.frames.exists():
            continue
        found = check_frames.fault_of(runs.frames, reference)
        if found:
            sys.exit(f"kill {kill} of seed {seed}: {found}")
        with check_frames.open_frames(runs.frames) as data:
            seen.append(len(data["step"]))
    if not seen or max(seen) < 3:
        sys.exit(f"no run came to its third frame: {seen}")
    print(f"{kills} kills; files of {min(seen)} to {max(seen)} frames, all whole")


def watched_run(runs, reference):
    """A reader who opens the file again and again, and one who keeps it open."""
    runs.frames.unlink(missing_ok=True)
    run = runs.start()
    kept, opened, refused = None, 0, 0
    while run.poll() is None:
        if not runs.frames.exists():
            continue
        found = check_frames.fault_of(runs.frames, reference, grows=True)
        # Between its open and its lock the file may have become the one that is written next.
        if found and "Resource temporarily unavailable" in found:
            refused += 1
            continue
        if found:
            run.kill()
            sys.exit(f"while the run goes on: {found}")
        opened += 1
        if opened % 5 == 1:
            if kept:
                kept["T"][:]
                kept.close()
            kept = check_frames.open_frames(runs.frames)
    if run.returncode != 0 or opened < 3 or refused > opened:
        sys.exit(f"status {run.returncode}, opened {opened} times, {refused} times refused")
    kept.close()
    print(f"opened {opened} times during a run, {refused} times refused")


def main():
    program = str(pathlib.Path(sys.argv[1]).resolve())
    kills = int(sys.argv[2]) if len(sys.argv) > 2 else 50
    with tempfile.TemporaryDirectory() as folder, tempfile.TemporaryDirectory() as other:
        whole = Runs(program, other)
        if whole.start().wait() != 0 or whole.hidden():
            sys.exit(f"the run that nobody disturbs leaves {whole.hidden()}")
        reference = check_frames.values_of(whole.frames)
        runs = Runs(program, folder)
        killed_runs(runs, kills, reference)
        watched_run(runs, reference)
        found = check_frames.fault_of(runs.frames, reference)
        if found or runs.hidden() or runs.frames.read_bytes() != whole.frames.read_bytes():
            sys.exit(f"at the end: {found}, {runs.hidden()}, or other bytes")


if __name__ == "__main__":
    main()
