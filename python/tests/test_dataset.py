"""Datasets in their memento files: whole, in parts, damaged."""

import math
import os
import unittest

from support import ProjectTest, catalog, content_of, dataset, pack, variable

import numpy as np

import kelvane
from kelvane.dataset import read_mask

LABELS = catalog([(0, "Ag"), (7, "a & b")])
REALS = variable("v", "REAL", [1.5, 2.5])


def listed(column):
    return column.to_list() if hasattr(column, "to_list") else column.tolist()


class Columns(ProjectTest):
    def test_each_type_has_its_column(self):
        undefined = -2**63
        rows = [
            ("REAL", [1.5, 1e300, -0.0, math.inf], [1.5, None, 0.0, math.inf], np.float64),
            ("REAL_32", [0.1, math.nan, 0, 1], [float(np.float32(0.1)), None, 0, 1], np.float64),
            ("INTEGER", [1, undefined, -3, 4], [1, None, -3, 4], np.float64),
            ("INTEGER", [1, 2**53 + 1, 3, 4], [1, 2**53 + 1, 3, 4], np.int64),
            ("DATE", [0, undefined, 1, 2], [0, None, 1, 2], np.float64),
            ("SELECTION", [0, 1, 1, 0], [0, 1, 1, 0], np.uint8),
            ("ALPHA_CHANNEL", [0, 1, 254, 255], [0, 1, 254, 255], np.uint8),
            ("TEXT", ["", None, "𝄞\0'", "\udd1e"], ["", None, "𝄞\0'", "\udd1e"], None),
            ("CATEGORY", [0, 7, 3, 65535], ["Ag", "a & b", None, None], None),
        ]
        variables = [variable("%1 ü'", kind, values, index=str(i), component="x",
                              catalog=LABELS if kind == "CATEGORY" else "")
                     for i, (kind, values, _, _) in enumerate(rows, 1)]
        survey = kelvane.Dataset(self.write(dataset(variables, 4)))
        for i, (kind, _, expected, dtype) in enumerate(rows, 1):
            column = survey[f"%1 ü'[{i}].x"]
            found = [None if isinstance(v, float) and math.isnan(v) else v for v in listed(column)]
            self.assertEqual(found, expected, kind)
            self.assertEqual(getattr(column, "dtype", None), dtype, kind)

    def test_parts_are_slices_of_the_whole(self):
        rng = np.random.default_rng(1)
        count = 1003
        texts = [None if n == 0 else "é" * (n - 1) + str(n) for n in rng.integers(0, 6, count)]
        mask = rng.integers(0, 2, count)
        bits = pack(np.packbits(mask, bitorder="little").tobytes())
        survey = kelvane.Dataset(self.write(dataset(
            [variable("n", "INTEGER", rng.integers(0, 9, count)), variable("t", "TEXT", texts)],
            count, f"<mask>{bits}</mask>")))
        self.assertEqual(survey.mask.tolist(), (mask == 1).tolist())
        for begin, end in [(0, count), (0, 0), (1, 9), (500, 501), (999, count), (count, count)]:
            for name in ("n", "t"):
                source = survey.variables[name]
                with source.packed.open() as stream:
                    part = source.read_part(stream, begin, end)
                self.assertEqual(listed(part), listed(survey[name])[begin:end], (name, begin))
            part = read_mask(survey.packed_mask, count, begin, end)
            self.assertEqual(part.tolist(), survey.mask[begin:end].tolist())

    def test_a_table_without_samples_is_empty(self):
        survey = kelvane.Dataset(self.write(dataset(
            [variable("v", "REAL", []), variable("t", "TEXT", [])], 0,
            kind="LuMemoryDatasetGrid")))
        self.assertEqual((len(survey["v"]), len(survey["t"]), len(survey.mask)), (0, 0, 0))
        self.assertEqual(survey.support, "Grid")

    def test_a_damaged_neighbour_is_warned_of(self):
        self.write("<Dataset>", number=1)
        good = self.write(dataset([REALS], 2), number=2)
        project = kelvane.Project(self.directory)
        with self.assertWarns(kelvane.KelvaneWarning):
            self.assertEqual(project.dataset("survey").path, good)
        self.write(dataset([REALS], 2), number=3)
        with self.assertWarns(kelvane.KelvaneWarning):
            with self.assertRaisesRegex(kelvane.KelvaneError, "more than one dataset"):
                project.dataset("survey")


