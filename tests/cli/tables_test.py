#!/usr/bin/env python3
"""Tables of the program read by Python's csv module: shape, addresses, units, and the bits of every number."""

import csv
import struct
import subprocess
import sys
import tempfile


def column_letters(column):
    letters = ""
    while column > 0:
        column, digit = divmod(column - 1, 26)
        letters = chr(ord("A") + digit) + letters
    return letters


def is_single(text):
    """Whether nine digits of the nearest single are the text itself."""
    single = struct.unpack("f", struct.pack("f", float(text)))[0]
    return float(f"{single:.9g}") == float(text)


def rows_of(path, **form):
    with open(path, newline="", encoding="ascii") as file:
        return list(csv.reader(file, strict=True, **form))


def main():
    program = sys.argv[1]
    with tempfile.TemporaryDirectory() as folder:
        table = ["NS 1\tDT 1E-5:NT 30\tDD 0;0.013\t"] + ["L\t\t\t"]
        table += ["TT 350\t\tCC 1;0.3\t", "\t\t\tPP 1.1E5", "\tTT 290\t\t", "L\t\t\t"] * 3
        with open(f"{folder}/m.gmt", "w", encoding="ascii") as file:
            file.write("\n".join(table))

        def run(*words):
            subprocess.run([program, *words], cwd=folder, check=True, stdout=subprocess.DEVNULL)

        run("run", "m.gmt", "--save", "--probe", "D4:T,u,c1", "--probe", "A3:B4:mean(T),max(p)", "--probe-every", "1")
        run("export", "m.gmt", "--state", "--csv", "m.csv")
        run("export", "m.gmt", "--state", "--sheet", "T", "-o", "T.txt")

        cells = rows_of(f"{folder}/m.csv")
        assert cells[0] == ["cell", "address", "x [m]", "y [m]", "z [m]", "T [K]", "p [Pa]", "rho [kg/m3]",
                            "u (upper face) [m/s]", "v (upper face) [m/s]", "w (upper face) [m/s]", "c0", "c1"]
        assert len(cells) == 1 + 36
        sheet = rows_of(f"{folder}/T.txt", delimiter="\t", quoting=csv.QUOTE_NONE)
        assert [len(row) for row in sheet] == [4] * 14
        at_address = {column_letters(k + 1) + str(n + 1): text
                      for n, row in enumerate(sheet) for k, text in enumerate(row)}
        assert [at_address[f"A{row}"] for row in (2, 6, 10, 14)] == ["L"] * 4
        for number, row in enumerate(cells[1:]):
            x, y, z = number % 4, number // 4 % 3, number // 12
            assert row[0] == str(number + 1)
            assert row[1] == column_letters(x + 1) + str(3 + y + 4 * z)
            assert all(abs(float(text) - (k + 0.5) * 0.013) < 1e-8 for text, k in zip(row[2:5], (x, y, z)))
            assert at_address[row[1]] == row[5]
            assert all(is_single(text) for text in row[5:]), row
            assert abs(float(row[11]) + float(row[12]) - 1) < 1e-6
        assert len({row[5] for row in cells[1:]}) > 10

        probes = rows_of(f"{folder}/m_probes.csv")
        assert probes[0] == ["step", "time [s]", "D4:T [K]", "D4:u [m/s]", "D4:c1", "A3:B4:mean(T) [K]",
                             "A3:B4:max(p) [Pa]"]
        assert [int(row[0]) for row in probes[1:]] == list(range(31))
        step = struct.unpack("f", struct.pack("f", 1e-5))[0]
        for row in probes[1:]:
            assert float(row[1]) == float(f"{int(row[0]) * step:.9g}")
            assert all(is_single(text) for text in row[2:5] + row[6:])
            assert 290 < float(row[5]) < 350


main()
