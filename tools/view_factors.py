#!/usr/bin/env python3
"""Make the view factor file of a Norvane geometry from a table of its walls.

usage: tools/view_factors.py WALLS OUT

WALLS is a tab-separated table, such as a spreadsheet saves. Its first row names
the columns, in any order, and each further row is one rectangular piece of wall:

  cell        number of the cell whose temperature the piece has; column by
              column, row by row of the geometry, from 1
  faces       the side that radiates: +x -x +y -y +z -z
  x1 x2 y1 y2 z1 z2
              the piece in metres; across the direction that it faces both
              coordinates are the same
  emissivity  from above 0 up to 1

Rows that are empty or begin with # are skipped. OUT is named after the geometry:
cavity_rad for cavity.gmt.

The pieces are grey and diffuse and see each other freely: nothing
between two of them is taken into account. What a piece sees beside the others
are the surroundings, black and at the temperature of the default cell.

Each line of OUT is a pair: its two cells (0: the surroundings), the area of the
first piece times its emissivity, and the share of what that piece emits that is
taken up by the second one, straight or by way of reflections.
"""

import math
import sys

AXES = "xyz"


class Fault(Exception):
    """What is wrong with the table, and where."""


class Piece:
    """A rectangle: the axis and the sign of the side that radiates, and its extent along x, y and z."""

    def __init__(self, cell, faces, extents, emissivity):
        self.cell = cell
        self.axis = AXES.index(faces[1])
        self.sign = 1 if faces[0] == "+" else -1
        self.extents = extents
        self.emissivity = emissivity

    @property
    def plane(self):
        return self.extents[self.axis][0]

    @property
    def area(self):
        return math.prod(high - low for axis, (low, high) in enumerate(self.extents) if axis != self.axis)

    def in_front(self, other):
        """The extent of another rectangle along our axis, as distances in front of our plane; None if all is behind."""
        low, high = sorted(self.sign * (end - self.plane) for end in other.extents[self.axis])
        return (max(low, 0.0), high) if high > 0 else None


# --- view factors: Siegel and Howell, Thermal Radiation Heat Transfer, appendix on configuration factors ------------


def alternating_sum(term, *ranges):
    """A fourfold integral from its antiderivative: the sum over the ends of all ranges, lower ends taken negative."""
    first, *others = ranges
    if not others:
        return term(first[1]) - term(first[0])
    return alternating_sum(lambda *rest: term(first[1], *rest) - term(first[0], *rest), *others)


def parallel_exchange(a, b):
    """Area of a times the view factor from a to b, facing each other at a distance."""
    gap = a.in_front(b)
    if gap is None or gap[1] <= 0 or b.in_front(a) is None:
        return 0.0
    z = gap[1]
    along, across = (axis for axis in range(3) if axis != a.axis)

    def term(x, xi, y, eta):
        u, v = x - xi, y - eta
        p, q = math.hypot(u, z), math.hypot(v, z)
        return (v * p * math.atan(v / p) + u * q * math.atan(u / q) - z * z / 2 * math.log(u * u + v * v + z * z)) / (
            2 * math.pi
        )

    return alternating_sum(term, a.extents[along], b.extents[along], a.extents[across], b.extents[across])


def perpendicular_exchange(a, b):
    """Area of a times the view factor from a to b, whose planes meet at a right angle."""
    distance_a, distance_b = b.in_front(a), a.in_front(b)  # of each from the line where the planes meet
    if distance_a is None or distance_b is None:
        return 0.0
    common = 3 - a.axis - b.axis

    def term(x, xi, y, eta):
        u, square = y - eta, x * x + xi * xi
        reach = math.sqrt(square)
        if square + u * u == 0:
            return 0.0
        angle = math.atan2(u, reach) if reach > 0 else 0.0
        return (u * reach * angle - (square - u * u) * math.log(square + u * u) / 4) / (2 * math.pi)

    return alternating_sum(term, distance_a, distance_b, a.extents[common], b.extents[common])


def exchange_area(a, b):
    """Area of a times the view factor from a to b; the same from b to a."""
    exchange = parallel_exchange(a, b) if a.axis == b.axis else perpendicular_exchange(a, b)
    return max(exchange, 0.0)  # the difference of nearly equal terms


def view_factors(pieces):
    """Rows of view factors from each piece: to each piece, and last to the surroundings."""
    count = len(pieces)
    factors = [[0.0] * (count + 1) for _ in pieces]
    for i, a in enumerate(pieces):
        for j in range(i):
            exchange = exchange_area(a, pieces[j])
            factors[i][j] = exchange / a.area
            factors[j][i] = exchange / pieces[j].area
    for i, row in enumerate(factors):
        rest = 1 - math.fsum(row)
        if rest < -1e-6:
            raise Fault(f"piece {i + 1} sees more than all there is: do pieces overlap, or hide one another?")
        row[count] = rest if rest > 1e-9 else 0.0
    return factors


# --- reflections ------------------------------------------------------------------------------------------------------


