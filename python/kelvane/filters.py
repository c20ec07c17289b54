"""Sample filters that a project keeps (docs/formats/sample-filter.md), and their expressions."""

from __future__ import annotations

import math
import re
from collections.abc import Mapping
from dataclasses import dataclass
from typing import TYPE_CHECKING, Any, Callable, Optional

from .columns import UNDEFINED_REAL
from .errors import KelvaneError
from .memento import Memento

if TYPE_CHECKING:
    from .dataset import Dataset

MAX_WORDS = 10_000
MAX_DEPTH = 100  # of parentheses and "not" in a combination
MAX_TERMS = 500  # in a row of an expression

_MODES = ("IS_DEFINED", "COMPARE", "RANGE")
_SIGNS = {"LESS_THAN": "<", "LESS_OR_EQUAL_TO": "<=", "GREATER_THAN": ">",
          "GREATER_OR_EQUAL_TO": ">=", "EQUAL": "==", "NOT_EQUAL": "!="}
_BOUND_SIGNS = {"ITV_LESS_THAN": "<", "ITV_LESS_OR_EQUAL_TO": "<="}
_TEXTS = {"CONTAINS": "contains", "EQUAL_TO": "equalTo", "NOT_EQUAL_TO": "notEqualTo"}
_NUMBER_TYPES = ("REAL", "REAL_32", "INTEGER", "ALPHA_CHANNEL", "SELECTION", "DATE")


def full_name(name: str, index: str = "", component: str = "") -> str:
    """The name of a column: of a realization "Zn[3]", of a component "Zn.mean"."""
    return name + (f"[{index}]" if index else "") + (f".{component}" if component else "")


@dataclass(frozen=True)
class Rule:
    """A condition on the values of a variable."""

    support: str  # "Points" or "Grid"
    variable: str  # the full name
    type: str  # SELECTION, NUMERIC, ALPHA or ENUM
    fields: Mapping[str, Any]  # the keys of version 2, decoded

    def expression(self, mapping: str = "data") -> str:
        """The condition in Python, exact in numbers and with texts as literals."""
        return _EXPRESSIONS[self.type](self.fields, f"{mapping}[{self.variable!r}]")

    def find_fault(self, dataset: Dataset) -> Optional[str]:
        """Why the rule cannot be applied to a dataset, or nothing."""
        variable = dataset.variables.get(self.variable)
        if variable is None:
            return "is not in the dataset."
        if self.type == "NUMERIC" and self.fields["mode"] != "IS_DEFINED":
            if variable.type not in _NUMBER_TYPES:
                return "is not a number."
            if any(number == UNDEFINED_REAL or math.isnan(number)
                   for number in _numbers_in_use(self.fields)):
                return "is compared with an undefined number."
        kinds = {"SELECTION": ("SELECTION", "a selection"), "ALPHA": ("TEXT", "a text"),
                 "ENUM": ("CATEGORY", "a category")}
        kind, words = kinds.get(self.type, (variable.type, ""))
        if variable.type != kind:
            return f"is not {words}."
        if self.type == "ENUM":
            known = set(variable.labels.values())
            for label in self.fields["selectedList"]:
                if label not in known:
                    return f"has no category '{label}'."
        return None


@dataclass(frozen=True)
class SampleFilter:
    """Rules and how they are combined."""

    path: str
    name: str
    combination: str
    rules: tuple[Rule, ...]

    @staticmethod
    def read(path: str) -> SampleFilter:
        """The memento file of a filter. What cannot be read as it was meant is an error: a damaged
        filter would select other samples."""
        fields = _Fields(Memento.read(path, "SampleFilter").fields, path, "the sample filter")
        rules = tuple(_rule(fields, entry, number)
                      for number, entry in enumerate(fields.take("rules", list), 1))
        return SampleFilter(path, fields.take("name", str), fields.take("combination", str, ""),
                            rules)

    def expression(self, mapping: str = "data") -> str:
        """The filter as an expression for `kelvane.evaluate`; empty without rules."""
        parts = [rule.expression(mapping) for rule in self.rules]
        return _Combination(self, parts).expression if parts else ""

    def check(self, dataset: Dataset) -> None:
        """An error that names rule and variable unless the filter applies to the dataset."""
        if any(rule.support != dataset.support for rule in self.rules):
            raise KelvaneError(f"{self.path}: Cannot apply filters from different supports.")
        for number, rule in enumerate(self.rules, 1):
            fault = rule.find_fault(dataset)
            if fault is not None:
                raise KelvaneError(f"{self.path}: R{number}: the variable '{rule.variable}' "
                                   f"{fault}")


