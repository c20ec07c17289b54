#!/usr/bin/env python3
"""Checks every #include of the libraries and the tool against docs/layers.txt.

    scripts/check-layers.py              checks the repository this script stands in
    scripts/check-layers.py --root DIR   checks another tree
    scripts/check-layers.py --units      prints which unit each file belongs to
    scripts/check-layers.py --self-test  checks the checker on small trees with one fault each

Every fault is one line, FILE:LINE: what is wrong. What it finds: includes that go up (between
libraries or between units), files that belong to no unit, files that include each other in a
circle, and public headers that pull in a third-party library.
"""

import argparse
import fnmatch
import pathlib
import re
import sys
import tempfile

INCLUDE = re.compile(r'^\s*#\s*include\s*([<"])([^>"]+)[>"]')
SOURCES = (".h", ".cpp")
# A public header may show our own libraries, Qt, and the standard library, whose names have no
# extension; everything else stays behind a d-pointer.
PUBLIC_INCLUDE = re.compile(r"^(basic|geos|util)/|^Qt[A-Z]\w*/|^[a-z_0-9]+$|^(std|c?math|string)\w*\.h$")


class LayersError(Exception):
    """docs/layers.txt itself is wrong."""


class Layers:
    """What docs/layers.txt says: the order of libraries and, within each, of units."""

    def __init__(self, text):
        self.libraries = {}  # name -> libraries it may include, itself among them
        self.units = {}  # library -> {unit: (patterns, units it may include)}
        section = None
        for number, line in self._logical_lines(text):
            heading = re.fullmatch(r"\[(\w+)\]", line.strip())
            if heading:
                section = heading[1]
                if section != "libraries":
                    self.units[section] = {}
                continue
            self._add(section, number, line)

    @staticmethod
    def _logical_lines(text):
        """Lines without comments; an indented line continues the one before."""
        lines = []
        for number, line in enumerate(text.splitlines(), 1):
            line = line.split("#")[0].rstrip()
            if not line:
                continue
            if line[0].isspace() and lines:
                lines[-1][1] += " " + line.strip()
            else:
                lines.append([number, line])
        return lines

    def _add(self, section, number, line):
        left, bar, right = line.partition("|")
        if not bar or section is None:
            raise LayersError(f"docs/layers.txt:{number}: expected 'name | what it may include'")
        name, _, patterns = (part.strip() for part in left.partition(":"))
        known = self.libraries if section == "libraries" else self.units[section]
        if name in known:
            raise LayersError(f"docs/layers.txt:{number}: '{name}' stands twice")
        allowed = {name}
        for other in right.split():
            if other not in known:
                raise LayersError(f"docs/layers.txt:{number}: '{other}' does not stand above '{name}'")
            allowed |= known[other] if section == "libraries" else known[other][1]
        if section == "libraries":
            self.libraries[name] = allowed
        else:
            self.units[section][name] = (patterns.split(), allowed)

    def unit_of(self, library, module_and_class):
        for unit, (patterns, _) in self.units[library].items():
            if any(fnmatch.fnmatchcase(module_and_class, pattern) for pattern in patterns):
                return unit
        return None

    def allows(self, library, unit, other):
        return other in self.units[library][unit][1]


class Tree:
    """The source files below a root, and what they include."""

    def __init__(self, root, layers):
        self.root = pathlib.Path(root)
        self.layers = layers
        self.faults = []

    def files(self):
        for library in self.layers.libraries:
            for path in sorted((self.root / library).rglob("*")):
                if path.suffix in SOURCES and path.is_file():
                    yield library, path

    @staticmethod
    def parts(library, path):
        """(is public, is test, module/Class) of a path relative to its library's folder."""
        parts = path.with_suffix("").parts
        is_public = parts[:2] == ("include", library)
        is_test = parts[0] == "tests"
        return is_public, is_test, "/".join(parts[2:] if is_public else parts)

    def includes(self, path):
        """(line, target) of each include; target is a path from the root when it is one of ours."""
        text = path.read_text(encoding="utf-8", errors="replace")
        for number, line in enumerate(text.splitlines(), 1):
            found = INCLUDE.match(line)
            if not found:
                continue
            target = found[2]
            first = target.split("/")[0]
            if found[1] == '"' and (path.parent / target).is_file():
                resolved = (path.parent / target).resolve().relative_to(self.root.resolve())
                yield number, target, resolved
            elif first in self.layers.libraries and "/" in target:
                private = (self.root / target).is_file()
                yield number, target, pathlib.Path(target) if private else pathlib.Path(
                    first, "include", target)
            else:
                yield number, target, None

    def fault(self, path, number, text):
        self.faults.append(f"{path.relative_to(self.root)}:{number}: {text}")

    def check(self):
        graph = {}
        for library, path in self.files():
            edges = graph.setdefault(path.relative_to(self.root), [])
            is_public, is_test, name = self.parts(library, path.relative_to(self.root / library))
            unit = None
            if library in self.layers.units and not is_test and name != "pch":
                unit = self.layers.unit_of(library, name)
                if unit is None:
                    self.fault(path, 1, f"'{name}' belongs to no unit of {library} in docs/layers.txt")
            for number, target, resolved in self.includes(path):
                if is_public and resolved is None and not PUBLIC_INCLUDE.match(target):
                    self.fault(path, number, f"a public header includes third-party <{target}>")
                if resolved is not None:
                    edges.append((number, resolved))
                    self._check_edge(library, unit, path, number, resolved)
        self._check_circles(graph)
        return self.faults

    def _check_edge(self, library, unit, path, number, resolved):
        other_library = resolved.parts[0]
        if other_library not in self.layers.libraries[library]:
            self.fault(path, number, f"library {library} must not include {other_library} ({resolved})")
            return
        if unit is None or other_library != library:
            return
        other_name = self.parts(library, resolved.relative_to(library))[2]
        other = self.layers.unit_of(library, other_name)
        if other is not None and not self.layers.allows(library, unit, other):
            self.fault(path, number, f"unit {unit} must not include unit {other} ({other_name})")

    def _check_circles(self, graph):
        """Depth first, without recursion: an include of a file that is still open closes a circle."""
        state = {}
        for start in graph:
            stack = [(start, iter(graph[start]))] if start not in state else []
            while stack:
                node, edges = stack[-1]
                state[node] = "open"
                for number, target in edges:
                    if state.get(target) == "open":
                        self.faults.append(f"{node}:{number}: {target} includes this file again")
                    elif target in graph and target not in state:
                        stack.append((target, iter(graph[target])))
                        break
                else:
                    state[node] = "done"
                    stack.pop()


