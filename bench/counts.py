"""The counted part: instructions, system calls, heap and stack of each operation, library and by hand."""
import collections
import json
import math
import os
import pathlib
import shutil
import subprocess

from callgrind import dumps, system_calls

PROJECT = pathlib.Path(__file__).resolve().parent.parent
BOARDS = {"R20": "1", "R35": "3"}  # one of each protocol

# The C library chooses its copying functions by the processor. Everywhere these are the plain ones.
PLAIN_COPIES = "glibc.cpu.hwcaps=" + ",".join(
    "-" + feature for feature in
    ("AVX512F", "AVX512VL", "AVX2", "AVX", "AVX_Fast_Unaligned_Load", "ERMS", "FSRM", "SSSE3", "Fast_Unaligned_Copy",
     "Fast_Copy_Backward", "Fast_Rep_String"))

# The most instructions over those by hand, in the 64-bit and the 32-bit build, on either protocol.
BUDGETS = {
    "GetInputs": (46, 66),
    "GetInputBit": (46, 66),
    "GetClock": (46, 66),
    "GetParallelHopperStatus": (46, 66),
    "SetConfig": (95, 112),
    "SetOutputBit": (70, 115),
    "Send, 60 bytes": (120, 175),
    "ReadEEPROM, 58 bytes": (130, 190),
    "ReadSRAM, 58 bytes": (105, 130),
    "WriteSRAM, 55 bytes": (105, 130),
    "open a ready board": (4500, 6500),
}
LARGEST_MEAN = 1.7  # of library over hand, over the operations with a budget

# What is above its budget for a reason that docs/performance.md gives: it may cost no more than it does.
ACCEPTED = {
    "GetInputBit": (55, 91),
    "GetClock": (0, 70),
    "GetParallelHopperStatus": (0, 73),
    "SetConfig": (0, 129),
    "SetOutputBit": (126, 171),
    "ReadEEPROM, 58 bytes": (152, 265),
    "ReadSRAM, 58 bytes": (123, 242),
    "WriteSRAM, 55 bytes": (126, 0),
}
ACCEPTED_MEAN = (2.12, 2.06)
OPENING = "open a ready board"

Side = collections.namedtuple("Side", "instructions copies calls heap stack")
Row = collections.namedtuple("Row", "operation board library hand same")


def width_of(program):
    """32 or 64, as its header says."""
    return 64 if pathlib.Path(program).read_bytes()[4] == 2 else 32


def isolated(build, command, **options):
    return subprocess.run([PROJECT / "scripts/isolated", build, *command], stdout=subprocess.PIPE, text=True, **options)


class Refused(Exception):
    """This machine cannot measure; the text says why."""


def under_callgrind(build, name, command):
    """Runs a program; what it printed, its dumps and its system calls."""
    if not shutil.which("valgrind"):
        raise Refused("valgrind is not installed")
    kept = pathlib.Path(build) / "bench" / name
    shutil.rmtree(kept, ignore_errors=True)
    kept.mkdir(parents=True)
    done = isolated(build, ["valgrind", "--tool=callgrind", "--trace-syscalls=yes", f"--log-file={kept}/log",
                            f"--callgrind-out-file={kept}/out", *command],
                    env={**os.environ, "GLIBC_TUNABLES": PLAIN_COPIES})
    if done.returncode == 77:
        raise Refused(done.stdout.strip())
    if done.returncode != 0:
        raise SystemExit(f"{name} failed with {done.returncode}; its log is {kept}/log")
    lines = [json.loads(line) for line in done.stdout.splitlines()]
    return lines, dumps(kept / "out"), system_calls(kept / "log")


def count(build):
    """A row for each operation and board."""
    rows = []
    program = pathlib.Path(build) / "bench/bench_counts"
    for board, model in BOARDS.items():
        lines, dumped, called = under_callgrind(build, f"counts.{board}", [program, model])
        copying = {line["offset"] for line in lines if "copies" in line}

        def copies(where, name):
            return "libc.so" in where and (name.startswith("__mem") or
                                           name.startswith("0x") and int(name, 16) in copying)

        def spent(label):
            return dumped[label].total - dumped[label].instructions(lambda where, name: "answering_driver" in where)

        def side(operation, way, index):
            label = f"{operation['operation']}/{way}"
            calls = called[label] + collections.Counter(ioctl=operation["exchanges"])
            return Side(spent(label) - spent(f"nothing/{way}"), dumped[label].instructions_below(copies), calls,
                        operation["heap"][index], operation["stack"][index])

        for operation in lines:
            if operation.get("operation", "nothing") != "nothing":
                rows.append(Row(operation["operation"], board, side(operation, "library", 0),
                                side(operation, "hand", 1), operation["same"]))
    return rows


def mean_ratio(rows):
    ratios = [row.library.instructions / row.hand.instructions for row in rows if row.operation in BUDGETS]
    return math.exp(sum(map(math.log, ratios)) / len(ratios))


def extra(row):
    return row.library.instructions - row.hand.instructions


def limit(operation, width):
    """The most extra instructions: the budget, or what is accepted above it."""
    index = width == 32
    if operation not in BUDGETS:
        return math.inf
    return max(BUDGETS[operation][index], ACCEPTED.get(operation, (0, 0))[index])


def faults(width, rows):
    """What is over its budget or otherwise not as it must be, a line each."""
    for row in rows:
        where = f"{row.operation}, {width} bits, {row.board}"
        most = limit(row.operation, width)
        if extra(row) > most:
            yield f"{where}: {extra(row)} instructions more than by hand, the most is {most}"
        if not row.same:
            yield f"{where}: library and hand do not send or yield the same"
        if row.operation == OPENING:
            continue
        if row.library.heap:
            yield f"{where}: {row.library.heap} allocations"
        if row.library.calls != row.hand.calls:
            yield f"{where}: system calls {dict(row.library.calls)}, by hand {dict(row.hand.calls)}"
    most = max(LARGEST_MEAN, ACCEPTED_MEAN[width == 32])
    if round(mean_ratio(rows), 2) > most:
        yield f"{width} bits: library over hand is {mean_ratio(rows):.2f} in the mean, the most is {most}"


def count_loading(build):
    """For the first process and one that joins: instructions of the library and of all, and system calls, of loading
    and of unloading."""
    results = {}
    library = next(pathlib.Path(build).glob("libsorvaneusb.so"))
    for how in ("first", "joining"):
        _, dumped, called = under_callgrind(build, f"loading.{how}",
                                            [pathlib.Path(build) / "bench/bench_loading", library, how])
        for step in ("load", "unload"):
            own = dumped[step].instructions(lambda where, name: "libsorvaneusb" in where)
            results[how, step] = own, dumped[step].total, called[step]
    return results
