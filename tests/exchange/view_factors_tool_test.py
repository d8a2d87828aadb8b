"""The view factor maker: factors of known arrangements, exchange between grey walls, and the file of the example."""

import pathlib
import sys
import unittest

ROOT = pathlib.Path(__file__).resolve().parents[2]
sys.dont_write_bytecode = True
sys.path.insert(0, str(ROOT / "tools"))

import view_factors as tool  # noqa: E402

HEADER = "cell\tfaces\tx1\tx2\ty1\ty2\tz1\tz2\temissivity\n"


def box(*sizes, emissivity=1.0):
    """The six walls of a box, seen from within."""
    pieces = []
    for axis in range(3):
        for sign, plane in (("+", 0.0), ("-", sizes[axis])):
            extents = [[plane, plane] if k == axis else [0.0, sizes[k]] for k in range(3)]
            pieces.append(tool.Piece(len(pieces) + 1, sign + "xyz"[axis], extents, emissivity))
    return pieces


class ViewFactors(unittest.TestCase):
    def test_walls_of_a_cube_see_each_other_by_the_known_factors(self):
        factors = tool.view_factors(box(1, 1, 1))
        self.assertAlmostEqual(factors[0][1], 0.19982, 5)  # opposite
        self.assertAlmostEqual(factors[0][2], 0.20004, 5)  # beside

    def test_walls_of_a_closed_box_see_nothing_else(self):
        for row in tool.view_factors(box(1, 0.3, 20)):
            self.assertAlmostEqual(sum(row[:-1]), 1, 9)

    def test_only_what_lies_in_front_of_a_wall_is_seen(self):
        a, b = box(1, 1, 1)[::2][:2]
        high = tool.Piece(7, "+y", [[-3.0, 1.0], [0.0, 0.0], [0.0, 1.0]], 1.0)  # the part before a is b
        self.assertAlmostEqual(tool.exchange_area(a, high), tool.exchange_area(a, b), 12)
        away = tool.Piece(8, "+x", [[2.0, 2.0], [0.0, 1.0], [0.0, 1.0]], 1.0)
        self.assertEqual(tool.exchange_area(a, away), 0)

    def test_large_grey_plates_exchange_by_the_formula_of_infinite_ones(self):
        a, b = box(1, 1e4, 1e4)[:2]
        a.emissivity, b.emissivity = 0.8, 0.5
        first = next(tool.pairs_of([a, b]))
        self.assertAlmostEqual(first[2] * first[3] / a.area, 1 / (1 / 0.8 + 1 / 0.5 - 1), 3)

    def test_all_that_is_emitted_is_taken_up_somewhere_and_pairs_are_symmetric(self):
        pieces = box(1, 2, 3)[:5]
        for k, piece in enumerate(pieces):
            piece.emissivity = 0.2 + 0.15 * k
        shares = tool.absorbed_shares(pieces, tool.view_factors(pieces))
        for i, a in enumerate(pieces):
            self.assertAlmostEqual(sum(shares[i]), 1, 12)
            for j, b in enumerate(pieces):
                self.assertAlmostEqual(a.emissivity * a.area * shares[i][j], b.emissivity * b.area * shares[j][i], 12)

    def test_the_file_of_the_example_is_made_from_its_table(self):
        text = (ROOT / "examples/facing_walls_surfaces.txt").read_text()
        made = tool.rad_text(tool.read_pieces(text)).split()
        kept = (ROOT / "examples/facing_walls_rad").read_text().split()
        self.assertEqual(len(made), len(kept))
        for a, b in zip(map(float, made), map(float, kept)):
            self.assertAlmostEqual(a, b, delta=2e-7 * b)  # a unit of the seventh digit

    def test_a_fault_of_the_table_names_its_line(self):
        faults = {
            "": "no piece",
            "cell\tfaces\n": "line 1: there is no column x1",
            HEADER + "\n1\t+x\t0\t1\t0\t1\t0\t1\t1\n": "line 3: x1 and x2 have to be the same",
            HEADER + "1\tup\t0\t0\t0\t1\t0\t1\t1\n": "line 2: faces",
            HEADER + "1\t+x\t0\t0\t0\t1\t0\tinf\t1\n": "line 2: z2 is not finite",
            HEADER + "1.5\t+x\t0\t0\t0\t1\t0\t1\t1\n": "line 2: cell",
            HEADER + "1\t+x\t0\t0\t0\t1\t0\t1\n": "line 2: emissivity is ''",
        }
        for text, message in faults.items():
            with self.subTest(message), self.assertRaisesRegex(tool.Fault, message):
                tool.read_pieces(text)


if __name__ == "__main__":
    unittest.main()
