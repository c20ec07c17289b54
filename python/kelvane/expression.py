"""Expressions that the library writes of sample filters, parsed and evaluated.

An expression is no program: it is parsed, and whatever is not one of these forms is refused before
anything is evaluated. `data` stands for the name of the mapping.

    condition:   comparison, np.isnan(variable), ~ condition, condition & condition,
                 condition | condition, ( condition )
    comparison:  one of < <= > >= == != between a variable, or qm_find(variable, text), and a
                 constant
    variable:    data['full name']
    constant:    a text, a number, - number, np.inf, np.nan
"""

from __future__ import annotations

import ast
import math
import operator
from typing import Any, Callable, Mapping, Union

import numpy as np

from .columns import Colors, Labelled, qm_find
from .errors import ExpressionError

_Number = Union[int, float]
_Step = Callable[[Mapping[str, Any]], Any]

_COMPARISONS: dict[type, Callable[[Any, Any], Any]] = {
    ast.Lt: operator.lt,
    ast.LtE: operator.le,
    ast.Gt: operator.gt,
    ast.GtE: operator.ge,
    ast.Eq: operator.eq,
    ast.NotEq: operator.ne,
}
_COMBINATIONS: dict[type, Callable[[Any, Any], Any]] = {
    ast.BitAnd: operator.and_,
    ast.BitOr: operator.or_,
}
_NUMBERS = {"inf": math.inf, "nan": math.nan}
_TOO_DEEP = "it is nested too deeply"


