#!/usr/bin/env python3
"""Checks that the folders stand on each other in one direction and that no two files include each other in a circle.

    check_includes.py [ROOT]    ROOT: the source tree to check, by default the one that holds this script

Prints a line for each fault and fails if there is one. A header and the source of the same name count as one file.
"""
import os
import pathlib
import re
import sys

# From the ground up: what the files of a folder, and of folders in it without a row, may include besides each other.
# It is a folder that stands above it here, or one file of such a folder.
MAY_INCLUDE = {
    "firmware": [],
    "shared": [],
    "board": ["firmware", "shared"],
    "api": ["board", "shared"],
    "inspect": ["shared"],
    "protocol": [],
    "journal": ["protocol"],
    # The virtual boards share no code with the library, so that they cannot agree with a mistake of it.
    "sim/core": [],
    "sim/peripherals": ["sim/core"],
    "sim/board": ["sim/core", "sim/peripherals", "journal", "board/requests.h"],
    "sim/driver": ["sim/core", "sim/board"],
    "sim/system": [],
    "sim/inprocess": ["sim/core", "sim/board", "sim/driver"],
    "sim/nodes": ["sim/core", "sim/board", "sim/driver", "sim/system"],
    "sim/cabinet": ["sim/core", "sim/peripherals", "journal"],
    "sim/journal": ["journal", "sim/core", "sim/board", "sim/cabinet"],
    "sim/language": ["protocol", "journal", "sim/core", "sim/peripherals", "sim/board", "sim/system", "sim/cabinet", "sim/journal",
                     "board/requests.h"],
    "sim/control": ["journal", "sim/core", "sim/board", "sim/system", "sim/nodes", "sim/cabinet", "sim/journal",
                    "sim/language"],
    "sim/command": ["journal", "sim/core", "sim/board", "sim/system", "sim/inprocess", "sim/nodes", "sim/cabinet",
                    "sim/journal", "sim/language", "sim/control"],
    "tools/trace": ["protocol", "journal", "sim/system"],
    "tools": ["api/sorvaneusb.h", "firmware", "inspect", "protocol", "journal", "sim/core", "sim/cabinet",
              "sim/system", "tools/trace"],
    "examples": ["api/sorvaneusb.h"],
}

# Whoever measures and tests the rest includes what it looks at.
FREE = ["bench", "tests"]

# Records, enumerations and constants of the interface: every folder may include them.
VOCABULARY = "api/sorvaneusb_types.h"

SOURCES = {".c", ".cpp", ".h", ".S"}


def sources(root):
    """Every source file by its name from the root; hidden folders and builds are left out."""
    for folder, folders, names in os.walk(root):
        folders[:] = [name for name in folders if not name.startswith(".") and name != "build"
                      and not (pathlib.Path(folder) / name / "CMakeCache.txt").exists()]
        for path in (pathlib.Path(folder) / name for name in names):
            if path.suffix in SOURCES:
                yield path.relative_to(root).as_posix()


def room_of(name):
    """The row that a file belongs to: the one of the innermost folder that has one."""
    rows = [row for row in [*MAY_INCLUDE, *FREE] if name.startswith(row + "/")]
    return max(rows, key=len, default=None)


def stem_of(name):
    return os.path.splitext(name)[0]


def includes(root, name, known):
    """The line number, the text and the file of every include that is meant for a file of the tree."""
    for number, line in enumerate((root / name).read_text().splitlines(), 1):
        include = re.match(r'\s*#\s*include\s*([<"])([^>"]+)', line)
        if not include:
            continue
        quoted, text = include[1] == '"', include[2]
        places = [text, os.path.join(os.path.dirname(name), text)] if quoted else []
        found = next((place for place in [*places, "api/" + text] if place in known), None)
        if found or quoted:
            yield number, text, found


def fault_of(name, text, included):
    """What is wrong with one include, or None."""
    if not included:
        return f'"{text}" is no file of the tree'
    room, other = room_of(name), room_of(included)
    if room in FREE or other == room or included == VOCABULARY:
        return None
    if other in MAY_INCLUDE[room] or included in MAY_INCLUDE[room]:
        return None
    return f"{room} may not include {included}"


def circles(graph):
    """Every circle that a walk through the files closes, as the list of its files."""
    done, path = set(), []

    def walk(stem):
        if stem in path:
            yield path[path.index(stem):]
        elif stem not in done:
            path.append(stem)
            for other in sorted(graph.get(stem, ())):
                yield from walk(other)
            done.add(path.pop())

    for stem in sorted(graph):
        yield from walk(stem)


def faults_of_table():
    """The table itself stands on the ground: a row names only what is above it, so folders cannot form a circle."""
    above = []
    for row, allowed in MAY_INCLUDE.items():
        for entry in allowed:
            if entry not in above and room_of(entry) not in above:
                yield f"{row} may include {entry}, which does not stand above it in the table"
        above.append(row)


def faults_of_tree(root, known):
    graph = {}
    for name in sorted(known):
        if not room_of(name):
            yield f"{name}: its folder is not in the table of {pathlib.Path(__file__).name}"
            continue
        for number, text, included in includes(root, name, known):
            fault = fault_of(name, text, included)
            if fault:
                yield f"{name}:{number}: {fault}"
            elif stem_of(included) != stem_of(name):
                graph.setdefault(stem_of(name), set()).add(stem_of(included))
    for circle in circles(graph):
        yield "a circle: " + " -> ".join([*circle, circle[0]])


def main():
    root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).resolve().parent.parent)
    known = set(sources(root))
    faults = [*faults_of_table(), *faults_of_tree(root, known)]
    if not known:
        faults.append(f"{root}: no sources found")
    print("\n".join(faults) or f"{len(known)} files include downwards and in no circle")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
