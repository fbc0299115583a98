#!/usr/bin/env python3
"""Holds the include lines against the table of floors: check_includes.py SOURCE_ROOT

Five rules: a room includes only the rooms that tests/house/floors.txt allows; no files include each other in a circle (a header
and its source count as one); tools and examples include installed headers only; in oska/ a third-party header is included only
where THIRD_PARTY allows it; our own headers are named in quotes and by their path from the root.
"""
import pathlib
import re
import sys

from installed_headers import installed_headers

ROOT = pathlib.Path(sys.argv[1])
TOP_FOLDERS = ("oska", "adapters", "tools", "examples")
INCLUDE = re.compile(r'^\s*#\s*include\s*(["<])([^">]+)[">]', re.M)

# In oska/ these files alone may include a library's header.
THIRD_PARTY = {
    "simdjson.h": {"oska/json/json_index.cpp"},
    "uriparser/Uri.h": {"oska/url/url_join.cpp", "oska/url/url_syntax.cpp"},
    "idn2.h": {"oska/url/url_encoding.cpp"},
    "utf8proc.h": {
        "oska/text/text.cpp",
        "oska/text/text_case.cpp",
        "oska/text/text_composition.cpp",
        "oska/text/text_scalars.cpp",
        "oska/url/url_encoding.cpp",
    },
}


def floors():
    table = {}
    for line in (ROOT / "tests/house/floors.txt").read_text().splitlines():
        if line.strip() and not line.startswith("#"):
            room, _, allowed = line.partition(":")
            table[room.strip()] = set(allowed.split())
    return table


def room_of(path, table):
    folder = path
    while folder and folder not in table:
        folder = folder.rpartition("/")[0]
    return folder


def sources():
    for top in TOP_FOLDERS:
        for path in sorted((ROOT / top).rglob("*")):
            if path.suffix in (".h", ".cpp"):
                yield path.relative_to(ROOT).as_posix(), path.read_text()


def arrow_faults(files, table, installed):
    for path, includes in files.items():
        room = room_of(path, table)
        if not room:
            yield f"{path}: its folder is not in tests/house/floors.txt"
            continue
        for other in includes:
            target = room_of(other, table)
            is_kit = other.startswith(("oska/", "adapters/"))
            if target == room or target in table[room]:
                continue
            if is_kit and "kit" in table[room]:
                if other not in installed:
                    yield f"{path}: a host includes {other}, which is not installed"
                continue
            yield f"{path}: {room} may not include {other}"


def circle_faults(files):
    graph = {}
    for path, includes in files.items():
        stem = path.rpartition(".")[0]
        graph.setdefault(stem, set()).update(i.rpartition(".")[0] for i in includes)
    for targets in graph.values():
        targets &= graph.keys()
    state = {}

    def visit(node, trail):
        state[node] = "open"
        for target in sorted(graph[node] - {node}):
            if state.get(target) == "open":
                yield "a circle: " + " -> ".join(trail[trail.index(target):] + [target])
            elif target not in state:
                yield from visit(target, trail + [target])
        state[node] = "done"

    for node in sorted(graph):
        if node not in state:
            yield from visit(node, [node])


def third_party_faults(path, text):
    for kind, name in INCLUDE.findall(text):
        if path.startswith("oska/") and kind == "<" and "." in name and path not in THIRD_PARTY.get(name, ()):
            yield f"{path}: only {sorted(THIRD_PARTY.get(name, ['no file']))} may include <{name}>"


def spelling_faults(path, text):
    for kind, name in INCLUDE.findall(text):
        if (kind == '"') != (name.partition("/")[0] in TOP_FOLDERS):
            yield f"{path}: {name}: our own headers, and no others, stand in quotes, by their path from the root"


def main():
    sys.setrecursionlimit(10000)
    table, installed, files, faults = floors(), set(installed_headers(ROOT)), {}, []
    for path, text in sources():
        files[path] = [name for _, name in INCLUDE.findall(text) if name.partition("/")[0] in TOP_FOLDERS]
        faults += third_party_faults(path, text)
        faults += spelling_faults(path, text)
    faults += arrow_faults(files, table, installed)
    faults += circle_faults(files)
    print("\n".join(faults) or f"{len(files)} files keep to the floors")
    return 1 if faults else 0


sys.exit(main())
