"""Columns as expressions take them.

Numbers are plain arrays. Texts, categories and colours are items of their own, whose comparisons
give one truth value a sample; what an undefined value passes is said in
docs/formats/sample-filter.md. Categories and colours hold an array of NumPy or of Dask alike.
"""

from __future__ import annotations

from typing import Any, Callable, Mapping, Optional, Union

import numpy as np

from .errors import ExpressionError

UNDEFINED_REAL = 1e300
UNDEFINED_INTEGER = np.iinfo(np.int64).min
UNDEFINED_CODE = 0xFFFF
UNDEFINED_COLOR = 0

# How the values of each type stand in a file; texts begin with their lengths.
STORED_TYPES: Mapping[str, np.dtype] = {
    "REAL": np.dtype("<f8"),
    "REAL_32": np.dtype("<f4"),
    "INTEGER": np.dtype("<i8"),
    "DATE": np.dtype("<i8"),
    "CATEGORY": np.dtype("<u2"),
    "COLOR": np.dtype("<u4"),
    "ALPHA_CHANNEL": np.dtype("u1"),
    "SELECTION": np.dtype("u1"),
    "TEXT": np.dtype("<i4"),
}
UNIT = np.dtype("<u2")  # of UTF-16


def numbers_of(kind: str, stored: np.ndarray, integers_as_reals: bool = False) -> np.ndarray:
    """Stored values as the numbers of an expression: NaN for what is undefined. Reals of single
    precision are widened, for NumPy would round the number that they are compared with."""
    if kind == "REAL":
        stored[stored == UNDEFINED_REAL] = np.nan
    elif kind == "REAL_32":
        return stored.astype(np.float64)
    elif kind in ("INTEGER", "DATE"):
        undefined = stored == UNDEFINED_INTEGER
        if integers_as_reals or undefined.any():
            reals = stored.astype(np.float64)
            reals[undefined] = np.nan
            return reals
    return stored


class Labelled:
    """A column that `np.isnan` takes, and that is compared with texts if with anything."""

    __hash__ = None  # type: ignore[assignment]

    def is_undefined(self) -> Any:
        raise NotImplementedError

    def __array_ufunc__(self, ufunc: np.ufunc, method: str, *inputs: Any, **options: Any) -> Any:
        if ufunc is np.isnan and method == "__call__" and not options:
            return self.is_undefined()
        return NotImplemented


def _by_block(function: Callable[[np.ndarray], np.ndarray], values: Any, dtype: type) -> Any:
    """A function of an array, applied to one of NumPy or to each block of one of Dask."""
    if isinstance(values, np.ndarray):
        return function(values)
    return values.map_blocks(function, dtype=dtype)


class Categories(Labelled):
    """Codes with their labels. Comparing with a label compares integers, however long the labels
    are; a code without a label is neither equal nor unequal to any."""

    def __init__(self, codes: Any, labels: Mapping[int, str]) -> None:
        """`codes` is an array of uint16; `labels` has unique texts."""
        self.codes = codes
        self.labels = dict(labels)
        self._code_of = {label: code for code, label in self.labels.items()}

    def __len__(self) -> int:
        return len(self.codes)

    def __getitem__(self, rank: int) -> Optional[str]:
        return self.labels.get(int(self.codes[rank]))

    def to_list(self) -> list[Optional[str]]:
        return [self.labels.get(code) for code in self.codes.tolist()]

    def __eq__(self, label: object) -> Any:
        if not isinstance(label, str):
            return NotImplemented
        # No category has the undefined code, so it stands for a label that is not there.
        code = self._code_of.get(label)
        if code is None:
            return _by_block(lambda codes: np.zeros(len(codes), bool), self.codes, bool)
        return self.codes == np.uint16(code)

    def __ne__(self, label: object) -> Any:
        if not isinstance(label, str):
            return NotImplemented
        passes = np.zeros(UNDEFINED_CODE + 1, bool)
        passes[[code for code, other in self.labels.items() if other != label]] = True
        return _by_block(lambda codes: passes[codes], self.codes, bool)

    def is_undefined(self) -> Any:
        return self.codes == np.uint16(UNDEFINED_CODE)


