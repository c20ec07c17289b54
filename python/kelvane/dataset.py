"""Projects and their datasets, in their memento files (docs/formats/dataset-memento.md)."""

from __future__ import annotations

import os
import re
from collections.abc import Mapping
from dataclasses import dataclass, field
from typing import Any, Iterator, Optional

import numpy as np

from .columns import STORED_TYPES, UNDEFINED_CODE, UNIT, Categories, Colors, Column, Texts
from .columns import numbers_of
from .errors import KelvaneError
from .expression import Expression
from .filters import SampleFilter, full_name
from .memento import Memento, Span, find_memento, named_mementos
from .packed import FrameStream, Packed

_SUPPORTS = {"LuMemoryDatasetPoint": "Points", "LuMemoryDatasetGrid": "Grid"}
_MAX_SAMPLES = 2**31 - 1


@dataclass(frozen=True)
class Variable:
    """A column of a dataset, and where its values are."""

    name: str
    index: str
    component: str
    type: str  # REAL, REAL_32, INTEGER, TEXT, CATEGORY, COLOR, ALPHA_CHANNEL, SELECTION, DATE
    role: str
    unit: str
    count: int
    packed: Packed = field(repr=False)
    labels: Mapping[int, str] = field(repr=False)  # of a category, by code

    @property
    def full_name(self) -> str:
        """How expressions name it: "Zn[3].mean"."""
        return full_name(self.name, self.index, self.component)

    def read(self) -> Column:
        """All values, from the file."""
        with self.packed.open() as stream:
            return self.wrap(self.read_part(stream, 0, self.count))

    def wrap(self, values: Any) -> Column:
        """The item of an expression that these values are."""
        if self.type == "CATEGORY":
            return Categories(values, self.labels)
        return Colors(values) if self.type == "COLOR" else values

    def read_part(self, stream: FrameStream, begin: int, end: int,
                  integers_as_reals: bool = False) -> Any:
        """The values of the ranks from `begin` to before `end`; a stream goes forward only."""
        stored = STORED_TYPES[self.type]
        if self.type == "TEXT":
            return self._read_texts(stream, begin, end)
        stream.require_size(self.count * stored.itemsize)
        stream.skip_to(begin * stored.itemsize)
        return numbers_of(self.type, stream.read(stored, end - begin), integers_as_reals)

    def _read_texts(self, stream: FrameStream, begin: int, end: int) -> Texts:
        stored = STORED_TYPES[self.type]
        lengths_size = self.count * stored.itemsize
        if stream.size < lengths_size:
            stream.require_size(lengths_size)
        before = 0  # units of the texts before the part
        kept = []
        block = 1 << 20
        total = 0
        for at in range(0, self.count, block):
            lengths = stream.read(stored, min(block, self.count - at))
            units = np.cumsum(np.maximum(lengths, 0), dtype=np.int64)
            total += int(units[-1])
            low, high = (min(max(rank - at, 0), len(lengths)) for rank in (begin, end))
            before += int(units[low - 1]) if low > 0 else 0
            kept.append(lengths[low:high])
        stream.require_size(lengths_size + total * UNIT.itemsize)
        lengths = np.concatenate(kept or [np.empty(0, stored)])
        stream.skip_to(lengths_size + before * UNIT.itemsize)
        return Texts(lengths, stream.read(UNIT, int(np.maximum(lengths, 0).sum(dtype=np.int64))))


