#!/usr/bin/env python3
"""Writes the drawings (*.gmt) of the verification cases beside this file.

They are ordinary drawings, kept in the repository; this script is run again when one is to be drawn differently.
Most use a scaled gas: RH 1 and CP 1, so that PP is the square of the speed of sound.
"""

import math
import os
import random

HERE = os.path.dirname(os.path.abspath(__file__))


def number(value):
    return f"{value:.9G}"


def write(case, name, defaults, layers, width=None):
    """layers: a list of layers, each a list of rows, each a list of texts of cells."""
    folder = os.path.join(HERE, case)
    os.makedirs(folder, exist_ok=True)
    width = width or len(layers[0][0])
    line = lambda texts: "\t".join(list(texts) + [""] * (width - len(texts)))
    lines = [line([defaults])]
    for layer in layers:
        lines.append(line(["L"]))
        lines += [line(row) for row in layer]
    lines.append(line(["L"]))
    with open(os.path.join(folder, name + ".gmt"), "w", newline="") as file:
        file.write("\r\n".join(lines) + "\r\n")


NAMES = ("coarse", "medium", "fine")


def shock_tubes():
    for name, n in zip(NAMES, (200, 400, 800)):
        sound = math.sqrt(101300 / 1.17)
        steps = n * 6 // 10
        defaults = (f"DT {number(0.3 / sound / steps)}:NT {steps}:DD 1;{number(1 / n)}:RH 1.17:TT 300:CP 1005:"
                    "PP 101300")
        high, low = ["PP 202600"] * (n // 2), [""] * (n // 2)
        write("shock_tube", name, defaults, [[high + low]])
        write("shock_tube_left", name, defaults, [[low + high]])
        thick = defaults + f":ET {number(0.25 * 1.17 * sound / n)}"
        write("shock_tube_left_viscous", name, thick, [[low + high]])


def wave(n, courant, time):
    steps = round(time * n / courant)
    defaults = f"DT {number(time / steps)}:NT {steps}:DD 1;{number(1 / n)}:RH 1:TT 300:CP 1:PP 1:ET 0:LA 0"
    return defaults, [[[f"PP {number(1 + 1e-3 * math.cos(math.pi * (i + 0.5) / n))}" for i in range(n)]]]


def standing_waves():
    for name, n in zip(NAMES, (10, 20, 40)):
        write("standing_wave", name, *wave(n, 0.5, 40))
    for name, courant in (("below", 1.40), ("above", 1.45)):
        write("standing_wave_limit", name, *wave(20, courant, 40))


def solid(temperature):
    """A cell at rest with the density of the default cell: the pressure goes with the temperature."""
    return f"WV 0;2:TT {number(temperature)}:PP {number(temperature / 300)}"


def slabs():
    def mode(n, mean, amplitude):
        temperatures = [mean + amplitude * math.cos(math.pi * (i + 0.5) / n) for i in range(n)]
        return [[[solid(t) for t in temperatures]]]

    for name, n, steps in zip(NAMES, (10, 20, 40), (40, 160, 640)):
        defaults = f"DT {number(0.1 / steps)}:NT {steps}:DD 1;{number(1 / n)}:RH 1:TT 300:CP 1:PP 1:LA 1"
        write("slab_mode", name, defaults, mode(n, 300, 100))
    # A tenth of a second in steps of a hundredth to a ten-thousandth of the largest stable one, 6.96E-3 s.
    defaults = "DT 6.96E-5:NT 1437:DD 1;0.1:RH 1:TT 300:CP 1:PP 1:LA 1"
    write("slab_small_steps", "slab", defaults, mode(10, 300, 1))
    for name, n in zip(NAMES, (20, 40, 80)):
        steps = n * n // 40
        defaults = f"DT {number(0.01 / steps)}:NT {steps}:DD 1;{number(1 / n)}:RH 1:TT 300:CP 1:PP 1:LA 1"
        write("sudden_wall", name, defaults, [[["WV 0;2:WT -1:TT 600"] + ["WV 0;2"] * (n - 1)]])
    for name, n in zip(NAMES, (10, 20, 40)):
        # Sizes grow by a factor of 2 across each of two layers of equal thickness. CP goes with LA: equal diffusivity.
        sizes = [2 ** (i % (n // 2) / (n // 2)) for i in range(n)]
        scale = 1 / sum(sizes)
        texts = [f"WV 0;2:DD 1;{number(s * scale)}" + (":LA 10:CP 10" if 2 * i >= n else "") for i, s in enumerate(sizes)]
        texts[0] += ":WT -1:TT 600"
        texts.append("WV 0;2:WT -1")
        step = 0.25 * (min(sizes) * scale) ** 2
        write("layered_slab", name, f"DT {number(step)}:NT {round(4 / step)}:RH 1:TT 300:CP 1:PP 1:LA 1", [[texts]])


def viscous_layers():
    for name, n in zip(NAMES, (8, 16, 32)):
        step = 0.25 / n ** 2
        common = f":DD 0;{number(1 / n)}:RH 1:TT 300:CP 1:PP 1:ET 1:LA 0"
        bottom, gas, top = [["WV 0;2"]], [["WV 1;0"]] * (n - 1), [["WV 1;1:VV 1;1"]]
        for case, time in (("couette", 3), ("couette_start", 0.1)):
            write(case, name, f"DT {number(step)}:NT {round(time / step)}" + common, [bottom + gas + top])
        write("poiseuille", name, f"DT {number(step)}:NT {round(3 / step)}:GG 1;8" + common, [bottom + gas + bottom])


def atmospheres():
    for name, n in zip(NAMES, (20, 40, 80)):
        defaults = f"DT {number(0.8 / n)}:NT {25 * n}:DD 0;{number(1 / n)}:RH 1:TT 300:CP 1:PP 1:ET 0:RR 5:GG 1;1"
        write("atmosphere", name, defaults, [[["WT -1"] * n]])
    n = 20
    start = [[[f"WT -1:PP {number((1 + 1 / n) ** i)}" for i in range(n)]]]
    write("atmosphere_at_rest", "column", f"DT {number(0.8 / n)}:DD 0;{number(1 / n)}:RH 1:TT 300:CP 1:PP 1:ET 0:GG 1;1",
          start)


def species_fronts():
    for name, n in zip(NAMES, (50, 100, 200)):
        defaults = f"NS 1:DT {number(0.25 / n)}:NT {2 * n}:DD 1;{number(1 / n)}:RH 1:TT 300:CP 1:PP 4:ET 0:LA 0"
        inlet = "WP 1:WT 1:CC 1;1"
        write("species_front", name, defaults,
              [[[inlet + ":WV 1;-1:VV 1;1"] + ["VV 1;1"] * (n - 1) + ["VV 1;1:WP -1:WV 1;0"]]])
        write("species_front_left", name, defaults,
              [[["VV 1;-1:WP -1"] + ["VV 1;-1"] * (n - 2) + ["VV 1;-1:WV 1;-1", inlet]]])


def radiating_plates():
    # A free plate that faces a held one, and the same again with the second cell of the pair given as negative.
    cells = [solid(1000), "WV 0;2:WT -1"] * 2
    defaults = "DT 6:NT 10:DD 1;0.0025:RH 1000:TT 300:PP 1:CP 500:LA 0"
    write("radiation", "plates", defaults, [[cells]])
    write("radiation_surroundings", "plate", defaults, [[[solid(1000)]]])
    for case, name, text in (("radiation", "plates", "2 2 2\n1 2 1 1\n3 -4 1 1\n"),
                             ("radiation_surroundings", "plate", "1 1 1\n1 0 1 1\n")):
        with open(os.path.join(HERE, case, name + "_rad"), "w") as file:
            file.write(text)


def reactions():
    keys = "NS 1:DD 0;1:RH 1:TT 973:PP 1E5:CC 1;0.9:GP 11;1:GP 13;0.4"
    write("exchange", "cell", keys + ":CP 1E6:GP 15;25:DT 11:NT 4", [[["WV 0;2:WC 1"]]])
    write("exchange_cap", "cell", keys + ":CP 1E12:GP 15;1E-3:DT 1:NT 4", [[["WV 0;2:WC 1"]]])


def porous_beds():
    write("drag", "channel", "DT 1:NT 4:RR 1:RH 1:TT 300:CP 1:PP 100:ET 0:DD 0;1", [[["WV 1;0:VV 1;3"]]])
    for name, n in zip(NAMES, (20, 40, 80)):
        keys = f":DD 0;{number(1 / n)}:RH 1:TT 300:CP 1:PP 1:ET 0"
        texts = ["WT -1:WP -1:PP 1.05"] + ["WT -1"] * (n - 1) + ["WT -1:WP -1:PP 0.95:WV 1;0"]
        write("darcy", name, f"DT {number(0.8 / n)}:NT {25 * n}:RR 3.3" + keys, [[texts]])
        write("darcy_left", name, f"DT {number(0.8 / n)}:NT {25 * n}:RR 3.3" + keys,
              [[["WT -1:WP -1:PP 0.95"] + ["WT -1"] * (n - 1) + ["WT -1:WP -1:PP 1.05:WV 1;0"]]])
    n = 80
    texts = ["WT -1:WP -1:PP 1.01"] + ["WT -1"] * (n - 1) + ["WT -1:WP -1:PP 0.99:WV 1;0"]
    keys = f":DD 0;{number(1 / n)}:RH 1:TT 300:CP 1:PP 1:ET 0:RR 2"
    write("darcy_small_steps", "bed", f"DT {number(0.05 / n)}:NT {200 * n}" + keys, [[texts]])


def sealed_boxes():
    n = 16
    for seed in (1, 2, 3):
        draw = random.Random(seed)
        rows = [[f"TT {number(300 * draw.uniform(0.9, 1.1))}:PP {number(draw.uniform(0.9, 1.1))}"
                 + f":VV 1;{number(draw.uniform(-0.1, 0.1))}:VV 2;{number(draw.uniform(-0.1, 0.1))}"
                 for _ in range(n)] for _ in range(n)]
        rows = [[text.split(":VV")[0] if i == n - 1 or j == n - 1 else text for i, text in enumerate(row)]
                for j, row in enumerate(rows)]
        write("sealed_box", f"seed{seed}", "DT 0.02:NT 20000:DD 0;0.0625:RH 1:TT 300:CP 1:PP 1:ET 0.02:LA 0.02", [rows])


def convection(case, name, n, rayleigh, time):
    """A square box with its walls on faces: the first column and row are walls of half a cell."""
    gravity = rayleigh * 0.71 / 0.1
    size = 1 / n
    step = 0.8 * size / math.sqrt(gravity / 0.05)
    defaults = (f"DT {number(step)}:NT {round(time / step)}:DD 0;{number(size)}:RH 1:TT 300:CP 1:LA 1:ET 0.71:"
                f"PP {number(gravity / 0.05)}:GG 2;{number(gravity)}")
    wall = "WV 0;2"
    hot, cold = wall + ":WT -1:TT 315", wall + ":WT -1:TT 285"
    half = f":DD -1;{number(size / 2)}:DD -2;{number(size / 2)}"
    rows = [[hot + half] + [wall + ":LA 0"] * n + [wall]]
    rows += [[hot] + [""] * (n - 1) + ["LA 2:ET 1.42", cold] for _ in range(n - 1)]
    rows.append([hot] + ["ET 1.42:LA 1"] * (n - 1) + ["LA 2:ET 1.42", cold])
    rows.append([hot + ":LA 0"] + [wall + ":LA 0"] * (n + 1))
    write(case, name, defaults, [rows])


def hot_spots():
    n = 100
    for case, sign in (("hot_spot", 1), ("hot_spot_left", -1)):
        for name, n in zip(NAMES, (50, 100, 200)):
            bump = [f"TT {number(300 + 60 * math.exp(-((i + 0.5) / n - 0.5) ** 2 / 0.01))}:VV 1;{0.2 * sign}"
                    for i in range(n)]
            defaults = f"DT {number(0.5 / n)}:NT {2 * n}:DD 1;{number(1 / n)}:RH 1:TT 300:CP 1:PP 1:ET 0:LA 0"
            if sign > 0:
                texts = ["WP 1:WT 1:WV 1;-1:VV 1;0.2"] + bump[1:-1] + ["VV 1;0.2:WP -1:WV 1;0"]
            else:
                texts = ["VV 1;-0.2:WP -1"] + bump[1:-2] + ["VV 1;-0.2:WV 1;-1", "WP 1:WT 1"]
            write(case, name, defaults, [[texts]])


def cavities():
    """Walls on faces, as in natural convection; the lid is the first row, a closed face that keeps its velocity."""
    for name, n in zip(NAMES, (16, 32, 64)):
        sound = 10  # Mach 0.1
        size = 1 / n
        step = 0.8 * size / sound
        defaults = (f"DT {number(step)}:NT {round(25 / step)}:DD 0;{number(size)}:RH 1:TT 300:CP 1:PP {sound ** 2}:"
                    "ET 0.01:LA 1")
        wall = "WV 0;2:WT -1"
        rows = [[wall + f":DD -1;{number(size / 2)}:DD -2;{number(size / 2)}"] + ["WV 1;1:VV 1;1:WV 2;2:WT -1"] * n + [wall]]
        rows += [[wall] + ["WT -1"] * (n - 1) + ["WT -1:ET 0.02", wall] for _ in range(n - 1)]
        rows.append([wall] + ["WT -1:ET 0.02"] * n + [wall])
        rows.append([wall] * (n + 2))
        write("lid_driven_cavity", name, defaults, [rows])


def channels():
    """Height 1 with walls on faces, length 8, mean velocity 1."""
    for name, n in zip(NAMES, (8, 16, 32)):
        sound = 20
        size = 1 / n
        step = 0.8 * size / sound
        defaults = (f"DT {number(step)}:NT {round(20 / step)}:DD 1;{number(2 * size)}:DD 2;{number(size)}:RH 1:TT 300:"
                    f"CP 1:PP {sound ** 2}:ET 0.01:LA 1")
        wall, length = "WV 0;2:WT -1", 4 * n
        row = lambda more: (["WV 1;-1:VV 1;1:WP 1:WT -1" + more] + ["VV 1;1:WT -1" + more] * (length - 1)
                            + ["WP -1:WV 1;0:WT -1:VV 1;1" + more])
        rows = [[wall + f":DD -2;{number(size / 2)}"] + [wall] * length]
        rows += [row("") for _ in range(n - 1)] + [row(":ET 0.02")] + [[wall] * (length + 1)]
        write("channel", name, defaults, [rows])


def steel():
    texts = ["WV 0;2:LA 0.02:DD 1;0.01:TT 1300:WT -1"] + ["WV 0;2"] * 20
    defaults = "DT 1E-2:NT 400:DD 1;0.001:RH 7800:TT 300:CP 470:LA 50"
    write("steel_plate", "plate", defaults, [[texts]])


def main():
    shock_tubes()
    standing_waves()
    slabs()
    viscous_layers()
    atmospheres()
    species_fronts()
    radiating_plates()
    reactions()
    porous_beds()
    sealed_boxes()
    for name, n in zip(NAMES, (10, 20, 40)):
        convection("natural_convection_1e3", name, n, 1e3, 0.8)
        convection("natural_convection_1e4", name, n, 1e4, 0.4)
    hot_spots()
    cavities()
    channels()
    steel()


main()