class Colors(Labelled):
    """Colours as 0xFFRRGGBB."""

    def __init__(self, values: Any) -> None:
        self.values = values

    def __len__(self) -> int:
        return len(self.values)

    def is_undefined(self) -> Any:
        return self.values == np.uint32(UNDEFINED_COLOR)


def _units(text: str) -> np.ndarray:
    return np.frombuffer(text.encode("utf-16-le", "surrogatepass"), UNIT)


class Texts(Labelled):
    """Texts as the UTF-16 units of all of them, one behind the other, and their lengths: compared
    and searched unit by unit, without an object a sample."""

    def __init__(self, lengths: np.ndarray, units: np.ndarray) -> None:
        """A negative length is an undefined text; the other lengths add up to that of `units`."""
        self._lengths = lengths
        self._units = units
        self._ends = np.cumsum(np.maximum(lengths, 0), dtype=np.int64)

    @staticmethod
    def of(texts: list[Optional[str]]) -> Texts:
        parts = [None if text is None else _units(text) for text in texts]
        lengths = [-1 if part is None else len(part) for part in parts]
        units = [part for part in parts if part is not None]
        return Texts(np.array(lengths, np.int32), np.concatenate(units or [_units("")]))

    @property
    def shape(self) -> tuple[int]:
        return (len(self._lengths),)

    def __len__(self) -> int:
        return len(self._lengths)

    def __getitem__(self, rank: int) -> Optional[str]:
        length = int(self._lengths[rank])
        end = int(self._ends[rank])
        if length < 0:
            return None
        return self._units[end - length:end].tobytes().decode("utf-16-le", "surrogatepass")

    def to_list(self) -> list[Optional[str]]:
        return [self[rank] for rank in range(len(self))]

    def __eq__(self, text: object) -> Any:
        if not isinstance(text, str):
            return NotImplemented
        units = _units(text)
        ranks = np.flatnonzero(self._lengths == len(units))
        begins = self._ends[ranks] - len(units)
        ranks = ranks[self._holds(units, begins)]
        result = np.zeros(len(self), bool)
        result[ranks] = True
        return result

    def __ne__(self, text: object) -> Any:
        if not isinstance(text, str):
            return NotImplemented
        return ~(self == text) & ~self.is_undefined()

    def is_undefined(self) -> np.ndarray:
        return self._lengths < 0

    def find(self, part: str) -> np.ndarray:
        """For each text the position of the part in UTF-16 units, -1 where there is none."""
        units = _units(part)
        if len(units) == 0:
            return np.where(self.is_undefined(), -1, 0)
        begins = self._begins_of(units)
        ranks = np.searchsorted(self._ends, begins, side="right")
        is_inside = begins + len(units) <= self._ends[ranks]
        begins, ranks = begins[is_inside], ranks[is_inside]
        is_first = np.diff(ranks, prepend=-1) > 0
        begins, ranks = begins[is_first], ranks[is_first]
        result = np.full(len(self), -1, np.int64)
        result[ranks] = begins - (self._ends[ranks] - self._lengths[ranks])
        return result

    def _begins_of(self, units: np.ndarray) -> np.ndarray:
        """All places where the units stand, be it across the end of a text."""
        count = max(0, len(self._units) - len(units) + 1)
        dense = min(len(units), 4)  # of every place; then only few places are left
        matches = np.ones(count, bool)
        for i in range(dense):
            matches &= self._units[i:i + count] == units[i]
        begins = np.flatnonzero(matches)
        return begins[self._holds(units[dense:], begins + dense)]

    def _holds(self, units: np.ndarray, begins: np.ndarray) -> np.ndarray:
        """The ranks of those places where the units stand."""
        ranks = np.arange(len(begins))
        for i, unit in enumerate(units):
            if len(ranks) == 0:
                break
            ranks = ranks[self._units[begins[ranks] + i] == unit]
        return ranks


Column = Union[np.ndarray, Texts, Categories, Colors]


def qm_find(texts: Any, part: str) -> Any:
    """For each text the position of a part, -1 where it is absent or the text is undefined."""
    if not isinstance(part, str) or not hasattr(texts, "find"):
        raise ExpressionError("qm_find searches the texts of a variable for a text.")
    return texts.find(part)
