#!/usr/bin/env python3
"""Checks that every public operation is documented in the fixed form and names the requests that it sends.

    check_docs.py [ROOT]    ROOT: the source tree to check, by default the one that holds this script

Prints a line for each fault and fails if there is one. The requests and who sends them come from docs/wire.md, the error
codes from api/sorvaneusb_types.h. A comment is a sentence, then entries in the order of LABELS.
"""
import pathlib
import re
import sys

LABELS = ["Sent", "Arguments", "Result", "Errors", "On failure", "Models"]
EXCHANGE = "the exchange's own"
ANY_REQUEST = "PerformUSBIO"

# Opening a board sends what these send.
OPENING = ["Download8051Software", "CheckEEPROM"]
OPENS = {"init": OPENING, "InitPort": OPENING, "InitUSBBoard": OPENING + ["InitUSBBoard"]}


class Operation:
    def __init__(self, line, declaration, comment):
        self.line = line
        self.declaration = declaration
        self.name = re.search(r"(operator=|~?\w+)\(", declaration).group(1)
        parameters = declaration[declaration.index("(") + 1 : declaration.rindex(")")]
        self.parameters = re.findall(r"(\w+)(?=,|$)", parameters)
        self.has_pointer = "*" in parameters
        self.comment = " ".join(comment)
        self.sentence = comment[0] if comment else ""
        self.entries = {}
        label = None
        for text in comment:
            entry = re.match(r"- ([A-Z][a-z ]+): (.*)", text)
            if entry:
                label = entry.group(1)
                self.entries[label] = entry.group(2)
            elif label:
                self.entries[label] += " " + text.strip()


def operations(header):
    """Every public declaration with parentheses, with the /// lines that stand directly above it."""
    comment, declaration, public = [], "", True
    header = re.sub(r"^template .*\n.*\n\{\n(?:.*\n)*?\}", lambda body: "\n" * body[0].count("\n"), header, flags=re.M)
    for number, line in enumerate(header.splitlines(), 1):
        code = line.strip()
        if code in ("public:", "private:", "};"):
            public = code != "private:"
        if code.startswith("///"):
            comment.append(line.split("///", 1)[1][1:].rstrip())
        elif code and not code.startswith(("//", "#", "{", "}")) and not code.endswith(":"):
            declaration += " " + code
            if code.endswith(";"):
                if public and "(" in declaration:
                    yield Operation(number, declaration.strip(), comment)
                comment, declaration = [], ""
        elif not declaration:
            comment = []


def requests_named(text, sent_texts):
    """The requests of a Sent entry, with those of the operations that it refers to by "as `Name`"."""
    named = set(re.findall(r"request (\d+ on pipe \d(?: or \d)?)", text))
    for name in re.findall(r"as `(\w+)`", text):
        named |= requests_named(sent_texts.get(name, ""), sent_texts)
    return named


def senders(page):
    """For each operation the requests that it sends: "75 on pipe 1"."""
    sent = {}
    section = r"^### (\d+) on pipe (\d)(?: or \d)?: (\w+)\n\n[^.]*\.(?: Also sent by ([^.]*)\.)?$"
    for code, pipe, name, others in re.findall(section, page, re.MULTILINE):
        for sender in [name] + others.split(", "):
            sent.setdefault(sender, set()).add(f"{code} on pipe {'3 or 4' if pipe in '34' else pipe}")
    sent.pop("", None)
    sent.update({name: set().union(*(sent.get(other, set()) for other in others)) for name, others in OPENS.items()})
    return sent


def faults_of(operation, sent_by, codes, sent_texts):
    if not operation.sentence or operation.sentence.startswith("- "):
        yield "no doc comment that begins with a sentence"
        return
    labels = list(operation.entries)
    if labels != [label for label in LABELS if label in labels]:
        yield f"entries {labels} are unknown or not in the order {LABELS}"
    for parameter in operation.parameters:
        if f"`{parameter}`" not in operation.comment:
            yield f"says nothing of `{parameter}`"

    sent = operation.entries.get("Sent", "")
    expected = sent_by.get(operation.name, set())
    named = requests_named(sent, sent_texts)
    if not sent:
        yield "no Sent entry"
    elif named != expected:
        yield f"Sent names the requests {sorted(named)}, docs/wire.md has {sorted(expected)}"
    elif not expected and not sent.startswith("nothing"):
        yield "sends no request of docs/wire.md, but Sent does not begin with nothing"
    elif expected and not re.search(r"no payload|\bbytes?\b|as `", sent):
        yield "Sent gives no payload"

    exchanges = bool(expected) or operation.name == ANY_REQUEST
    causes = operation.entries.get("Errors", "").rstrip(".").split("; ")
    if (exchanges or operation.has_pointer) and causes == [""]:
        yield "no Errors entry"
        return
    if exchanges != causes[-1].startswith(EXCHANGE):
        yield f"Errors ends with '{causes[-1]}'; {EXCHANGE} stands last if, and only if, something is sent"
    numbers = [re.match(r"(\d+) \S", cause) for cause in causes]
    for cause, number in zip(causes, numbers):
        if number and int(number.group(1)) not in codes:
            yield f"Errors has the unknown code {number.group(1)}"
        if not number and cause and not cause.startswith((EXCHANGE, "those of ", "no code ")):
            yield f"Errors has '{cause}', which does not begin with a code"
    if operation.has_pointer and not any(number and number.group(1) == "30" for number in numbers):
        yield "takes a pointer, but Errors does not say 30"
    if operation.has_pointer and "On failure" not in operation.entries:
        yield "takes a pointer, but does not say what it holds On failure"


def main():
    root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).resolve().parent.parent)
    header = root / "api/sorvaneusb.h"
    sent_by = senders((root / "docs/wire.md").read_text())
    requests = set().union(*sent_by.values())
    types = (root / "api/sorvaneusb_types.h").read_text()
    codes = {int(code) for code in re.findall(r"usbError\w+ = (\d+)", types)}
    found = list(operations(header.read_text()))
    sent_texts = {operation.name: operation.entries.get("Sent", "") for operation in found}

    faults = [f"{header}:{operation.line}: {operation.name}: {fault}"
              for operation in found for fault in faults_of(operation, sent_by, codes, sent_texts)]
    documented = {request for text in sent_texts.values() for request in requests_named(text, sent_texts)}
    faults += [f"{header}: no operation names request {request}" for request in sorted(requests - documented)]
    if not requests or not codes or not found:
        faults.append(f"{root}: no requests, no error codes or no operations found")
    print("\n".join(faults) or f"{len(found)} operations and {len(requests)} requests: documented")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
