"""Memento files: the frame of everything that a project keeps (docs/formats/memento-xml.md).

The packed values of columns stay in the file. Reading a memento only finds where they stand, so
that a dataset of gigabytes is opened without the memory for them, and another machine can read a
column when it knows the place.
"""

from __future__ import annotations

import os
import re
import warnings
from dataclasses import dataclass
from typing import Any, BinaryIO, Iterator, NamedTuple, Optional
from xml.parsers import expat

from .errors import KelvaneError, KelvaneWarning

# What the library itself refuses.
MAX_FILE_SIZE = 2047 * 1024 * 1024
MAX_DEPTH = 1000
MAX_ELEMENTS = 10_000_000

_BLOCK = 1 << 20
_PACKED_KEYS = frozenset({"values", "mask", "cells"})
_UUID = r"[0-9a-fA-F]{8}(?:-[0-9a-fA-F]{4}){3}-[0-9a-fA-F]{12}"


class Stamp(NamedTuple):
    """Tells a file from the one that took its place."""

    size: int
    time: int  # nanoseconds

    @staticmethod
    def of(file: BinaryIO) -> Stamp:
        status = os.fstat(file.fileno())
        return Stamp(status.st_size, status.st_mtime_ns)


class Span(NamedTuple):
    """Where a packed text stands: bytes of its file, the end left out."""

    begin: int
    end: int


@dataclass(frozen=True)
class Memento:
    """A memento as nested dictionaries and lists of texts, with a Span for each packed text."""

    path: str
    stamp: Stamp
    fields: dict[str, Any]

    @staticmethod
    def read(path: str, relation: str) -> Memento:
        """The file of a memento of that relation ("Dataset"), with all fields."""
        reader = _Reader(path, relation)
        stamp = reader.run()
        if reader.fields is None:
            raise KelvaneError(f"{path}: there are no fields.")
        return Memento(path, stamp, reader.fields)


def peek_name(path: str, relation: str) -> str:
    """The field `name`, without reading what comes after it."""
    reader = _Reader(path, relation, stop_at_name=True)
    try:
        reader.run()
    except _Stopped:
        pass
    name = (reader.fields or {}).get("name")
    if not isinstance(name, str) or not name:
        raise KelvaneError(f"{path}: there is no name.")
    return name


def memento_paths(directory: str, relation: str) -> list[str]:
    """The memento files of that relation, by name."""
    pattern = re.compile(f"{relation.lower()}_{_UUID}\\.xml")
    try:
        names = sorted(os.listdir(directory))
    except OSError as error:
        raise KelvaneError(f"{directory}: {error.strerror}.") from error
    paths = [os.path.join(directory, name) for name in names if pattern.fullmatch(name)]
    return [path for path in paths if os.path.isfile(path)]  # no pipe, which would never end


def named_mementos(directory: str, relation: str) -> Iterator[tuple[str, str]]:
    """Name and path of each memento. A damaged file is warned of: it must not shut the way to the
    others."""
    for path in memento_paths(directory, relation):
        try:
            yield peek_name(path, relation), path
        except KelvaneError as error:
            warnings.warn(str(error), KelvaneWarning, stacklevel=3)


def find_memento(directory: str, relation: str, name: str, kind: str) -> str:
    """The path of the only memento of that name; an error lists the names there are."""
    known = list(named_mementos(directory, relation))
    paths = [path for other, path in known if other == name]
    if len(paths) == 1:
        return paths[0]
    if paths:
        raise KelvaneError(f"{directory}: more than one {kind} has the name '{name}'.")
    names = ", ".join(f"'{other}'" for other, _ in known) or "none"
    raise KelvaneError(f"{directory}: there is no {kind} '{name}'. There are: {names}.")


class _Stopped(Exception):
    pass


@dataclass
class _Open:
    """An element whose end has not come."""

    tag: str
    value: Any  # a dictionary, a list, a Span, or the parts of a text
    item_tag: str = ""  # of a list: the tag of its items
    is_text: bool = False


