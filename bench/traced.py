#!/usr/bin/env python3
"""What a trace costs an exchange, and everything else of a program: traced, attached to and by itself, in turns.

    scripts/isolated BUILD bench/traced.py BUILD
"""
import pathlib
import re
import statistics
import subprocess
import sys
import time

BUILD = pathlib.Path(sys.argv[1]).resolve()
SIM, SORVANE, CLIENT = (BUILD / name for name in ("sim/command/sorvane-sim", "tools/sorvane", "tests/nodes/node_client"))
ATTACH = f'{SORVANE} trace -o /dev/null -p $$ 2>/dev/null & sleep 0.5; exec "$@"'
WAYS = {
    "alone": [],
    "traced": [SORVANE, "trace", "-o", "/dev/null", "--"],
    "attached to": ["sh", "-c", ATTACH, "-"],
}
EXCHANGES, TURNS = 2000, 15
CALLS = 200000


class Client:
    """A program that sends exchanges in a row when it is told to."""

    def __init__(self, model, prefix):
        words = [SIM, "run", "--board", f"0={model},firmware=running", "--", *prefix, CLIENT]
        pipe = subprocess.PIPE
        self.process = subprocess.Popen(words, stdin=pipe, stdout=pipe, text=True)
        self.obey("open 0", "open")

    def obey(self, order, expected):
        self.process.stdin.write(order + "\n")
        self.process.stdin.flush()
        answer = self.process.stdout.readline().strip()
        assert answer == expected, answer

    def exchange(self):
        """Microseconds, the mean of a row."""
        began = time.monotonic()
        self.obey(f"flood {EXCHANGES} 999999", "all")
        return (time.monotonic() - began) / EXCHANGES * 1e6


def other_call(prefix):
    """Microseconds of a system call that is no exchange: dd reads and writes so many times, and says how long it took."""
    words = [*prefix, "dd", "if=/dev/zero", "of=/dev/null", "bs=1", f"count={CALLS}"]
    said = subprocess.run(words, stderr=subprocess.PIPE, text=True).stderr
    return float(re.search(r"([\d.]+) s,", said)[1]) / CALLS / 2 * 1e6


for model in ("R20", "R35"):
    clients = {name: Client(model, prefix) for name, prefix in WAYS.items()}
    times = {name: [] for name in clients}
    for _ in range(TURNS):
        for name, client in clients.items():
            times[name].append(client.exchange())
    print(model, ", ".join(f"{name} {statistics.median(row):.1f} us" for name, row in times.items()))
others = {name: min(other_call(prefix) for _ in range(3)) for name, prefix in WAYS.items()}
print("any other system call:", ", ".join(f"{name} {time:.2f} us" for name, time in others.items()))
