"""Writes memento files as the library does, and as it never would."""

import base64
import os
import tempfile
import unittest
from xml.sax.saxutils import escape

try:
    import numpy as np
    import zstandard
except ImportError as error:
    raise unittest.SkipTest(f"{error.name} is not installed")

NUMBER_TYPES = {"REAL": "<f8", "REAL_32": "<f4", "INTEGER": "<i8", "DATE": "<i8", "CATEGORY": "<u2",
                "COLOR": "<u4", "ALPHA_CHANNEL": "u1", "SELECTION": "u1"}


def pack(content, states_size=True):
    """A frame in base64; nothing for nothing."""
    if not content:
        return ""
    compressor = zstandard.ZstdCompressor(write_content_size=states_size)
    return base64.b64encode(compressor.compress(content)).decode()


def content_of(kind, values):
    if kind != "TEXT":
        return np.array(values, NUMBER_TYPES[kind]).tobytes()
    units = [None if text is None else text.encode("utf-16-le", "surrogatepass") for text in values]
    lengths = [-1 if part is None else len(part) // 2 for part in units]
    return np.array(lengths, "<i4").tobytes() + b"".join(part for part in units if part)


def variable(name, kind, values, packed=None, **fields):
    """The element of a variable; a text as `catalog` is taken as it is."""
    packed = pack(content_of(kind, values)) if packed is None else packed
    catalog = fields.pop("catalog", "")
    texts = "".join(f"<{key}>{escape(value)}</{key}>" for key, value in fields.items())
    return (f'<QVariant type="QMap">{catalog}{texts}<name>{escape(name)}</name><type>{kind}</type>'
            f"<values>{packed}</values></QVariant>")


def catalog(labels):
    entries = "".join(f'<QVariant type="QMap"><code>{code}</code><label>{escape(label)}</label>'
                      "</QVariant>" for code, label in labels)
    return ('<catalog type="QMap"><categories type="QVariantList">'
            f"{entries}</categories></catalog>")


def dataset(variables, count, extra="", kind="LuMemoryDatasetPoint"):
    return ('<?xml version="1.0" encoding="UTF-8"?>\n<Dataset><id>x</id><version>100</version>'
            '<fields type="QMap"><name>survey</name>'
            f'<table type="QMap">{extra}<sampleCount>{count}</sampleCount>'
            f'<variables type="QVariantList">{"".join(variables)}</variables></table>'
            f"<type>{kind}</type></fields></Dataset>\n")


class ProjectTest(unittest.TestCase):
    """Tests in a project directory of their own."""

    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.directory = scratch.name

    def write(self, text, relation="dataset", number=0):
        path = os.path.join(self.directory,
                            f"{relation}_00000000-0000-0000-0000-{number:012}.xml")
        with open(path, "wb") as file:
            file.write(text if isinstance(text, bytes) else text.encode())
        return path
