#!/usr/bin/env python3
"""Writes the page of the verification, its figures and the table of its values, from what "norvane verify --format
json" prints.

    page.py RESULTS.json DOCS [--release]

DOCS/verification.md and DOCS/pictures/verification/*.svg are written; the values are compared with figures.tsv beside
this file, which --release replaces.
"""

import html
import json
import math
import os
import sys

HERE = os.path.dirname(os.path.abspath(__file__))
TABLE = os.path.join(HERE, "figures.tsv")
COLOURS = ("#0072b2", "#d55e00", "#009e73", "#cc79a7", "#e69f00", "#56b4e9")
# What moves by less is rounding of the table and of the C library in expected values.
MOVED = 0.01

ORDER = """shock_tube shock_tube_left shock_tube_left_viscous standing_wave standing_wave_limit slab_mode slab_small_steps
sudden_wall layered_slab steel_plate couette couette_start poiseuille channel lid_driven_cavity atmosphere
atmosphere_at_rest species_front species_front_left radiation radiation_surroundings exchange exchange_cap drag darcy
darcy_left darcy_small_steps sealed_box natural_convection_1e3 natural_convection_1e4 hot_spot hot_spot_left""".split()


def short(value):
    if value is None:
        return "none"
    return f"{value:.2e}".replace("e-0", "e-").replace("e+0", "e").replace("e0", "") if value else "0"


def mode(check):
    return "compensated" if check["compensated"] else "plain"


# --- charts ---------------------------------------------------------------------------------------------------------

class Chart:
    """A frame with two axes, in which x and y of the data are mapped."""

    width, height = 460, 300
    left, right, top, bottom = 70, 12, 30, 46

    def __init__(self, title, across, xs, ys):
        self.parts = [f'<text x="{self.width / 2}" y="18" text-anchor="middle" font-weight="bold">{html.escape(title)}'
                      "</text>"]
        self.xlow, self.xhigh = self.widened(xs)
        self.ylow, self.yhigh = self.widened(ys)
        w, h = self.width - self.left - self.right, self.height - self.top - self.bottom
        self.parts.append(f'<rect x="{self.left}" y="{self.top}" width="{w}" height="{h}" fill="none" stroke="#888"/>')
        self.parts.append(f'<text x="{self.left + w / 2}" y="{self.height - 10}" text-anchor="middle">'
                          f"{html.escape(across)}</text>")

    @staticmethod
    def widened(values):
        low, high = min(values), max(values)
        if high - low <= 1e-9 * max(abs(low), abs(high)):
            low, high = low - max(abs(low), 1) * 0.01, high + max(abs(high), 1) * 0.01
        return low - 0.05 * (high - low), high + 0.05 * (high - low)

    def place(self, x, y):
        w, h = self.width - self.left - self.right, self.height - self.top - self.bottom
        return (round(self.left + (x - self.xlow) / (self.xhigh - self.xlow) * w, 1),
                round(self.top + (self.yhigh - y) / (self.yhigh - self.ylow) * h, 1))

    def xtick(self, x, text):
        at, _ = self.place(x, self.ylow)
        self.parts.append(f'<text x="{at}" y="{self.height - self.bottom + 15}" text-anchor="middle">'
                          f"{html.escape(text)}</text>")

    def ytick(self, y, text):
        _, at = self.place(self.xlow, y)
        self.parts.append(f'<path d="M{self.left} {at}h{self.width - self.left - self.right}" stroke="#ddd"/>'
                          f'<text x="{self.left - 6}" y="{at + 4}" text-anchor="end">{html.escape(text)}</text>')

    def line(self, points, colour, dashes=""):
        path = "".join(("L" if k else "M") + "{} {}".format(*self.place(x, y)) for k, (x, y) in enumerate(points))
        style = f' stroke-dasharray="{dashes}"' if dashes else ""
        self.parts.append(f'<path d="{path}" fill="none" stroke="{colour}" stroke-width="1.5"{style}/>')

    def dots(self, points, colour, radius=3.0):
        for x, y in points:
            at = self.place(x, y)
            self.parts.append(f'<circle cx="{at[0]}" cy="{at[1]}" r="{radius}" fill="{colour}"/>')

    def key(self, row, colour, text, column=0):
        x, y = self.left + 10 + column, self.top + 16 + 15 * row
        self.parts.append(f'<rect x="{x}" y="{y - 8}" width="9" height="9" fill="{colour}"/>'
                          f'<text x="{x + 14}" y="{y}">{html.escape(text)}</text>')


