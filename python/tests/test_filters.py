"""Stored filters: both versions, their combination, and what is refused."""

import unittest

from support import ProjectTest, catalog, dataset, variable

import kelvane

COMPARE = {"mode": "COMPARE", "compareOperator": "EQUAL", "compareValue": "2",
           "compareTolerance": "0.5", "intervalLower": "0", "intervalUpper": "1e-20",
           "intervalUpperOperator": "ITV_LESS_OR_EQUAL_TO"}
ALPHA = {"mode": "NOT_EQUAL_TO", "contains": "", "equalTo": "", "notEqualTo": "O'Hara\\"}


def fields(entries):
    return "".join(f"<{key}>{value}</{key}>" for key, value in entries.items())


def names(key, *labels):
    items = "".join(f"<QString>{label}</QString>" for label in labels)
    return f'<{key} type="QStringList">{items}</{key}>'


def rule(kind, stored, version=2, name="v", support="Points"):
    stored = fields(stored) if isinstance(stored, dict) else stored
    return (f'<QVariant type="QMap"><rule type="QMap">{stored}</rule><support>{support}</support>'
            f"<type>{kind}</type><variable>{name}</variable><version>{version}</version>"
            "</QVariant>")


def stored_filter(rules, combination=""):
    return (f'<SampleFilter><fields type="QMap"><combination>{combination}</combination>'
            f'<name>f</name><rules type="QVariantList">{"".join(rules)}</rules></fields>'
            "</SampleFilter>")


