#!/usr/bin/env python3
"""Holds the tables of commands in docs/virtual_boards.md to what sorvane-sim understands.

    command_docs.py SORVANE_SIM [--write]

Fails where the page differs; with --write it brings the page in step. A table of the page begins with a line of
HEADS, its rows come from `sorvane-sim commands --json`.
"""
import json
import pathlib
import subprocess
import sys

PAGE = pathlib.Path(__file__).resolve().parents[1] / "docs/virtual_boards.md"
HEADS = {"| command | what happens |": "commands", "| condition | what holds |": "conditions"}


def rows(table):
    """A row for each form, as Markdown."""
    for row in table:
        options = "".join(f"; `{option['mark']}`: {option['help']}" for option in row["options"])
        usage = row["usage"].replace("|", "\\|")
        yield f"| `{usage}` | {row['help']}{options} |"


def in_step(page, tables):
    """The page's lines with the tables as they should be."""
    lines, skipping = [], False
    for line in page.splitlines():
        if skipping and line.startswith("|"):
            continue
        skipping = False
        lines.append(line)
        if line in HEADS:
            lines += ["|---|---|", *rows(tables[HEADS[line]])]
            skipping = True
    return "\n".join(lines) + "\n"


def main():
    words = [sys.argv[1], "commands", "--json"]
    tables = json.loads(subprocess.run(words, stdout=subprocess.PIPE, check=True).stdout)
    page = PAGE.read_text()
    wanted = in_step(page, tables)
    if "--write" in sys.argv[2:]:
        PAGE.write_text(wanted)
    elif page != wanted or any(head not in page for head in HEADS):
        print(f"{PAGE}: the commands are others now; run scripts/command_docs.py SORVANE_SIM --write")
        return 1
    return 0


if __name__ == "__main__":
    sys.exit(main())