def ticks(low, high):
    span = 10 ** math.floor(math.log10((high - low) / 3))
    step = next(span * k for k in (1, 2, 5, 10) if (high - low) / (span * k) <= 5)
    return [round(k * step, 12) for k in range(math.ceil(low / step), math.floor(high / step) + 1)]


def thinned(points, most):
    return points[::max(1, math.ceil(len(points) / most))]


def profile_chart(case, title):
    profiles = [p for p in case["profiles"] if p["title"] == title and not p["compensated"]]
    profiles = profiles or [p for p in case["profiles"] if p["title"] == title]
    series = [(p["grid"], [q for q in p["points"] if None not in q]) for p in profiles]
    series = [(grid, points) for grid, points in series if points]
    if not series:
        return None
    everything = [q for _, points in series for q in points]
    chart = Chart(title, "place, m", [q[0] for q in everything], [v for q in everything for v in q[1:]])
    for value in ticks(chart.xlow, chart.xhigh):
        chart.xtick(value, f"{value:g}")
    for value in ticks(chart.ylow, chart.yhigh):
        chart.ytick(value, f"{value:g}")
    finest = series[-1][1]
    chart.line([(q[0], q[2]) for q in sorted(thinned(finest, 400))], "#000")
    for k, (grid, points) in enumerate(series):
        chart.dots([(q[0], q[1]) for q in thinned(points, 60)], COLOURS[k], 2.2)
        chart.key(k, COLOURS[k], grid, 220)
    chart.key(len(series), "#000", "expected", 220)
    return chart


def legend(check):
    title = check["title"] if len(check["title"]) <= 34 else check["title"][:32] + "..."
    return title + f" ({check['kind']})" + (", compensated" if check["compensated"] else "")


def error_chart(case):
    """The amounts of all judged figures, over the grids."""
    grids = list(dict.fromkeys(f["grid"] for c in case["checks"] for f in c["figures"]))
    shown = [c for c in case["checks"] if any(f["value"] for f in c["figures"])][:6]
    logs = [math.log10(abs(f["value"])) for c in shown for f in c["figures"] if f["value"]]
    if not logs:
        return None
    high = max(logs) + (0.25 * (len(shown) + 1) * max(1, max(logs) - min(logs)) / 3)
    chart = Chart("Amount of each figure", "", [-0.3, len(grids) - 0.7], [min(logs), high])
    for k, grid in enumerate(grids):
        chart.xtick(k, grid)
    for power in range(math.ceil(chart.ylow), math.floor(chart.yhigh) + 1):
        chart.ytick(power, f"1e{power}")
    if chart.yhigh - chart.ylow < 2:
        for value in (v * 10.0 ** p for p in range(math.floor(chart.ylow), math.ceil(chart.yhigh)) for v in (2, 5)):
            if chart.ylow < math.log10(value) < chart.yhigh:
                chart.ytick(math.log10(value), f"{value:.0e}".replace("e-0", "e-"))
    for k, check in enumerate(shown):
        points = [(grids.index(f["grid"]), math.log10(abs(f["value"]))) for f in check["figures"] if f["value"]]
        chart.line(points, COLOURS[k], "5 3" if check["compensated"] else "")
        chart.dots(points, COLOURS[k])
        chart.key(k, COLOURS[k], legend(check))
    return chart