class _Fields:
    """Typed access to the fields of one map."""

    def __init__(self, fields: Mapping[str, Any], path: str, place: str) -> None:
        self._fields = fields
        self._path = path
        self._place = place

    def inner(self, fields: Mapping[str, Any], place: str) -> _Fields:
        return _Fields(fields, self._path, place)

    def fault(self, key: str) -> KelvaneError:
        return KelvaneError(f"{self._path}: {self._place}: the value of '{key}' is missing or not "
                            "valid.")

    def take(self, key: str, kind: type, default: Any = None) -> Any:
        value = self._fields.get(key, default)
        if kind is list and value == "":
            return []  # how an empty list is stored
        if not isinstance(value, kind):
            raise self.fault(key)
        return value

    def number(self, key: str, default: Any = None) -> float:
        text = self.take(key, str, default).strip()
        is_finite = re.fullmatch(r"[+-]?([0-9]+\.?[0-9]*|\.[0-9]+)([eE][+-]?[0-9]+)?", text)
        if not is_finite and text not in ("inf", "+inf", "-inf", "nan"):
            raise self.fault(key)
        number = float(text)
        if is_finite and math.isinf(number):
            raise self.fault(key)
        return number

    def texts(self, key: str, default: Any = None) -> list[str]:
        texts = self.take(key, list, default)
        if not all(isinstance(text, str) for text in texts):
            raise self.fault(key)
        return texts

    def choice(self, key: str, choices: Any, default: Any = None) -> str:
        value = self.take(key, str, default)
        if value not in choices:
            raise self.fault(key)
        return value


def _rule(filter_fields: _Fields, entry: Any, number: int) -> Rule:
    place = f"R{number}"
    fields = filter_fields.inner(entry if isinstance(entry, dict) else {}, place)
    kind = fields.choice("type", _READERS)
    version = fields.choice("version", ("1", "2"))
    name = full_name(fields.take("variable", str), fields.take("index", str, ""),
                     fields.take("component", str, ""))
    stored = filter_fields.inner(fields.take("rule", dict),
                                 f"{place}, on the variable '{name}'")
    read = _READERS[kind][int(version) - 1]
    return Rule(fields.take("support", str), name, kind, read(stored))


def _read_selection(fields: _Fields) -> dict[str, Any]:
    invert = fields.take("invert", str).lower()
    if invert not in ("true", "yes", "false", "no"):
        raise fields.fault("invert")
    return {"invert": invert in ("true", "yes")}


def _read_numeric(fields: _Fields) -> dict[str, Any]:
    return {
        "mode": fields.choice("mode", _MODES),
        "compareOperator": fields.choice("compareOperator", _SIGNS),
        "compareValue": fields.number("compareValue"),
        "compareTolerance": fields.number("compareTolerance"),
        "intervalLower": fields.number("intervalLower"),
        "intervalUpper": fields.number("intervalUpper"),
        # A missing operator excludes its bound.
        "intervalLowerOperator": fields.choice("intervalLowerOperator", _BOUND_SIGNS,
                                               "ITV_LESS_THAN"),
        "intervalUpperOperator": fields.choice("intervalUpperOperator", _BOUND_SIGNS,
                                               "ITV_LESS_THAN"),
    }


def _read_old_numeric(fields: _Fields) -> dict[str, Any]:
    mode = fields.take("mode", str)
    if not re.fullmatch("-?[0-9]{1,9}", mode):
        raise fields.fault("mode")
    sign, key = {1: ("GREATER_THAN", "greater_than"), 2: ("LESS_THAN", "less_than"),
                 3: ("EQUAL", "equal_to")}.get(int(mode), ("EQUAL", ""))
    is_range = int(mode) in (4, 5)
    return {
        "mode": "COMPARE" if key else "RANGE" if is_range else "IS_DEFINED",
        "compareOperator": sign,
        "compareValue": fields.number(key, "0") if key else 0.0,
        "compareTolerance": fields.number("tolerance", "0"),
        "intervalLower": fields.number("range_min", "0") if is_range else 0.0,
        "intervalUpper": fields.number("range_max", "0") if is_range else 0.0,
        "intervalLowerOperator": "ITV_LESS_OR_EQUAL_TO",
        "intervalUpperOperator": "ITV_LESS_OR_EQUAL_TO",
    }


def _read_alpha(fields: _Fields) -> dict[str, Any]:
    texts = {key: fields.take(key, str) for key in _TEXTS.values()}
    return {"mode": fields.choice("mode", _TEXTS), **texts}


def _read_old_alpha(fields: _Fields) -> dict[str, Any]:
    mode = fields.take("mode", str)
    mode = dict(zip("012", _TEXTS)).get(mode, mode)
    if mode not in _TEXTS:
        raise fields.fault("mode")
    return {"mode": mode, "contains": fields.take("contains", str, ""),
            "equalTo": fields.take("equal_to", str, ""),
            "notEqualTo": fields.take("not_equal_to", str, "")}


_READERS: dict[str, tuple[Callable[[_Fields], dict[str, Any]], ...]] = {
    "SELECTION": (_read_selection, _read_selection),
    "NUMERIC": (_read_old_numeric, _read_numeric),
    "ALPHA": (_read_old_alpha, _read_alpha),
    "ENUM": (lambda fields: {"selectedList": fields.texts("selected_list")},
             lambda fields: {"selectedList": fields.texts("selectedList")}),
}