class Filters(ProjectTest):
    def filter(self, *arguments):
        return kelvane.SampleFilter.read(self.write(stored_filter(*arguments), "samplefilter"))

    def test_rules_of_both_versions_become_expressions(self):
        closed = "(1.5 <= data['v']) & (data['v'] <= 0.0)"
        for stored, expected in [
            (rule("SELECTION", {"invert": "false"}), "data['v'] == 1"),
            (rule("SELECTION", {"invert": "TRUE"}, 1), "data['v'] == 0"),
            (rule("NUMERIC", COMPARE), "(data['v'] >= 1.5) & (data['v'] <= 2.5)"),
            (rule("NUMERIC", {**COMPARE, "compareOperator": "NOT_EQUAL"}),
             "(data['v'] < 1.5) | (data['v'] > 2.5)"),
            (rule("NUMERIC", {**COMPARE, "compareOperator": "LESS_THAN", "compareValue": "-inf"}),
             "data['v'] < -np.inf"),
            (rule("NUMERIC", {**COMPARE, "mode": "RANGE"}),
             "(0.0 < data['v']) & (data['v'] <= 1e-20)"),
            (rule("NUMERIC", {**COMPARE, "mode": "IS_DEFINED"}), "~ np.isnan(data['v'])"),
            (rule("NUMERIC", {"mode": "1", "greater_than": "3"}, 1), "data['v'] > 3.0"),
            (rule("NUMERIC", {"mode": "3", "equal_to": "3", "tolerance": "1"}, 1),
             "(data['v'] >= 2.0) & (data['v'] <= 4.0)"),
            (rule("NUMERIC", {"mode": "4", "range_min": "1.5"}, 1), closed),
            (rule("NUMERIC", {"mode": "5", "range_min": "1.5"}, 1), closed),
            (rule("NUMERIC", {"mode": "6"}, 1), "~ np.isnan(data['v'])"),
            (rule("ALPHA", ALPHA), 'data[\'v\'] != "O\'Hara\\\\"'),
            (rule("ALPHA", {"mode": "0", "contains": "x"}, 1), "qm_find(data['v'],'x') >= 0"),
            (rule("ALPHA", {"mode": "EQUAL_TO", "equal_to": "x"}, 1), "data['v'] == 'x'"),
            (rule("ENUM", names("selectedList", "a", "%1")),
             "(data['v'] == 'a') | (data['v'] == '%1')"),
            (rule("ENUM", names("selected_list"), 1), "(data['v'] == 'BogusString')"),
        ]:
            self.assertEqual(self.filter([stored]).expression(), f"({expected})")
        self.assertEqual(self.filter([]).expression(), "")

    def test_combinations_bind_and_stay_flat(self):
        rules = [rule("SELECTION", {"invert": "false"}, name=f"v{i}") for i in range(1, 301)]
        for combination, expected in {
            "R10 or not r1 and R2": "(10) | ~ (1) & (2)",
            "NOT(R1 or R2)AND not not R3": "~ ((1) | (2)) & ~ ~ (3)",
            "not " * 50 + "(" * 50 + "R1" + ")" * 50: "~ " * 50 + "(" * 50 + "(1)" + ")" * 50,
        }.items():
            found = self.filter(rules, combination).expression()
            for i in (1, 2, 3, 10):
                expected = expected.replace(f"({i})", f"(data['v{i}'] == 1)")
            self.assertEqual(found, expected)
            kelvane.Expression(found)
        self.assertEqual(len(kelvane.Expression(self.filter(rules).expression()).variables), 300)
        many = rule("ENUM", names("selectedList", *map(str, range(4000))), name="v1")
        for found in (self.filter([many]), self.filter(rules, "R1" + " or R2" * 4000)):
            kelvane.Expression(found.expression())

    def test_a_damaged_filter_is_refused(self):
        sound = rule("SELECTION", {"invert": "false"})
        rows = [([sound], combination, f"At character {at} of the combination")
                for combination, at in [
                    ("R1 and", 7), ("()", 2), ("R1 R1", 4), ("R0", 1), ("R2", 1), ("R1)", 3),
                    ("(R1", 4), ("R1 xor R1", 4), ("R1 &amp; R1", 4), ("not", 4), ("R1²", 1),
                    ("(" * 101 + "R1" + ")" * 101, 101), ("R1" + " or R1" * 5000, 1)]]
        for key in COMPARE:
            if key != "intervalUpperOperator":
                fewer = {other: value for other, value in COMPARE.items() if other != key}
                rows.append(([rule("NUMERIC", fewer)], "", f"'{key}' is missing"))
            rows.append(([rule("NUMERIC", {**COMPARE, key: "1_0"})], "", f"'{key}' is missing"))
        rows += [([rule("ALPHA", {**ALPHA, "mode": "X"})], "", "R1, on the variable 'v': the val"),
                 ([sound, rule("OTHER", {})], "", "R2: the value of 'type'"),
                 ([rule("SELECTION", {"invert": "1"})], "", "'invert'"),
                 ([rule("SELECTION", {"invert": "no"}, 3)], "", "R1: the value of 'version'"),
                 ([rule("SELECTION", {"invert": "no"}, 0)], "", "R1: the value of 'version'"),
                 ([rule("ENUM", "")], "", "'selectedList'"), (["<QVariant/>"], "", "R1: the value")]
        for rules, combination, fault in rows:
            with self.subTest(fault, combination=combination[:20]):
                with self.assertRaisesRegex(kelvane.KelvaneError, "samplefilter_.*" + fault):
                    self.filter(rules, combination).expression()
        with self.assertRaisesRegex(kelvane.KelvaneError, "'rules'"):
            kelvane.SampleFilter.read(self.write(
                stored_filter([]).replace("rules", "rulers"), "samplefilter"))

    def test_a_filter_that_does_not_apply_is_refused(self):
        survey = kelvane.Dataset(self.write(dataset(
            [variable("v", "REAL", [2.0]),
             variable("k", "CATEGORY", [3], catalog=catalog([(3, "a")]))], 1)))
        category = rule("ENUM", names("selectedList", "a"), name="k")
        self.assertEqual(survey.select(self.filter([category, rule("NUMERIC", COMPARE)])), [True])
        self.assertEqual(survey.select(self.filter([])), [True])
        for bad, fault in [
            (rule("NUMERIC", COMPARE, name="w"), "R2: the variable 'w' is not in the dataset"),
            (rule("NUMERIC", COMPARE, name="k"), "'k' is not a number"),
            (rule("NUMERIC", {**COMPARE, "compareValue": "1e300"}), "undefined number"),
            (rule("SELECTION", {"invert": "no"}), "'v' is not a selection"),
            (rule("ALPHA", ALPHA), "'v' is not a text"),
            (rule("ENUM", names("selectedList", "a", "b"), name="k"), "has no category 'b'"),
            (rule("ENUM", names("selectedList"), name="v"), "'v' is not a category"),
            (rule("NUMERIC", COMPARE, support="Grid"), "different supports"),
        ]:
            with self.assertRaisesRegex(kelvane.KelvaneError, fault):
                survey.select(self.filter([category, bad], "R1"))


if __name__ == "__main__":
    unittest.main()
