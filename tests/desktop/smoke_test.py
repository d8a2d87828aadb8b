"""The installed desktop program on a real display, used as a person would; keeps a picture of each window.

usage: smoke_test.py CMAKE BUILD EXAMPLES ARTEFACTS
"""

import os
import shutil
import subprocess
import sys
import tempfile
import time
from pathlib import Path

PATIENCE = 30  # seconds that anything may take on a busy machine

# Places of controls in twips: left, top, width, height.
NV_IN = {
    "width": 2640,
    "import geometry": (0, 0, 1695, 495),
    "Recalc": (0, 480, 855, 495),
    "Cont": (840, 480, 855, 495),
    "disp": (0, 960, 855, 495),
    "Save": (0, 4920, 735, 375),
}
NV_DSP = {"width": 5790, "OK": (4920, 2760, 855, 375)}
NV_EINDE = {"width": 2775, "EXIT": (240, 720, 1335, 495)}

INSTALLED = [
    "bin/norvane",
    "bin/norvane-desktop",
    "bin/norvane-desktop_",
    "share/applications/norvane-desktop.desktop",
    "share/icons/hicolor/scalable/apps/norvane-desktop.svg",
    "share/metainfo/org.norvane.Desktop.metainfo.xml",
    "share/mime/packages/norvane-desktop.xml",
]


def wait_for(what, seen):
    """Waits until `seen()` is true and gives that; fails with what was waited for."""
    end = time.monotonic() + PATIENCE
    while time.monotonic() < end:
        result = seen()
        if result:
            return result
        time.sleep(0.05)
    raise SystemExit(f"there was no {what}")


class Screen:
    """A display of its own, with the acts of a person on it."""

    def __init__(self, artefacts):
        self.artefacts = artefacts
        reading, writing = os.pipe()
        self.server = subprocess.Popen(
            ["Xvfb", "-displayfd", str(writing), "-screen", "0", "1600x1000x24", "-nolisten", "tcp"],
            pass_fds=[writing], stderr=subprocess.DEVNULL)
        os.close(writing)
        with os.fdopen(reading) as number:
            os.environ["DISPLAY"] = ":" + number.readline().strip()

    def xdo(self, *arguments):
        return subprocess.run(["xdotool", *map(str, arguments)], capture_output=True, text=True).stdout.split()

    def windows(self, title):
        return self.xdo("search", "--onlyvisible", "--name", f"^{title}$")

    def window(self, title):
        return wait_for(f"window {title}", lambda: self.windows(title))[0]

    def wait_until_gone(self, title):
        wait_for(f"end of window {title}", lambda: not self.windows(title))

    def click(self, title, controls, name):
        window = self.window(title)
        self.xdo("windowraise", window)
        width = next(int(word.split("=")[1]) for word in self.xdo("getwindowgeometry", "--shell", window)
                     if word.startswith("WIDTH="))
        factor = width / controls["width"]
        left, top, wide, high = controls[name]
        self.xdo("mousemove", "--window", window, int((left + wide / 2) * factor), int((top + high / 2) * factor),
                 "click", 1)

    def key(self, name):
        self.xdo("key", name)

    def keep(self, title, name):
        """Keeps a picture of a window, once it no longer changes."""
        window = self.window(title)
        self.xdo("windowraise", window)
        self.xdo("mousemove", 1599, 999)
        path = self.artefacts / f"{name}.png"
        former = None

        def stands_still():
            nonlocal former
            time.sleep(0.2)
            subprocess.run(["import", "-window", window, "-strip", str(path)], check=True)
            pixels = subprocess.run(["convert", str(path), "rgb:-"], capture_output=True, check=True).stdout
            still = pixels == former and len(set(pixels[::97])) > 2
            former = pixels
            return still

        wait_for(f"picture of {title}", stands_still)


def first_value(plot):
    """The first number of a plot file; 0 while there is none."""
    try:
        return float(plot.read_text().split()[0])
    except (OSError, IndexError, ValueError):
        return 0


def leave(screen, models, started):
    """Stops the run that is under way with the stop file, which brings the question about the end."""
    wait_for("cleared stop file", lambda: (models / "checkstop").read_text().split() == ["0"])
    (models / "checkstop").write_text("1")
    screen.keep("You Called\\?", "exit_question")
    screen.click("You Called\\?", NV_EINDE, "EXIT")
    assert started.wait(PATIENCE) == 0


def use_program(screen, program, models):
    started = subprocess.Popen([program, "channel.gmt"], cwd=models)
    screen.keep("Commands", "command_window")
    screen.click("Commands", NV_IN, "import geometry")
    screen.keep("Norvane", "message")
    screen.key("Return")
    screen.wait_until_gone("Norvane")

    screen.click("Commands", NV_IN, "Recalc")
    screen.window("Norvane")
    screen.click("Commands", NV_IN, "disp")
    screen.keep("Display", "display_panel")
    assert 0 < first_value(models / "channel_out") < 1000, "temperatures were to be plotted"
    screen.click("Display", NV_DSP, "OK")
    screen.wait_until_gone("Display")
    screen.keep("Norvane", "plot_window")

    screen.click("Commands", NV_IN, "Save")
    wait_for("saved state", lambda: (models / "channel_state").exists())
    screen.click("Commands", NV_IN, "Cont")
    leave(screen, models, started)


def use_batch_start(screen, program, models):
    """Runs at once, without the message about the cells."""
    (models / "channel_out").unlink()
    started = subprocess.Popen([program, "channel.gmt"], cwd=models)
    wait_for("plot of a batch start", lambda: first_value(models / "channel_out"))
    assert len(screen.windows("Norvane")) == 1, "the plot window alone"
    leave(screen, models, started)


def refuse_threads(programs):
    """A number out of range is refused alike by all programs that take one."""
    for number in ("0", "1025", "x", "1.5"):
        told = {subprocess.run([*program, "--threads", number], capture_output=True, text=True).stderr
                for program in programs}
        assert told == {f"--threads: Value {number} not in range 1 to 1024\nRun with --help for more information.\n"}


def main():
    cmake, build, examples, artefacts = sys.argv[1:]
    artefacts = Path(artefacts)
    artefacts.mkdir(parents=True, exist_ok=True)
    with tempfile.TemporaryDirectory() as folder:
        place = Path(folder)
        prefix = place / "installed"
        subprocess.run([cmake, "--install", build, "--prefix", prefix], check=True, stdout=subprocess.DEVNULL)
        for name in INSTALLED:
            assert (prefix / name).exists(), f"{name} is not installed"
        models = place / "models"
        shutil.copytree(examples, models)
        os.environ.update(XDG_CONFIG_HOME=str(place / "config"), XDG_RUNTIME_DIR=folder, QT_QPA_PLATFORM="xcb")
        refuse_threads([[prefix / "bin" / "norvane", "run", "m.gmt"],
                        [prefix / "bin" / "norvane-desktop", "-platform", "offscreen"]])
        screen = Screen(artefacts)
        try:
            use_program(screen, prefix / "bin" / "norvane-desktop", models)
            use_batch_start(screen, prefix / "bin" / "norvane-desktop_", models)
        finally:
            screen.server.terminate()
            screen.server.wait()


main()
