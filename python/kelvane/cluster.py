"""Columns of a dataset as arrays of Dask, for a study that one machine does not hold.

    from kelvane import Project, cluster

    project = Project("/shared/study")
    columns = cluster.LazyColumns(project.dataset("blocks"))
    selected = columns.select(project.filter("rich ore"))   # a lazy array of truth values
    print(int(selected.sum().compute()))

Opening a dataset reads where its columns are; what a task carries is that place and the ranks of
its partition, never values. The worker that runs it reads the partition from the memento file,
which each worker must see under the same path.
"""

from __future__ import annotations

import threading
from collections import OrderedDict
from collections.abc import Mapping
from dataclasses import replace
from functools import partial
from typing import Any, Callable, Iterator, Optional

import dask.array as da
import numpy as np
from dask.base import tokenize

from .columns import STORED_TYPES, Labelled, Texts
from .dataset import Dataset, Variable, read_mask
from .expression import Expression
from .filters import SampleFilter
from .packed import FrameStream, Packed

PARTITION = 4_000_000  # samples: 32 MB of reals


class LazyColumns(Mapping[str, Any]):
    """The variables of a dataset by their full names, as `Dataset` has them, but lazily.

    Integers and dates are reals here, as only their values say whether one is undefined.
    """

    def __init__(self, dataset: Dataset, partition: int = PARTITION) -> None:
        """`partition` is the number of samples that a task takes, the last one of fewer."""
        if partition < 1:
            raise ValueError("A partition has one sample at least.")
        self.dataset = dataset
        count = dataset.sample_count
        full, rest = divmod(count, partition)
        self._sizes = (partition,) * full + ((rest,) if rest or not full else ())

    def __getitem__(self, name: str) -> Any:
        variable = self.dataset.variable(name)
        if variable.type == "TEXT":
            return LazyTexts(self._array(variable, np.dtype(object)))
        stored = STORED_TYPES[variable.type]
        is_byte = stored.itemsize == 1
        is_label = variable.type in ("CATEGORY", "COLOR")
        values = self._array(variable, stored if is_byte or is_label else np.dtype(float))
        return variable.wrap(values)

    def __iter__(self) -> Iterator[str]:
        return iter(self.dataset)

    def __len__(self) -> int:
        return len(self.dataset)

    def __contains__(self, name: object) -> bool:
        return name in self.dataset

    __eq__ = object.__eq__
    __hash__ = object.__hash__

    @property
    def mask(self) -> da.Array:
        """One truth value a sample: the user has masked it."""
        read = partial(read_mask, self.dataset.packed_mask, self.dataset.sample_count)
        return self._from_parts("mask", self.dataset.packed_mask, read, np.dtype(bool))

    def every_sample(self) -> da.Array:
        """What a filter without rules selects."""
        return da.ones(self.dataset.sample_count, dtype=bool, chunks=(self._sizes,))

    def evaluate(self, expression: str, mapping: str = "data") -> da.Array:
        """One truth value a sample: it passes the expression."""
        return Expression(expression, mapping).evaluate(self)

    def select(self, sample_filter: SampleFilter) -> da.Array:
        """One truth value a sample: it passes the filter, which must apply to the dataset."""
        sample_filter.check(self.dataset)
        return self.evaluate(sample_filter.expression())

    def _array(self, variable: Variable, dtype: np.dtype) -> da.Array:
        read = partial(_read_part, replace(variable, labels={}))  # no task needs the labels
        return self._from_parts(variable.full_name, variable.packed, read, dtype)

    def _from_parts(self, title: str, packed: Optional[Packed],
                    read: Callable[[int, int], Any], dtype: np.dtype) -> da.Array:
        # Parts of one place have one name, so that a variable of two rules is read once.
        name = f"{title}-{tokenize(self.dataset.path, repr(packed), self._sizes)}"
        ends = np.cumsum(self._sizes).tolist()
        graph = {(name, i): (read, end - size, end)
                 for i, (size, end) in enumerate(zip(self._sizes, ends))}
        return da.Array(graph, name, (self._sizes,), dtype=dtype)


class LazyTexts(Labelled):
    """`Texts` in partitions."""

    def __init__(self, parts: da.Array) -> None:
        """An array whose blocks are `Texts`."""
        self._parts = parts

    def __len__(self) -> int:
        return len(self._parts)

    def __eq__(self, text: object) -> Any:
        return self._map(Texts.__eq__, bool, text) if isinstance(text, str) else NotImplemented

    def __ne__(self, text: object) -> Any:
        return self._map(Texts.__ne__, bool, text) if isinstance(text, str) else NotImplemented

    def is_undefined(self) -> da.Array:
        return self._map(Texts.is_undefined, bool)

    def find(self, part: str) -> da.Array:
        return self._map(Texts.find, np.int64, part)

    def _map(self, function: Callable[..., np.ndarray], dtype: type, *arguments: Any) -> da.Array:
        return self._parts.map_blocks(function, *arguments, dtype=dtype,
                                      meta=np.empty(0, dtype))


class _Streams:
    """Frames that stand where their last partition ended. A frame has one begin: going on from
    there spares the next partition from unpacking once more what lies before it."""

    def __init__(self, limit: int) -> None:
        self._limit = limit
        self._kept: OrderedDict[Packed, FrameStream] = OrderedDict()
        self._lock = threading.Lock()

    def take(self, packed: Packed, position: int) -> FrameStream:
        with self._lock:
            stream = self._kept.pop(packed, None)
        if stream is not None and stream.position <= position:
            return stream
        if stream is not None:
            stream.close()
        return packed.open()

    def keep(self, packed: Packed, stream: FrameStream) -> None:
        if stream.position == stream.size:
            stream.close()
            return
        with self._lock:
            left_over = [self._kept.pop(packed, None)]
            self._kept[packed] = stream
            if len(self._kept) > self._limit:
                left_over.append(self._kept.popitem(last=False)[1])
        for other in left_over:
            if other is not None:
                other.close()


_streams = _Streams(16)


def _read_part(variable: Variable, begin: int, end: int) -> Any:
    """On a worker: the values of some ranks of a variable."""
    if variable.type == "TEXT":  # the lengths stand before the texts
        with variable.packed.open() as stream:
            return variable.read_part(stream, begin, end)
    stream = _streams.take(variable.packed, begin * STORED_TYPES[variable.type].itemsize)
    try:
        values = variable.read_part(stream, begin, end, integers_as_reals=True)
    except BaseException:
        stream.close()
        raise
    _streams.keep(variable.packed, stream)
    return values
