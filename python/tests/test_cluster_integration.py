"""Columns of Dask: in partitions they are what they are in one piece."""

import unittest

from support import ProjectTest, catalog, dataset, pack, variable

import numpy as np

import kelvane

try:
    import dask
    from kelvane import cluster
except ImportError as error:
    raise unittest.SkipTest(f"{error.name} is not installed")


class Partitions(ProjectTest):
    def test_partitions_of_any_size_give_the_whole(self):
        rng = np.random.default_rng(3)
        count = 1000
        values = {"REAL": rng.choice([1.5, 1e300, 2.5], count),
                  "REAL_32": rng.choice([0.1, np.nan], count),
                  "INTEGER": rng.choice([1, -2**63, 3], count), "DATE": rng.integers(0, 5, count),
                  "SELECTION": rng.integers(0, 2, count), "CATEGORY": rng.integers(0, 5, count),
                  "COLOR": rng.integers(0, 2, count), "TEXT": rng.choice(["a", None, "ba"], count)}
        variables = [variable(kind, kind, column, catalog=catalog([(0, "x"), (3, "y")]))
                     for kind, column in values.items()]
        bits = pack(np.packbits(values["SELECTION"], bitorder="little").tobytes())
        survey = kelvane.Dataset(self.write(dataset(variables, count, f"<mask>{bits}</mask>")))
        texts = [f"~ np.isnan(data['{kind}'])" for kind in values]
        texts += ["data['REAL_32'] < 0.1", "(data['REAL'] > 2) & ~ (data['INTEGER'] >= 3)",
                  "(data['CATEGORY'] == 'y') | (data['CATEGORY'] == 'gone')",
                  "(data['CATEGORY'] != 'x') & (data['SELECTION'] == 1)", "data['DATE'] == 3", "",
                  "(data['TEXT'] == 'a') | (qm_find(data['TEXT'],'a') > 0)", "data['TEXT'] != 'a'"]
        with dask.config.set(scheduler="threads"):
            for size in (1000, 333, 2000):
                columns = cluster.LazyColumns(survey, size)
                self.assertEqual(columns.mask.compute().tolist(), survey.mask.tolist())
                for text in texts:
                    found = columns.evaluate(text)
                    self.assertEqual(found.dtype, bool)
                    self.assertEqual(found.compute().tolist(), survey.evaluate(text).tolist(), text)


if __name__ == "__main__":
    unittest.main()