class _Reader:
    """One pass of expat over a file. White space between elements is passed over."""

    _ITEM_TAGS = {"QVariantList": "QVariant", "QStringList": "QString"}

    def __init__(self, path: str, relation: str, stop_at_name: bool = False) -> None:
        self.fields: Optional[dict[str, Any]] = None
        self._path = path
        self._relation = relation
        self._stop_at_name = stop_at_name
        self._depth = 0
        self._elements = 0
        self._open: list[_Open] = []
        self._parser = parser = expat.ParserCreate("UTF-8")
        parser.StartElementHandler = self._start
        parser.EndElementHandler = self._end
        parser.CharacterDataHandler = self._text
        parser.StartDoctypeDeclHandler = self._doctype

    def run(self) -> Stamp:
        """Reads the file; answers which one it was."""
        try:
            with open(self._path, "rb") as file:
                stamp = Stamp.of(file)
                if stamp.size > MAX_FILE_SIZE:
                    raise self._fault("it is larger than a memento can be.")
                while block := file.read(_BLOCK):
                    self._parser.Parse(block, False)
                self._parser.Parse(b"", True)
                return stamp
        except OSError as error:
            raise KelvaneError(f"{self._path}: {error.strerror}.") from error
        except expat.ExpatError as error:
            fault = expat.errors.messages[error.code]
            raise KelvaneError(f"{self._path}: line {error.lineno}, column {error.offset + 1}: "
                               f"{fault}.") from error
        finally:  # the handlers are methods: a circle
            for handler in ("StartElement", "EndElement", "CharacterData", "StartDoctypeDecl"):
                setattr(self._parser, handler + "Handler", None)

    def _fault(self, text: str) -> KelvaneError:
        return KelvaneError(f"{self._path}: line {self._parser.CurrentLineNumber}: {text}")

    def _doctype(self, *_: Any) -> None:
        raise self._fault("a document type declaration does not belong here.")

    def _start(self, tag: str, attributes: dict[str, str]) -> None:
        self._depth += 1
        self._elements += 1
        if self._depth > MAX_DEPTH:
            raise self._fault(f"elements are nested deeper than {MAX_DEPTH}.")
        if self._elements > MAX_ELEMENTS:
            raise self._fault(f"there are more than {MAX_ELEMENTS} elements.")
        if self._depth == 1 and tag != self._relation:
            raise self._fault(f"the root element is '{tag}', not '{self._relation}'.")
        if self._open:
            self._start_field(tag, attributes.get("type"))
        elif self._depth == 2 and tag == "fields" and self.fields is None:
            self.fields = {}
            self._open.append(_Open(tag, self.fields))

    def _start_field(self, tag: str, kind: Optional[str]) -> None:
        parent = self._open[-1]
        if parent.is_text or isinstance(parent.value, Span):
            raise self._fault(f"the text '{parent.tag}' holds an element.")
        if kind in self._ITEM_TAGS:
            self._open.append(_Open(tag, [], self._ITEM_TAGS[kind]))
        elif kind is not None:
            self._open.append(_Open(tag, {}))  # of types that nobody asks for, too
        elif tag in _PACKED_KEYS:
            self._open.append(_Open(tag, Span(0, 0)))
            self._parser.CharacterDataHandler = self._packed
        else:
            self._open.append(_Open(tag, [], is_text=True))

    def _packed(self, _: str) -> None:
        # The place is enough; the rest of the text passes without being looked at.
        self._open[-1].value = Span(self._parser.CurrentByteIndex, 0)
        self._parser.CharacterDataHandler = None

    def _text(self, text: str) -> None:
        if self._open and self._open[-1].is_text:
            self._open[-1].value.append(text)

    def _end(self, tag: str) -> None:
        self._depth -= 1
        if not self._open:
            return
        element = self._open.pop()
        value = element.value
        if element.is_text:
            value = "".join(value)
        elif isinstance(value, Span):
            self._parser.CharacterDataHandler = self._text
            if value.begin > 0:
                value = Span(value.begin, self._parser.CurrentByteIndex)
        if self._open:
            self._keep(tag, value)

    def _keep(self, tag: str, value: Any) -> None:
        parent = self._open[-1]
        if isinstance(parent.value, dict):
            parent.value[tag] = value
        elif parent.item_tag == tag:
            parent.value.append(value)
        if self._stop_at_name and len(self._open) == 1 and tag == "name":
            raise _Stopped