class Damage(ProjectTest):
    def test_what_is_damaged_is_named(self):
        content = content_of("REAL", [1.5, 2.5])
        packed = pack(content)
        huge = pack(bytes(1 << 20))
        lengths = np.array([1, 1], "<i4").tobytes()
        whole = dataset([REALS], 2)
        texts = {"lengths too large": np.array([2**31 - 1, 2**31 - 1], "<i4").tobytes() + b"abcd",
                 "a unit too few": lengths + b"ab", "a unit too many": lengths + b"abcdef",
                 "no lengths": b"abc"}
        rows = {
            "no base64": (dataset([variable("v", "REAL", [], "????")], 2), "not valid base64"),
            "base64 that ends early": (dataset([variable("v", "REAL", [], packed[:-1])], 2),
                                       "not valid base64"),
            "padding in the middle": (
                dataset([variable("v", "REAL", [], "QQ==" * 100000)], 2), "not valid base64"),
            "no frame": (dataset([variable("v", "REAL", [], "AAAAAAAA")], 2), "not compressed"),
            "a frame cut short": (dataset([variable("v", "REAL", [], packed[:-8])], 2), "damaged"),
            "two frames": (dataset([variable("v", "REAL", [],
                                             pack(b"abc" * 3 + content[:7]) + packed)], 2), "v'"),
            "no stated size": (dataset([variable("v", "REAL", [], pack(content, False))], 2),
                               "not compressed"),
            "another size": (dataset([REALS], 3), "16 bytes instead of 24"),
            "no values": (dataset([variable("v", "REAL", [], "")], 2), "0 bytes instead of 16"),
            "a bomb": (dataset([variable("v", "SELECTION", [], huge)], 2**31 - 1),
                       "1048576 bytes instead of 2147483647"),
            "a frame that lies": (dataset([variable(
                "v", "SELECTION", [], "KLUv/aD///9/AAAA")], 2**31 - 1), "damaged"),
            "an element in the values": (whole.replace("<values>", "<values><b/>"),
                                         "holds an element"),
            "a count too large": (dataset([REALS], 2**31), "number of samples '2147483648'"),
            "a count of letters": (dataset([REALS], "1e1"), "number of samples '1e1'"),
            "a name taken": (dataset([REALS, REALS], 2), "'v': its name is empty or taken"),
            "a type unknown": (whole.replace(">REAL<", ">REEL<"), "'v': its type 'REEL'"),
            "a code taken": (dataset([variable("v", "CATEGORY", [0, 0], catalog=catalog(
                [(1, "a"), (1, "b")]))], 2), "its category 'b'"),
            "a label taken": (dataset([variable("v", "CATEGORY", [0, 0], catalog=catalog(
                [(1, "a"), (2, "a")]))], 2), "same label"),
            "the undefined code": (dataset([variable("v", "CATEGORY", [0, 0], catalog=catalog(
                [(65535, "a")]))], 2), "its category 'a'"),
            "no table": (whole.replace("table", "chair"), "no table"),
            "a kind unknown": (dataset([REALS], 2, kind="LuOther"), "'LuOther'"),
            "another root": (whole.replace("Dataset", "Datasat"), "root element is 'Datasat'"),
            "entities": (whole.replace("<Dataset>", '<!DOCTYPE a [<!ENTITY b "c">]><Dataset>', 1),
                         "document type"),
            "a depth": (whole.replace("<table", "<a>" * 2000 + "<table", 1), "line 2: "),
            "an end too early": (whole[:200], "line 2, column"),
            "no text at all": (b"\xff\xfe\0", "line 1, column"),
            "no UTF-8": (whole.replace("survey", "\udcff").encode("utf-8", "surrogateescape"),
                         "line 2, column"),
            "a mask of another size": (dataset([REALS], 2, f"<mask>{packed}</mask>"),
                                       "the mask: its values take 16 bytes instead of 1"),
            **{title: (dataset([variable("v", "TEXT", [], pack(text))], 2), "'v': ")
               for title, text in texts.items()},
        }
        for title, (text, fault) in rows.items():
            with self.subTest(title):
                path = self.write(text)
                with self.assertRaises(kelvane.KelvaneError) as caught:
                    survey = kelvane.Dataset(path)
                    survey["v"], survey.mask
                self.assertIn(path, str(caught.exception))
                self.assertIn(fault, str(caught.exception))

    def test_a_file_that_was_replaced_is_not_mixed_with_the_old_one(self):
        survey = kelvane.Dataset(self.write(dataset([REALS], 2)))
        os.utime(survey.path, ns=(1, 1))
        with self.assertRaisesRegex(kelvane.KelvaneError, "has changed"):
            survey["v"]


if __name__ == "__main__":
    unittest.main()