def write_charts(case, folder):
    charts = [error_chart(case)] + [profile_chart(case, t) for t in dict.fromkeys(p["title"] for p in case["profiles"])]
    charts = [chart for chart in charts if chart]
    if not charts:
        return False
    width = Chart.width * len(charts)
    parts = [f'<svg xmlns="http://www.w3.org/2000/svg" width="{width}" height="{Chart.height}" '
             f'viewBox="0 0 {width} {Chart.height}" font-family="sans-serif" font-size="11">',
             f'<rect width="{width}" height="{Chart.height}" fill="#fff"/>']
    for k, chart in enumerate(charts):
        parts += [f'<g transform="translate({k * Chart.width} 0)">'] + chart.parts + ["</g>"]
    with open(os.path.join(folder, case["name"] + ".svg"), "w") as file:
        file.write("\n".join(parts + ["</svg>"]) + "\n")
    return True


# --- the page -------------------------------------------------------------------------------------------------------

def acceptance(check, figure):
    texts = []
    if figure["bound"] is not None:
        texts.append(f"within {short(figure['bound'])}")
    if check["between"]:
        texts.append(f"{check['between'][0]:g} to {check['between'][1]:g}")
    if check["orderBetween"] and figure["order"] is not None:
        texts.append(f"order {check['orderBetween'][0]:g} to {check['orderBetween'][1]:g}")
    return ", ".join(texts) or "-"


def verdict(check, figure):
    if not figure["passes"]:
        return "**fails**"
    judged = figure["bound"] is not None or check["between"] or (check["orderBetween"] and figure["order"] is not None)
    return "pass" if judged else "told"


def rows_of(check):
    rows = []
    for k, figure in enumerate(check["figures"]):
        first = (check["title"] + (" (`--compensated`)" if check["compensated"] else "")) if k == 0 else ""
        order = "-" if figure["order"] is None else f"{figure['order']:.2f}"
        rows.append(f"| {first} | {figure['grid']} | {short(figure['value'])} | {order} | {acceptance(check, figure)} |"
                    f" {verdict(check, figure)} |")
    return rows


HEADS = {"discrete": "Against the exact solution of the discrete equations (what remains is rounding):",
         "continuous": "Against the continuous or published solution (what remains is the size of cells and steps):"}


def section(case, has_figure):
    lines = [f"## {case['title']}", "", f"[verification/{case['name']}](../verification/{case['name']}/case.txt)", ""]
    for paragraph in case["about"]:
        lines += [paragraph, ""]
    if has_figure:
        lines += [f"![{case['title']}](pictures/verification/{case['name']}.svg)", ""]
    for kind in ("discrete", "continuous"):
        checks = [c for c in case["checks"] if c["kind"] == kind]
        if not checks:
            continue
        lines += [HEADS[kind], "", "| Figure | Grid | Measured | Order | Acceptance | |", "|---|---|---|---|---|---|"]
        for check in checks:
            lines += rows_of(check)
        lines.append("")
        for check in checks:
            if check["given"]:
                lines.append(f"- {check['title']}: first asked for {check['given']}.")
            if check["note"]:
                lines.append(f"- {check['title']}: {check['note']}")
            lines += [f"- {check['title']}, {f['grid']}: {f['fault']}" for f in check["figures"] if f["fault"]]
        lines.append("")
    if case["sources"]:
        lines += ["Source: " + " ".join(case["sources"]), ""]
    return lines


def summary(case):
    if not case["passes"]:
        return "**fails**"
    return "pass" if any(check["judged"] for check in case["checks"]) else "told"


def figures_of(cases):
    """Each figure under a name of its own."""
    values = {}
    for case in cases:
        for check in case["checks"]:
            for figure in check["figures"]:
                values[(case["name"], check["title"], check["kind"], mode(check), figure["grid"])] = figure["value"]
    return values


def read_table():
    values = {}
    if not os.path.exists(TABLE):
        return values
    with open(TABLE) as file:
        for line in list(file)[1:]:
            *name, value = line.rstrip("\n").split("\t")
            values[tuple(name)] = None if value == "none" else float(value)
    return values


def write_table(values):
    with open(TABLE, "w") as file:
        file.write("case\tfigure\tkind\trun\tgrid\tvalue\n")
        for name, value in values.items():
            file.write("\t".join(name) + "\t" + short(value) + "\n")


