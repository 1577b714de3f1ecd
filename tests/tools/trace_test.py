#!/usr/bin/env python3
"""`sorvane trace` by unmodified programs on virtual boards.

    scripts/isolated BUILD tests/tools/trace_test.py BUILD [OTHER_WORKER]

OTHER_WORKER: trace_worker of the other width, where this machine makes both.
"""
import collections
import concurrent.futures
import itertools
import json
import os
import pathlib
import pty
import re
import select
import signal
import subprocess
import sys
import tempfile
import time
import unittest

BUILD = pathlib.Path(sys.argv[1]).resolve()
SIM, SORVANE = BUILD / "sim/command/sorvane-sim", BUILD / "tools/sorvane"
WORKER = BUILD / "tests/tools/trace_worker"
OTHER_WORKER = sys.argv[2] if len(sys.argv) > 2 else WORKER
EXAMPLES = ["attract_mode", "coin_and_hopper", "reels", "cctalk_acceptor", "lockdown"]
FITTED = "speed=high,number=3,serial0=cctalk,hopper5=40,hopper10=40"
FOLDER = tempfile.TemporaryDirectory()


def file(name):
    return pathlib.Path(FOLDER.name) / name


def run(*words, **options):
    return subprocess.run(words, capture_output=True, text=True, timeout=60, **options)


def on_board(board, *words, journal="journal", **options):
    return run(SIM, "run", "--board", "0=" + board, "--record", file(journal), "--", *words, **options)


def replay(name, *words):
    return run(SIM, "run", "--replay", file(name), "--", *words)


def example(name):
    return BUILD / "examples" / name


def events(name):
    return [json.loads(line) for line in file(name).read_text().splitlines()[1:]]


def exchanges(name):
    return [event for event in events(name) if event["kind"] == "exchange"]


def asked(event):
    """All of an exchange that board and caller both know."""
    return tuple(event[field] for field in ("request", "pipe", "payload", "outcome", "answer"))