class Expression:
    """An expression, ready to be evaluated on any mapping of names to columns."""

    def __init__(self, text: str, mapping: str = "data") -> None:
        """`mapping` is the name that the expression gives to the mapping of variables. An
        `ExpressionError` says what is not part of our expressions. An empty text is the expression
        of a filter without rules, which selects every sample."""
        self.text = text
        self.mapping = mapping
        self.variables: dict[str, None] = {}  # the names in their order
        self._evaluate: _Step = _every_sample
        if text.strip():
            try:
                tree = ast.parse(text.strip(), mode="eval")
                self._evaluate = self._condition(tree.body)
            except SyntaxError as error:
                raise ExpressionError(f"The expression cannot be read: {error.msg}.") from error
            except (RecursionError, MemoryError) as error:
                raise ExpressionError(f"The expression cannot be read: {_TOO_DEEP}.") from error
            except ExpressionError:
                raise
            except ValueError as error:  # characters that cannot be part of a source text
                raise ExpressionError(f"The expression cannot be read: {error}.") from error

    def evaluate(self, columns: Mapping[str, Any]) -> Any:
        """One truth value a sample: an array of NumPy, or of Dask where the columns are Dask's."""
        for name in self.variables:
            if name not in columns:
                raise ExpressionError(f"There is no variable '{name}'.")
        try:
            return self._evaluate(columns)
        except RecursionError as error:
            raise ExpressionError(f"The expression cannot be evaluated: {_TOO_DEEP}.") from error

    def _refuse(self, node: ast.AST) -> ExpressionError:
        part = ast.get_source_segment(self.text.strip(), node) or type(node).__name__
        part = part if len(part) <= 60 else part[:57] + "..."
        return ExpressionError(f"'{part}' is not part of the expression of a sample filter.")

    # Each form becomes a function of the columns.

    def _condition(self, node: ast.expr) -> _Step:
        if isinstance(node, ast.BinOp):
            return self._chain(node)
        if isinstance(node, ast.UnaryOp) and isinstance(node.op, ast.Invert):
            operand = self._condition(node.operand)
            return lambda columns: ~operand(columns)
        if isinstance(node, ast.Compare) and len(node.ops) == 1:
            return self._comparison(node)
        if isinstance(node, ast.Call) and self._is_numpy(node.func, "isnan"):
            (argument,) = self._arguments(node, 1)
            variable = self._variable(argument)
            return lambda columns: np.isnan(variable(columns))
        raise self._refuse(node)

    def _chain(self, node: ast.expr) -> _Step:
        # To the left without recursion: a rule on categories has a term for each of its names.
        terms = []
        while isinstance(node, ast.BinOp):
            combine = _COMBINATIONS.get(type(node.op))
            if combine is None:
                raise self._refuse(node)
            terms.append((combine, self._condition(node.right)))
            node = node.left
        first = self._condition(node)
        terms.reverse()

        def evaluate(columns: Mapping[str, Any]) -> Any:
            result = first(columns)
            for combine, term in terms:
                result = combine(result, term(columns))
            return result

        return evaluate

    def _comparison(self, node: ast.Compare) -> _Step:
        if type(node.ops[0]) not in _COMPARISONS:
            raise self._refuse(node)
        compare = _COMPARISONS[type(node.ops[0])]
        left, right = self._constant(node.left), self._constant(node.comparators[0])
        if (left is None) == (right is None):
            raise self._refuse(node)
        if left is None:
            column = self._column(node.left)
            return lambda columns: compare(_comparable(column(columns), right, compare), right)
        column = self._column(node.comparators[0])
        return lambda columns: compare(left, _comparable(column(columns), left, compare))

    def _column(self, node: ast.expr) -> _Step:
        if not isinstance(node, ast.Call):
            return self._variable(node)
        if not (isinstance(node.func, ast.Name) and node.func.id == "qm_find"):
            raise self._refuse(node)
        texts, part = self._arguments(node, 2)
        variable, value = self._variable(texts), self._constant(part)
        if isinstance(value, str):
            text = value
            return lambda columns: qm_find(variable(columns), text)
        raise self._refuse(node)

    def _variable(self, node: ast.expr) -> _Step:
        if not (isinstance(node, ast.Subscript) and isinstance(node.value, ast.Name)
                and node.value.id == self.mapping and isinstance(node.slice, ast.Constant)
                and isinstance(node.slice.value, str)):
            raise self._refuse(node)
        name = _joined(node.slice.value)
        self.variables[name] = None
        return lambda columns: columns[name]

    def _constant(self, node: ast.expr) -> Union[str, _Number, None]:
        if isinstance(node, ast.UnaryOp) and isinstance(node.op, ast.USub):
            value = self._constant(node.operand)
            if isinstance(value, (int, float)):
                return -value
            raise self._refuse(node)
        for name, number in _NUMBERS.items():
            if self._is_numpy(node, name):
                return number
        if not isinstance(node, ast.Constant):
            return None
        if isinstance(node.value, str):
            return _joined(node.value)
        if type(node.value) not in (int, float):
            raise self._refuse(node)
        # An integer beyond those of NumPy would make an array of objects.
        is_small = isinstance(node.value, int) and node.value < 2**63
        return node.value if is_small else _real(node.value)

    def _arguments(self, node: ast.Call, count: int) -> list[ast.expr]:
        if len(node.args) != count or node.keywords:
            raise self._refuse(node)
        return node.args

    @staticmethod
    def _is_numpy(node: ast.expr, name: str) -> bool:
        return (isinstance(node, ast.Attribute) and node.attr == name
                and isinstance(node.value, ast.Name) and node.value.id == "np")


def evaluate(expression: str, columns: Mapping[str, Any], mapping: str = "data") -> Any:
    """Evaluates an expression on a mapping of names to columns: one truth value a sample."""
    return Expression(expression, mapping).evaluate(columns)


def _every_sample(columns: Mapping[str, Any]) -> Any:
    every = getattr(columns, "every_sample", None)
    if every is None:
        raise ExpressionError("An empty expression selects every sample, but only a dataset says "
                              "how many there are.")
    return every()


def _joined(text: str) -> str:
    """A character beyond U+FFFF, if it is spelled as two escapes, as one."""
    return text.encode("utf-16-le", "surrogatepass").decode("utf-16-le", "surrogatepass")


def _real(value: _Number) -> float:
    try:
        return float(value)
    except OverflowError:
        return math.inf


def _comparable(column: Any, value: Any, compare: Callable[[Any, Any], Any]) -> Any:
    """The column, if such a comparison has a meaning."""
    if isinstance(value, str):
        if not isinstance(column, Labelled) or isinstance(column, Colors):
            raise ExpressionError(f"A variable that holds no texts is compared with '{value}'.")
        if compare not in (operator.eq, operator.ne):
            raise ExpressionError(f"Only == and != compare with a text, as with '{value}'.")
    elif isinstance(column, Labelled):
        raise ExpressionError(f"A variable that holds no numbers is compared with {value}.")
    return column