class Dataset(Mapping[str, Column]):
    """The samples of a dataset: a mapping of the full names of its variables to columns.

    Opening it reads no values. A column is read when it is first asked for, and kept; `release`
    lets go of all. Numbers are float64 with NaN for undefined values, integers and dates int64 when
    none is undefined, dates are milliseconds since 1970-01-01 UTC, selections and opacities uint8;
    for the others see `Texts`, `Categories` and `Colors`.
    """

    def __init__(self, path: str) -> None:
        """The memento file of a dataset; see also `Project.dataset`."""
        self.path = path
        memento = Memento.read(path, "Dataset")
        self.name = _text(memento.fields, "name")
        self.type = _text(memento.fields, "type")
        if self.type not in _SUPPORTS:
            raise KelvaneError(f"{path}: the type '{self.type}' of the dataset is not known.")
        self.support = _SUPPORTS[self.type]  # what the rules of filters name
        table = memento.fields.get("table")
        if not isinstance(table, dict):
            raise KelvaneError(f"{path}: there is no table.")
        self.sample_count = _sample_count(table, path)
        self.variables: dict[str, Variable] = {}
        entries = table.get("variables")
        for entry in entries if isinstance(entries, list) else []:
            self._add_variable(memento, entry)
        self.packed_mask = _packed(memento, table, "mask", "the mask")
        self._columns: dict[str, Column] = {}

    def _add_variable(self, memento: Memento, entry: Any) -> None:
        entry = entry if isinstance(entry, dict) else {}
        name = full_name(*(_text(entry, key) for key in ("name", "index", "component")))
        title = f"the variable '{name}'"
        if not _text(entry, "name") or name in self.variables:
            raise KelvaneError(f"{self.path}: {title}: its name is empty or taken.")
        kind = _text(entry, "type")
        if kind not in STORED_TYPES:
            raise KelvaneError(f"{self.path}: {title}: its type '{kind}' is not known.")
        packed = _packed(memento, entry, "values", title)
        if packed is None:
            raise KelvaneError(f"{self.path}: {title}: it has no values.")
        self.variables[name] = Variable(
            name=_text(entry, "name"), index=_text(entry, "index"),
            component=_text(entry, "component"), type=kind, role=_text(entry, "role"),
            unit=_text(entry, "unit"), count=self.sample_count, packed=packed,
            labels=_labels(entry, f"{self.path}: {title}") if kind == "CATEGORY" else {})

    def __getitem__(self, name: str) -> Column:
        if name not in self._columns:
            self._columns[name] = self.variable(name).read()
        return self._columns[name]

    def __iter__(self) -> Iterator[str]:
        return iter(self.variables)

    def __len__(self) -> int:
        return len(self.variables)

    def __contains__(self, name: object) -> bool:
        return name in self.variables

    # Two datasets are the same when they are one object; to compare their values would read all.
    __eq__ = object.__eq__
    __hash__ = object.__hash__

    def __repr__(self) -> str:
        return f"<Dataset '{self.name}': {self.sample_count} samples, {len(self)} variables>"

    def variable(self, name: str) -> Variable:
        if name not in self.variables:
            raise KelvaneError(f"{self.path}: there is no variable '{name}'.")
        return self.variables[name]

    def release(self) -> None:
        """Forgets the columns that were read."""
        self._columns.clear()

    @property
    def mask(self) -> np.ndarray:
        """One truth value a sample: the user has masked it."""
        return read_mask(self.packed_mask, self.sample_count, 0, self.sample_count)

    def every_sample(self) -> np.ndarray:
        """What a filter without rules selects."""
        return np.ones(self.sample_count, bool)

    def evaluate(self, expression: str, mapping: str = "data") -> np.ndarray:
        """One truth value a sample: it passes the expression. See `kelvane.Expression`."""
        return Expression(expression, mapping).evaluate(self)

    def select(self, sample_filter: SampleFilter) -> np.ndarray:
        """One truth value a sample: it passes the filter, which must apply to this dataset."""
        sample_filter.check(self)
        return self.evaluate(sample_filter.expression())


class Project:
    """A project directory. Nothing is kept of it: the application may write to it meanwhile."""

    def __init__(self, directory: str) -> None:
        self.directory = os.fspath(directory)
        if not os.path.isdir(self.directory):
            raise KelvaneError(f"{self.directory}: there is no such directory.")

    def dataset_names(self) -> list[str]:
        return [name for name, _ in named_mementos(self.directory, "Dataset")]

    def dataset(self, name: str) -> Dataset:
        return Dataset(find_memento(self.directory, "Dataset", name, "dataset"))

    def filter_names(self) -> list[str]:
        return [name for name, _ in named_mementos(self.directory, "SampleFilter")]

    def filter(self, name: str) -> SampleFilter:
        return SampleFilter.read(
            find_memento(self.directory, "SampleFilter", name, "sample filter"))


def read_mask(packed: Optional[Packed], count: int, begin: int, end: int) -> np.ndarray:
    """The mask of the ranks from `begin` to before `end`: a bit for each, the first one lowest.
    Without bits nothing is masked."""
    if packed is None:
        return np.zeros(end - begin, bool)
    with packed.open() as stream:
        stream.require_size((count + 7) // 8)
        first = begin // 8
        stream.skip_to(first)
        bits = stream.read(np.dtype("u1"), (end + 7) // 8 - first)
    flags = np.unpackbits(bits, bitorder="little")
    return flags[begin - 8 * first:end - 8 * first].astype(bool)


def _text(fields: dict[str, Any], key: str) -> str:
    value = fields.get(key, "")
    return value if isinstance(value, str) else ""


def _sample_count(table: dict[str, Any], path: str) -> int:
    text = _text(table, "sampleCount")
    if not re.fullmatch("[0-9]{1,10}", text) or int(text) > _MAX_SAMPLES:
        raise KelvaneError(f"{path}: the number of samples '{text[:40]}' is not valid.")
    return int(text)


def _packed(memento: Memento, fields: dict[str, Any], key: str, title: str) -> Optional[Packed]:
    span = fields.get(key)
    if not isinstance(span, Span):
        return None
    return Packed(memento.path, memento.stamp, span, title)


def _labels(entry: dict[str, Any], place: str) -> dict[int, str]:
    catalog = entry.get("catalog")
    categories = catalog.get("categories") if isinstance(catalog, dict) else None
    labels: dict[int, str] = {}
    for category in categories if isinstance(categories, list) else []:
        category = category if isinstance(category, dict) else {}
        label, code = _text(category, "label"), _text(category, "code")
        is_code = re.fullmatch("[0-9]{1,5}", code) and int(code) < UNDEFINED_CODE
        if not is_code or int(code) in labels:
            raise KelvaneError(f"{place}: its category '{label}' is not valid.")
        labels[int(code)] = label
    if len(set(labels.values())) < len(labels):
        raise KelvaneError(f"{place}: two of its categories have the same label.")
    return labels
