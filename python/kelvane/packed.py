"""Packed values: base64 of one zstd frame, in a memento file (docs/formats/dataset-memento.md)."""

from __future__ import annotations

import base64
import binascii
from dataclasses import dataclass
from typing import Any, BinaryIO, cast

import numpy as np
import zstandard

from .errors import KelvaneError
from .memento import Span, Stamp

_BLOCK = 1 << 18  # characters of base64, whole groups of four
_HEADER = 18  # bytes of the longest frame header
_ZSTD_BLOCK = 128 * 1024  # bytes that a block of a frame holds at most; it takes three at least


@dataclass(frozen=True)
class Packed:
    """The place of packed values, which any process that sees the file can read."""

    path: str
    stamp: Stamp
    span: Span
    title: str  # for messages: "the variable 'zinc'"

    def open(self) -> FrameStream:
        return FrameStream(self)

    def fault(self, text: str) -> KelvaneError:
        return KelvaneError(f"{self.path}: {self.title}: {text}")


class _Base64:
    """The decoded bytes of a span, as a file that zstandard reads from."""

    def __init__(self, packed: Packed, file: BinaryIO) -> None:
        self._packed = packed
        self._file = file
        self._left = packed.span.end - packed.span.begin
        self._ready = b""
        file.seek(packed.span.begin)

    def peek(self) -> bytes:
        self._fill()
        return self._ready

    def read(self, size: int = -1) -> bytes:
        self._fill()
        size = len(self._ready) if size < 0 else size
        part, self._ready = self._ready[:size], self._ready[size:]
        return part

    def _fill(self) -> None:
        if self._ready or self._left == 0:
            return
        block = self._file.read(min(_BLOCK, self._left))
        self._left -= len(block)
        try:
            self._ready = base64.b64decode(block, validate=True)
        except binascii.Error as error:
            raise self._packed.fault("its values are not valid base64.") from error
        if not block or (self._left > 0 and block.endswith(b"=")):
            raise self._packed.fault("its values are not valid base64.")


class FrameStream:
    """The content of a frame, read from its begin on. `size` is what the frame states."""

    def __init__(self, packed: Packed) -> None:
        self.position = 0
        self.size = 0
        self._packed = packed
        try:
            self._file = open(packed.path, "rb")
        except OSError as error:
            raise KelvaneError(f"{packed.path}: {error.strerror}.") from error
        try:
            self._open()
        except BaseException:
            self._file.close()
            raise

    def __enter__(self) -> FrameStream:
        return self

    def __exit__(self, *_: Any) -> None:
        self.close()

    def close(self) -> None:
        self._file.close()

    def _open(self) -> None:
        packed = self._packed
        if Stamp.of(self._file) != packed.stamp:
            raise KelvaneError(f"{packed.path}: the file has changed since it was opened.")
        source = _Base64(packed, self._file)
        if packed.span.end == packed.span.begin:
            self._reader = None
            return
        try:
            self.size = zstandard.frame_content_size(source.peek()[:_HEADER])
        except zstandard.ZstdError as error:
            raise packed.fault("its values are not compressed as expected.") from error
        if self.size < 0:
            raise packed.fault("its values are not compressed as expected.")
        frame_size = (packed.span.end - packed.span.begin) // 4 * 3
        if self.size // _ZSTD_BLOCK > frame_size // 3:  # no memory for what cannot be
            raise packed.fault("its compressed values are damaged.")
        decompressor = zstandard.ZstdDecompressor()
        self._reader = decompressor.stream_reader(
            cast(BinaryIO, source), read_across_frames=True)

    def require_size(self, size: int) -> None:
        if self.size != size:
            raise self._packed.fault(f"its values take {self.size} bytes instead of {size}.")

    def fault(self, text: str) -> KelvaneError:
        return self._packed.fault(text)

    def read(self, dtype: np.dtype, count: int) -> np.ndarray:
        """The next values. Whoever asks has compared their number with `size`."""
        values = np.empty(count, dtype)
        self._read_into(values.view(np.uint8).data)
        if self.position == self.size and self._read_some(memoryview(bytearray(1))) > 0:
            raise self._packed.fault("its compressed values are damaged.")
        return values

    def skip_to(self, position: int) -> None:
        scratch = memoryview(bytearray(min(_BLOCK, max(0, position - self.position))))
        while self.position < position:
            self._read_into(scratch[: position - self.position])

    def _read_into(self, target: memoryview) -> None:
        done = 0
        while done < len(target):
            count = self._read_some(target[done:])
            if count == 0:
                raise self._packed.fault("its compressed values are damaged.")
            done += count
        self.position += done

    def _read_some(self, target: memoryview) -> int:
        try:
            return 0 if self._reader is None else self._reader.readinto(target)
        except zstandard.ZstdError as error:
            raise self._packed.fault("its compressed values are damaged.") from error
