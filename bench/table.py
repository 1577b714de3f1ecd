#!/usr/bin/env python3
"""What a call of the library costs beside the same exchanges by hand, as one table.

    table.py [--check] [--counts] BUILD...    a build directory of each width
    table.py --growth BUILD                   how the cost grows, instead

--counts shows only what does not depend on the machine's load; --check fails where a budget, or what is accepted above
one, is broken. 77: nothing could be measured on this machine.
"""
import argparse
import subprocess
import sys

import counts
import growth
import times


def calls_text(calls):
    return ", ".join(f"{number} {name}" if number > 1 else name for name, number in sorted(calls.items()))


def print_row(*cells):
    print("| " + " | ".join(str(cell) for cell in cells) + " |")


def print_head(*titles):
    print_row(*titles)
    print_row(*("---" for _ in titles))


def print_counts(rows, median_times):
    """A line for each operation and width; what differs between the boards stands as R20 / R35."""
    print("Instructions, library and by hand, on an R20 and an R35 (one number where they agree or only one has it):\n")
    print_head("operation", "bits", "library", "by hand", "ratio", "extra", "to reach", "of the library libc's copies",
               "by hand", "system calls", "heap", "stack", "by hand", "time, ratio")
    found = {}
    for width, row in rows:
        found.setdefault((row.operation, width), []).append(row)
    for (operation, width), boards in found.items():
        def each(value):
            values = [str(value(row)) for row in boards]
            return values[0] if len(set(values)) == 1 else " / ".join(values)

        def time_ratio(row):
            both = median_times.get((width, row.operation, row.board))
            return f"{both[0] / both[1]:.2f}" if both else "-"

        budget = counts.BUDGETS.get(operation)
        most = budget[width == 32] if budget else ""
        over = ""
        if budget and max(map(counts.extra, boards)) > most:
            limit = counts.limit(operation, width)
            over = " **over**" if max(map(counts.extra, boards)) > limit else f" (accepted {limit})"
        print_row(operation, width, each(lambda row: row.library.instructions),
                  each(lambda row: row.hand.instructions),
                  each(lambda row: f"{row.library.instructions / row.hand.instructions:.2f}"), each(counts.extra),
                  f"{most}{over}", each(lambda row: row.library.copies), each(lambda row: row.hand.copies),
                  each(lambda row: calls_text(row.library.calls)), each(lambda row: row.library.heap),
                  each(lambda row: row.library.stack), each(lambda row: row.hand.stack), each(time_ratio))
    for width in sorted({width for width, _ in rows}, reverse=True):
        mean = counts.mean_ratio([row for of, row in rows if of == width])
        print(f"\nMean ratio of the operations with a budget, {width} bits: {mean:.2f} (to reach: {counts.LARGEST_MEAN})")


def print_loading(loading):
    print("\nLoading and unloading the library:\n")
    print_head("process", "bits", "step", "instructions of the library", "of all", "system calls", "by name")
    for width, results in loading:
        for (how, step), (own, everything, called) in results.items():
            print_row(how, width, step, own, everything, sum(called.values()), calls_text(called))


def print_pairs(found):
    print("\nProcesses on one board that switch an output, library beside hand:\n")
    print_head("processes", "bits", "operations a second", "ratio to hand", "CPU each", "ratio to hand")
    for width, results in found:
        for processes, (rate, rate_ratio, cost, cost_ratio) in results.items():
            print_row(processes, width, f"{rate:.0f}", f"{rate_ratio:.2f}", f"{cost:.2f} us", f"{cost_ratio:.2f}")


def print_nodes(found):
    print("\nAn exchange through a device node beside a bare ioctl on a file system that does nothing else:\n")
    print_head("protocol", "node", "bare", "ratio")
    for protocol, node, bare in found:
        print_row(protocol, f"{node} us", f"{bare} us", f"{float(node) / float(bare):.2f}")


def print_growth(build):
    print_head("transfer", "bytes", "exchanges", "instructions", "of them a byte")
    for name, size, exchanges, spent in growth.transfers(build):
        print_row(name, size, exchanges, spent, f"{spent / size:.1f}")
    print()
    print_head("boards", "processes on each", "exchanges a second", "CPU of the programs each", "of boards and programs")
    for boards, processes, rate, own, everything in growth.through_nodes(build):
        print_row(boards, processes, f"{rate:.0f}", f"{own:.1f} us", f"{everything:.1f} us")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--check", action="store_true")
    parser.add_argument("--counts", action="store_true")
    parser.add_argument("--growth", action="store_true")
    parser.add_argument("builds", nargs="+", metavar="BUILD")
    options = parser.parse_args()
    if options.growth:
        print_growth(options.builds[0])
        return 0

    rows, loading, pairs, median_times, skipped, faults = [], [], [], {}, [], []
    runs_32_bits = subprocess.run([counts.PROJECT / "scripts/runs_32_bits"]).returncode == 0
    for build in options.builds:
        width = counts.width_of(f"{build}/bench/bench_counts")

        def unless_refused(what, measure):
            try:
                return measure()
            except counts.Refused as reason:
                skipped.append(f"{what}, {width} bits: {reason}")

        if width == 32 and not runs_32_bits:
            skipped.append("all of 32 bits: this kernel runs no 32-bit programs")
            continue
        counted = unless_refused("instructions", lambda: counts.count(build))
        if counted:
            rows += [(width, row) for row in counted]
            faults += counts.faults(width, counted)
        if found := unless_refused("loading", lambda: counts.count_loading(build)):
            loading.append((width, found))
        if options.counts:
            continue
        for key, both in (unless_refused("times", lambda: times.medians(build)) or {}).items():
            median_times[width, *key] = both
        if found := unless_refused("processes", lambda: times.pairs(build)):
            pairs.append((width, found))

    if rows:
        print_counts(rows, median_times)
    if loading:
        print_loading(loading)
    if pairs:
        print_pairs(pairs)
    if not options.counts:
        try:
            print_nodes(times.node_exchange(options.builds[0]))
        except counts.Refused as reason:
            skipped.append(f"device nodes: {reason}")
    for reason in skipped:
        print(f"SKIPPED: {reason}")
    for fault in faults:
        print(f"BROKEN: {fault}")
    if not rows:
        return 77
    return 1 if options.check and faults else 0


if __name__ == "__main__":
    sys.exit(main())