def _numbers_in_use(fields: Mapping[str, Any]) -> list[float]:
    if fields["mode"] == "RANGE":
        return [fields["intervalLower"], fields["intervalUpper"]]
    has_tolerance = fields["compareOperator"] in ("EQUAL", "NOT_EQUAL")
    return [fields["compareValue"]] + has_tolerance * [fields["compareTolerance"]]


def _number(value: float) -> str:
    if math.isnan(value):
        return "np.nan"
    return repr(value).replace("inf", "np.inf")


def _numeric(fields: Mapping[str, Any], variable: str) -> str:
    if fields["mode"] == "IS_DEFINED":
        return f"~ np.isnan({variable})"
    if fields["mode"] == "RANGE":
        lower = _BOUND_SIGNS[fields["intervalLowerOperator"]]
        upper = _BOUND_SIGNS[fields["intervalUpperOperator"]]
        return (f"({_number(fields['intervalLower'])} {lower} {variable}) & "
                f"({variable} {upper} {_number(fields['intervalUpper'])})")
    value, tolerance = fields["compareValue"], fields["compareTolerance"]
    low, high = _number(value - tolerance), _number(value + tolerance)
    sign = _SIGNS[fields["compareOperator"]]
    if sign == "==":
        return f"({variable} >= {low}) & ({variable} <= {high})"
    if sign == "!=":
        return f"({variable} < {low}) | ({variable} > {high})"
    return f"{variable} {sign} {_number(value)}"


def _alpha(fields: Mapping[str, Any], variable: str) -> str:
    text = fields[_TEXTS[fields["mode"]]]
    if fields["mode"] == "CONTAINS":
        return f"qm_find({variable},{text!r}) >= 0"
    return f"{variable} {'==' if fields['mode'] == 'EQUAL_TO' else '!='} {text!r}"


def _chain(sign: str, terms: list[str]) -> str:
    """The terms in a row, of which Python reads some thousands at most: more of them in groups."""
    while len(terms) > MAX_TERMS:
        terms = [f"({sign.join(terms[i:i + MAX_TERMS])})" for i in range(0, len(terms), MAX_TERMS)]
    return sign.join(terms)


def _enum(fields: Mapping[str, Any], variable: str) -> str:
    names = fields["selectedList"]
    if not names:
        return f"({variable} == 'BogusString')"  # matches nothing
    return _chain(" | ", [f"({variable} == {name!r})" for name in names])


_EXPRESSIONS: dict[str, Callable[[Mapping[str, Any], str], str]] = {
    "SELECTION": lambda fields, variable: f"{variable} == {0 if fields['invert'] else 1}",
    "NUMERIC": _numeric,
    "ALPHA": _alpha,
    "ENUM": _enum,
}


class _Combination:
    """Parses a combination, and writes it with the expressions of the rules. Chains stay flat, as
    Python reads no more than 200 parentheses within each other."""

    def __init__(self, source: SampleFilter, parts: list[str]) -> None:
        self._path = source.path
        self._parts = parts
        text = source.combination
        if not text.strip():
            text = " and ".join(f"R{number}" for number in range(1, len(parts) + 1))
        self._words = [(match.group().lower(), match.start())
                       for match in re.finditer(r"\w+|[()]|[^\w\s()]+", text)]
        self._words.append(("", len(text)))  # the end
        self._at = 0
        self._depth = 0
        if len(self._words) > MAX_WORDS + 1:
            raise self._fault(f"there are more than {MAX_WORDS} words.")
        self.expression = self._disjunction()
        if self._word():
            raise self._fault("'and', 'or' or the end is expected.")

    def _word(self) -> str:
        return self._words[self._at][0]

    def _take(self, word: str) -> bool:
        is_here = self._word() == word
        self._at += is_here
        return is_here

    def _fault(self, text: str) -> KelvaneError:
        return KelvaneError(f"{self._path}: At character {self._words[self._at][1] + 1} of the "
                            f"combination: {text}")

    def _disjunction(self) -> str:
        terms = [self._conjunction()]
        while self._take("or"):
            terms.append(self._conjunction())
        return _chain(" | ", terms)

    def _conjunction(self) -> str:
        factors = [self._operand()]
        while self._take("and"):
            factors.append(self._operand())
        return _chain(" & ", factors)

    def _operand(self) -> str:
        if self._word() in ("not", "("):
            return self._nested()
        if not re.fullmatch("r[0-9]{1,9}", self._word()):
            raise self._fault("a rule, 'not' or '(' is expected.")
        number = int(self._word()[1:])
        if not 1 <= number <= len(self._parts):
            raise self._fault(f"there is no rule 'R{number}'.")
        self._at += 1
        return f"({self._parts[number - 1]})"

    def _nested(self) -> str:
        self._depth += 1
        if self._depth > MAX_DEPTH:
            raise self._fault(f"parentheses and 'not' are nested deeper than {MAX_DEPTH}.")
        if self._take("not"):
            result = f"~ {self._operand()}"
        else:
            self._at += 1
            result = f"({self._disjunction()})"
            if not self._take(")"):
                raise self._fault("')' is expected.")
        self._depth -= 1
        return result