def solve(matrix, sides):
    """Solves matrix * X = sides in place by elimination with pivots; gives X."""
    size = len(matrix)
    for k in range(size):
        pivot = max(range(k, size), key=lambda row: abs(matrix[row][k]))
        matrix[k], matrix[pivot] = matrix[pivot], matrix[k]
        sides[k], sides[pivot] = sides[pivot], sides[k]
        for row in range(size):
            factor = matrix[row][k] / matrix[k][k]
            if row == k or factor == 0:
                continue
            matrix[row] = [m - factor * p for m, p in zip(matrix[row], matrix[k])]
            sides[row] = [s - factor * p for s, p in zip(sides[row], sides[k])]
    return [[value / matrix[k][k] for value in row] for k, row in enumerate(sides)]


def absorbed_shares(pieces, factors):
    """Of what each piece emits, the share that each piece, and last the surroundings, takes up in the end.

    What leaves piece i for piece k is taken up there by its emissivity, or reflected, and is then shared out as what k
    emits: B = F e + F (1 - e) B (Gebhart).
    """
    emissivity = [piece.emissivity for piece in pieces] + [1.0]
    count = len(pieces)
    matrix = [
        [float(i == k) - factors[i][k] * (1 - emissivity[k]) for k in range(count)] for i in range(count)
    ]
    return solve(matrix, [[f * e for f, e in zip(row, emissivity)] for row in factors])


def pairs_of(pieces):
    """The records of the file: first cell, second cell and the two factors."""
    shares = absorbed_shares(pieces, view_factors(pieces))
    for i, piece in enumerate(pieces):
        emitted = piece.emissivity * piece.area
        partners = [(pieces[j].cell, shares[i][j]) for j in range(i + 1, len(pieces))] + [(0, shares[i][-1])]
        for cell, share in partners:
            if share > 0 and cell != piece.cell:
                yield piece.cell, cell, emitted, share


# --- tables -----------------------------------------------------------------------------------------------------------


def number(row, name):
    try:
        value = float(row[name].replace(",", "."))
    except ValueError:
        raise Fault(f"{name} is '{row[name]}', which is no number") from None
    if not math.isfinite(value):
        raise Fault(f"{name} is not finite")
    return value


def piece_of(row):
    faces = row["faces"].lower()
    if len(faces) != 2 or faces[0] not in "+-" or faces[1] not in AXES:
        raise Fault(f"faces is '{row['faces']}'; it has to be one of +x -x +y -y +z -z")
    extents = [sorted((number(row, axis + "1"), number(row, axis + "2"))) for axis in AXES]
    for axis, (low, high) in zip(AXES, extents):
        if (low == high) != (axis == faces[1]):
            raise Fault(f"{axis}1 and {axis}2 have to be " + ("the same" if axis == faces[1] else "different"))
    cell = number(row, "cell")
    if cell != int(cell) or not 1 <= cell < 2**31:
        raise Fault("cell has to be a whole number from 1")
    emissivity = number(row, "emissivity")
    if not 0 < emissivity <= 1:
        raise Fault("emissivity has to lie above 0 and not above 1")
    return Piece(int(cell), faces, extents, emissivity)


def read_pieces(text):
    columns = ["cell", "faces", *(axis + end for axis in AXES for end in "12"), "emissivity"]
    header, pieces = None, []
    for line_number, line in enumerate(text.splitlines(), start=1):
        cells = [cell.strip() for cell in line.split("\t")]
        if not any(cells) or cells[0].startswith("#"):
            continue
        try:
            if header is None:
                header = [cell.lower() for cell in cells]
                missing = [name for name in columns if name not in header]
                if missing:
                    raise Fault("there is no column " + ", ".join(missing))
            else:
                row = dict.fromkeys(columns, "") | dict(zip(header, cells))
                pieces.append(piece_of(row))
        except Fault as fault:
            raise Fault(f"line {line_number}: {fault}") from None
    if not pieces:
        raise Fault("there is no piece of wall in it")
    return pieces


def rad_text(pieces):
    records = list(pairs_of(pieces))
    lines = ["\t".join([str(len(records))] * 3)]
    lines += [f"{first}\t{second}\t{a:.7g}\t{b:.7g}" for first, second, a, b in records]
    return "".join(line + "\r\n" for line in lines)


def main(arguments):
    if len(arguments) != 2 or arguments[0].startswith("-"):
        print(__doc__, end="", file=sys.stdout if arguments[:1] in (["-h"], ["--help"]) else sys.stderr)
        return 0 if arguments[:1] in (["-h"], ["--help"]) else 2
    walls, out = arguments
    try:
        with open(walls, encoding="utf-8-sig") as file:
            text = rad_text(read_pieces(file.read()))
        with open(out, "w", encoding="ascii", newline="") as file:
            file.write(text)
    except (Fault, UnicodeError) as fault:
        print(f"{walls}: {fault}", file=sys.stderr)
        return 2
    except OSError as fault:
        print(f"{fault.filename}: {fault.strerror}", file=sys.stderr)
        return 2
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