def movements(values, before):
    lines = []
    for name, value in values.items():
        if name not in before:
            lines.append(f"| {name[0]}: {name[1]} ({name[3]}) | {name[4]} | new | {short(value)} |")
            continue
        old, new = before[name], value if value is None else float(short(value))
        if old == new or (old and new and abs(new / old - 1) <= MOVED):
            continue
        lines.append(f"| {name[0]}: {name[1]} ({name[3]}) | {name[4]} | {short(old)} | {short(value)} |")
    lines += [f"| {name[0]}: {name[1]} ({name[3]}) | {name[4]} | {short(old)} | gone |"
              for name, old in before.items() if name not in values]
    return lines


INTRODUCTION = """# Verification

What the program computes, against what it ought to. Each case is a drawing that anybody can run; this page is written by
`scripts/verify` from their results and is never edited by hand. How to add a case of one's own is told in
[verification cases](verification_cases.md).

Two questions are kept apart. Against the *exact solution of the discrete equations* only rounding remains: it says whether
the program solves the equations of [equations.md](equations.md) as they stand there. Against the *continuous* solution, or
a published one, the size of cells and steps remains: it says how good the equations are, and the order says how fast they
get better on a finer grid. A figure without an acceptance is "told": it shows what to expect where nothing good is
promised. Where an acceptance that was asked for first was not met and another one stands in its place, both are given.

Results have one bit pattern on every machine, and so have these figures, up to the last digits of functions such as `log`
in the expected values.

## Which way to draw

The scheme is not mirror-symmetric: momentum stands on the upper face of a cell and is divided by the mass of the cell below
that face. Cases whose name ends in `_left` are the same problem drawn the other way round. What follows from the figures:

- **Draw shocks, sharp waves and hot fronts so that they run towards higher numbers**, to the right or down. A shock that
  runs towards lower numbers comes out wrong and does not converge (`shock_tube_left`), unless `ET` is at least a quarter
  of density times speed of sound times cell size (`shock_tube_left_viscous`). A hot spot that drifts towards lower numbers
  makes noise in the pressure, 0.4 per cent on 50 cells, where the mirrored one makes none (`hot_spot_left`).
- Slow flow does not mind: species and porous beds come out alike in both directions.
"""


def main():
    results, docs = sys.argv[1], sys.argv[2]
    with open(results) as file:
        cases = json.load(file)
    cases.sort(key=lambda case: ORDER.index(case["name"]) if case["name"] in ORDER else len(ORDER))
    pictures = os.path.join(docs, "pictures", "verification")
    os.makedirs(pictures, exist_ok=True)
    values, before = figures_of(cases), read_table()
    passing = sum(case["passes"] for case in cases)
    lines = INTRODUCTION.split("\n")
    lines += ["## All cases", "", f"{passing} of {len(cases)} cases pass.", "", "| Case | |", "|---|---|"]
    anchor = lambda title: "".join(c for c in title.lower().replace(" ", "-") if c.isalnum() or c == "-")
    lines += [f"| [{case['title']}](#{anchor(case['title'])}) | {summary(case)} |"
              for case in cases]
    lines += ["", "## What moved", ""]
    moved = movements(values, before)
    lines += (["Figures that differ by more than a hundredth from those of the last release (`verification/figures.tsv`):",
               "", "| Figure | Grid | Last release | Now |", "|---|---|---|---|"] + moved) if moved else \
        ["No figure differs by more than a hundredth from that of the last release (`verification/figures.tsv`)."]
    lines.append("")
    for case in cases:
        lines += section(case, write_charts(case, pictures))
    text = "\n".join(lines).rstrip("\n") + "\n"
    while "\n\n\n" in text:
        text = text.replace("\n\n\n", "\n\n")
    with open(os.path.join(docs, "verification.md"), "w") as file:
        file.write(text)
    if "--release" in sys.argv[3:] or not before:
        write_table(values)


main()