SELF_TEST_LAYERS = """
[libraries]
basic |
util | basic
apps | util
[basic]
base : base/* |
[util]
low  : low/Kl* |       # a comment
mid  : mid/KmA*
       mid/KmB* | low
high : mid/* | mid
"""

# name, {file: text}, what each fault must say
SELF_TEST_CASES = [
    ("downhill, by two ways round, is clean",
     {"basic/include/basic/base/B.h": "#include <QtCore/QString>\n#include <vector>\n",
      "util/include/util/low/KlX.h": "#include <basic/base/B.h>\n",
      "util/mid/KmC.cpp": "#include <util/low/KlX.h>\n#include <zstd.h>\n",
      "util/tests/mid/AnyTest.cpp": "#include <util/mid/KmC.h>\n",
      "apps/tool/main.cpp": "#include <util/low/KlX.h>\n"}, []),
    ("library uphill", {"basic/base/B.cpp": "\n#include <util/low/KlX.h>\n"},
     ["basic/base/B.cpp:2: library basic must not include util"]),
    ("tests obey the libraries' order", {"basic/tests/base/BTest.cpp": "#include <util/low/KlX.h>\n"},
     ["library basic must not include util"]),
    ("unit uphill", {"util/low/KlX.cpp": "#include <util/mid/KmA.h>\n"},
     ["util/low/KlX.cpp:1: unit low must not include unit mid (mid/KmA)"]),
    ("unit uphill within a folder, by a quoted path",
     {"util/mid/KmA.cpp": '#include "KmZ.h"\n', "util/mid/KmZ.h": ""},
     ["unit mid must not include unit high (mid/KmZ)"]),
    ("unit uphill, to a private header", {"util/low/KlX.cpp": "#include <util/mid/KmZ.h>\n", "util/mid/KmZ.h": ""},
     ["unit low must not include unit high (mid/KmZ)"]),
    ("the first pattern that matches decides", {"util/mid/KmZ.cpp": "#include <util/mid/KmBb.h>\n"}, []),
    ("a file of no unit", {"util/low/Other.cpp": ""}, ["'low/Other' belongs to no unit of util"]),
    ("a circle of headers",
     {"util/include/util/low/KlX.h": "#include <util/low/KlY.h>\n",
      "util/include/util/low/KlY.h": "#include <util/low/KlX.h>\n"}, ["includes this file again"]),
    ("third party in a public header", {"util/include/util/low/KlX.h": "#include <zstd.h>\n"},
     ["a public header includes third-party <zstd.h>"]),
    ("a unit that names one further down", {"docs/layers.txt": "[util]\nlow : low/* | high\n"},
     ["'high' does not stand above 'low'"]),
]


def run(root):
    try:
        layers = Layers((pathlib.Path(root) / "docs/layers.txt").read_text(encoding="utf-8"))
        return Tree(root, layers).check()
    except LayersError as error:
        return [str(error)]


def self_test():
    failed = 0
    for name, files, expected in SELF_TEST_CASES:
        with tempfile.TemporaryDirectory() as root:
            for path, text in {"docs/layers.txt": SELF_TEST_LAYERS, **files}.items():
                target = pathlib.Path(root, path)
                target.parent.mkdir(parents=True, exist_ok=True)
                target.write_text(text, encoding="utf-8")
            faults = run(root)
        matches = len(faults) == len(expected) and all(e in f for e, f in zip(expected, faults))
        if not matches:
            failed += 1
            print(f"FAILED: {name}: expected {expected}, found {faults}")
    print(f"check-layers self-test: {len(SELF_TEST_CASES) - failed} passed, {failed} failed")
    return 1 if failed else 0


def print_units(root):
    layers = Layers((pathlib.Path(root) / "docs/layers.txt").read_text(encoding="utf-8"))
    for library, path in Tree(root, layers).files():
        if library in layers.units:
            relative = path.relative_to(pathlib.Path(root) / library)
            print(f"{layers.unit_of(library, Tree.parts(library, relative)[2]) or '-':20} {library}/{relative}")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--root", default=pathlib.Path(__file__).resolve().parent.parent)
    parser.add_argument("--units", action="store_true", help="print the unit of each file")
    parser.add_argument("--self-test", action="store_true")
    arguments = parser.parse_args()
    if arguments.self_test:
        return self_test()
    if arguments.units:
        return print_units(arguments.root)
    faults = run(arguments.root)
    for fault in faults:
        print(fault)
    print(f"check-layers: {len(faults)} faults" if faults else "check-layers: clean")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