class Trace(unittest.TestCase):
    def check_is_decoded_by_name(self, events):
        self.assertGreater(len(events), 20)
        for event in events:
            self.assertNotIn("request", event["operation"], event)
            self.assertNotIn("payload", event["arguments"], event)
            self.assertNotIn("answer", event["results"], event)

    def check_example(self, model, name):
        trace, lines, journal = (f"{model}-{name}-{kind}" for kind in ("trace", "lines", "journal"))
        done = on_board(f"{model},{FITTED}", SORVANE, "trace", "--record", file(trace), "-o", file(lines), "--",
                        example(name), journal=journal)
        self.assertEqual(done.returncode, 0, done.stderr)
        self.check_is_decoded_by_name(exchanges(trace))
        self.assertEqual(run(SORVANE, "show", file(trace)).stdout, file(lines).read_text())
        for recording in trace, journal:
            again = replay(recording, example(name))
            self.assertEqual((again.returncode, again.stdout, again.stderr), (0, done.stdout, ""), recording)

    def test_examples_are_decoded_by_name_and_replay_to_the_same_output(self):
        with concurrent.futures.ThreadPoolExecutor(10) as side_by_side:
            runs = itertools.product(("R20", "R35"), EXAMPLES)
            list(side_by_side.map(lambda each: self.check_example(*each), runs))

    def test_fruit_machine_is_decoded_by_name(self):
        machine = pathlib.Path(__file__).parents[2] / "examples/cabinets/fruit_machine.toml"
        run(SIM, "run", "--cabinet", machine, "--", SORVANE, "trace", "--json", "-o", file("game"), "--", "timeout",
            "-s", "KILL", "2", example("fruit_machine"))
        self.check_is_decoded_by_name([event for event in exchanges("game") if event["outcome"] != "failed"])

    def test_departing_from_a_recording_ends_the_run(self):
        on_board("R35," + FITTED, SORVANE, "trace", "--record", file("trace"), "-o", "/dev/null", "--", example("reels"))
        lines = file("trace").read_text().splitlines(keepends=True)
        last = next(n for n, line in enumerate(lines) if "ConfigureReelsEx" in line)
        file("short").write_text("".join(lines[:last]))
        there = "Sorvane R35 Board\n480\n"
        for name, words, status, parts in (
            ("trace", [example("lockdown")], 123, [f"exchange {last} of Vexa_0", "expected: ConfigureReelsEx(", "came: "]),
            ("short", [example("reels")], 123, ["the recording ends here", "came:     ConfigureReelsEx("]),
            ("trace", ["cat", *(f"/sys/class/Vexa/Vexa_0/device/{name}" for name in ("product", "speed"))], 0,
             [f"{len(lines) - 1} exchanges before Vexa_0", "FirmwareRuns()"]),
        ):
            done = replay(name, *words)
            self.assertEqual(done.returncode, status, done.stderr)
            for part in parts:
                self.assertIn(part, done.stderr)
        self.assertEqual(done.stdout, there)

    def test_no_exchange_is_lost_and_none_is_added(self):
        for model, packets in (("R20", {"PACKETS": "1"}), ("R35", {})):
            children = [word for n in range(1, 5) for word in (str(n), OTHER_WORKER if n % 2 else WORKER)]
            done = on_board(f"{model},firmware=running", SORVANE, "trace", "--json", "-o", file("storm"), "--", WORKER,
                            "0", "8", "60", *children, env=os.environ | packets)
            self.assertEqual(done.returncode, 0, done.stderr)
            self.assertEqual(len(exchanges("storm")), 5 * 8 * 80 + 1)
            of_board = [asked(event) for event in exchanges("journal")]
            self.assertEqual(collections.Counter(map(asked, exchanges("storm"))), collections.Counter(of_board))
            of_threads = collections.defaultdict(list)
            for event in exchanges("storm"):
                of_threads[event["process"], event["thread"]].append(asked(event))
            self.assertEqual(len(of_threads), 41)
            for of_thread in of_threads.values():
                board = iter(of_board)
                self.assertTrue(all(exchange in board for exchange in of_thread), "in the board's order")

    def test_ends_and_signals_pass(self):
        for script, status in (("exit 7", 7), ("kill -9 $$", -9), ("trap 'exit 5' TERM; kill -TERM $PPID; sleep 9", 5)):
            self.assertEqual(run(SORVANE, "trace", "--", "sh", "-c", script).returncode, status, script)
        self.assertEqual(run(SORVANE, "trace", "--", "/nothing/there").returncode, 127)

    def test_what_cannot_be_traced_is_refused_in_words(self):
        own = file("own_rights")
        own.write_bytes(pathlib.Path("/bin/true").read_bytes())
        own.chmod(0o4755)
        preloaded = os.environ | {"LD_PRELOAD": "libsorvane_sim_preload.so"}
        for words, environment, status, part in (
            (["--", own], None, 1, "rights of its own"),
            (["--", "true"], preloaded, 1, "inside the program"),
            (["-p", "999999"], None, 1, "no process 999999"),
            (["--filter", "GetInput", "--", "true"], None, 2, "GetInputBit, GetInputs"),
            ([], None, 2, "-- PROGRAM"),
        ):
            done = run(SORVANE, "trace", *words, env=environment)
            self.assertEqual(done.returncode, status, words)
            self.assertIn(part, done.stderr)

    def test_summary_and_filter(self):
        done = on_board("R35", SORVANE, "trace", "--summary", "--filter", "GetInputBit", "SetOutputBit", "--",
                        example("attract_mode"))
        lines = done.stderr.splitlines()[1:]
        self.assertRegex(lines[0], r"^ *17 ( +\d+ us){3}  ModifyOutputs$")
        self.assertRegex(lines[1], r"^ *1 ( +\d+ us){3}  GetInputs$")

    def test_attaching_and_detaching_leaves_a_program_unharmed(self):
        script = f"""
            {WORKER} 0 4 1500 1 {OTHER_WORKER} & worker=$!
            {SORVANE} trace --json -o {file("attached")} -p $worker & trace=$!
            sleep 0.5; kill -INT $trace; wait $trace; echo $?; wait $worker; echo $?"""
        done = on_board("R35,firmware=running", "bash", "-c", script)
        self.assertEqual(done.stdout, "0\n0\n", done.stderr)
        self.assertIn("detached", done.stderr)
        seen = exchanges("attached")
        self.assertTrue(100 < len(seen) < 16001, len(seen))
        self.assertEqual({event["outcome"] for event in seen}, {"success"})

    def test_a_shell_stops_and_continues_it_as_a_job(self):
        process, terminal = pty.fork()
        if process == 0:
            os.execlp("bash", "bash", "--norc", "-i")
        said = ""
        for typed, expected in (
            (f"{SORVANE} trace -- sh -c 'echo be''gun; read x; echo go''t $x; exec sleep 60'\n", "begun"),
            ("\x1a", "Stopped"),
            ("fg\nword\n", "got word"),
            ("\x03", "no exchange"),
            ("echo status=$?\n", "status=130"),
        ):
            os.write(terminal, typed.encode())
            deadline = time.monotonic() + 20
            while expected not in said and select.select([terminal], [], [], max(0, deadline - time.monotonic()))[0]:
                said += os.read(terminal, 4096).decode()
            self.assertIn(expected, said)
        os.kill(process, signal.SIGKILL)
        os.waitpid(process, 0)


if __name__ == "__main__":
    why_not = on_board("R35", WORKER, "0", "0", "0")
    if why_not.returncode != 1:
        print("SKIPPED: no device nodes for programs of this width here:", why_not.stderr.strip())
        sys.exit(77)
    unittest.main(argv=sys.argv[:1])
