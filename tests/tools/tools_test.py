#!/usr/bin/python3
"""What a person sees of `sorvane`, and what it leaves behind, on virtual boards.

    scripts/isolated BUILD tools_test.py BUILD      begins a run, in which it calls itself
"""
import concurrent.futures
import ctypes
import itertools
import json
import os
import pathlib
import pty
import signal
import subprocess
import sys
import tempfile
import time
import unittest
import xml.etree.ElementTree

BUILD = pathlib.Path(sys.argv.pop(1)).resolve()
SORVANE, SIM = BUILD / "tools/sorvane", BUILD / "sim/command/sorvane-sim"
CABINET = "--cabinet", str(pathlib.Path(__file__).parents[2] / "examples/cabinets/fruit_machine.toml")
BOARDS = ["0=R35,speed=high,number=3,firmware=running,hopper5=60000,serial0=loopback,serial1=loopback,input16=on",
          "1=R20,firmware=running", "2=R20s,firmware=missing", "3=R35,eeprom=24LC64,firmware=running"]
PAYING = {model: range(first, first + 5) for model, first in (("R35", 4), ("R20", 9))}
BOARDS += [f"{n}={model},firmware=running,eeprom=24LC64,hopper5=60000" for model in PAYING for n in PAYING[model]]


def run(*words, **options):
    return subprocess.run([SORVANE, *map(str, words)], capture_output=True, text=True, timeout=60,
                          **{"stdin": subprocess.DEVNULL, **options})


def begin(*words):
    return subprocess.Popen([SORVANE, *map(str, words)], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                            stderr=subprocess.STDOUT, text=True)


def ctl(*words):
    return subprocess.run([SIM, "ctl", *map(str, words)], capture_output=True, text=True, check=True).stdout


def state(board):
    return json.loads(ctl("--board", board, "state", "--json"))["boards"][0]


class Sysv:
    """The machine's SysV objects: who made them, their bytes and their values."""

    libc = ctypes.CDLL(None, use_errno=True)
    libc.shmat.restype = ctypes.c_void_p

    def rows(self, kind):
        return [line.split() for line in pathlib.Path("/proc/sysvipc", kind).read_text().splitlines()[1:]]

    def all(self):
        memory = {}
        for row in self.rows("shm"):
            address = self.libc.shmat(int(row[1]), None, 0o10000)  # to be read only
            memory[tuple(row[:4] + row[6:7])] = ctypes.string_at(address, int(row[3]))
            self.libc.shmdt(ctypes.c_void_p(address))
        values = [self.libc.semctl(int(row[1]), n, 12) for row in self.rows("sem") for n in range(int(row[3]))]
        return memory, values


class Tools(unittest.TestCase):
    def sees(self, words, status, *parts, **options):
        done = run(*words, **options)
        said = done.stdout + done.stderr
        self.assertEqual(done.returncode, status, f"{words}: {said}")
        for part in parts:
            self.assertIn(part, said, words)
        return done.stdout

    def writer(self):
        """A program of the library that switches output 1 of board 3 again and again."""
        writer = subprocess.Popen([BUILD / "tests/nodes/output_writer", "3", "1", "1000000"], stdout=subprocess.PIPE)
        self.addCleanup(writer.communicate)
        self.addCleanup(writer.kill)
        while [each["operation"] for each in state(3)["last_exchanges"][-1:]] != ["ModifyOutputs"]:
            time.sleep(0.01)
        return writer

    def test_each_command_says_what_the_board_says(self):
        ctl("--board", 0, "coin", 2)
        for words, status, *parts in [
            (["list"], 0, "/dev/Vexa_0  R35, high speed, virtual", "Virtual R35 1.0", "VPIC0003", "check byte right",
             "/dev/Vexa_2  R20s, full speed, virtual\n  firmware          does not run\n"),
            (["info", "main", *CABINET], 0, "/dev/Vexa_0 (main)", "board number      3"),
            (["info", "/dev/Vexa_1", "--json"], 0, '"firmware_version":"Virtual R20 1.0"'),
            (["info", "15"], 1, "no board", "sorvane doctor"),
            (["info", "16"], 2, "allowed: 0 to 15"),
            (["inputs", "0", *CABINET], 0, "16  high   ON    hold_left", "9  low    ON    door"),
            (["inputs", "2"], 1, "firmware of /dev/Vexa_2 does not run", "sorvane firmware 2 load"),
            (["inputs", "0", "--multiplexed"], 0, "lead byte 0"),
            (["outputs", "0"], 0, "the shared memory is not there"),
            (["pulse", "0", "12", "7", "--yes"], 0, "asked for a pulse on of 7"),
            (["pulse", "0", "32", "7", "--yes"], 2, "allowed: 0 to 31"),
            (["brightness", "0", "11", "--yes"], 2, "[0 - 10]"),
            (["brightness", "0", "4", "--yes"], 0, "brightness of /dev/Vexa_0: 4"),
            (["hopper", "0", "main_hopper", "pay", "2", "--yes", *CABINET], 0, "Done", "status 1, hopper byte 2"),
            (["hopper", "0", "5", "pay", "2", "--yes"], 2, "which output"),
            (["hopper", "1", "5", "stop"], 1, "code 25"),
            (["reels", "0", *CABINET], 0, "middle"),
            (["reel", "0", "left", "spin", "5", "--reels", "3", "--yes", *CABINET], 0, "reel 0 (left)"),
            (["clock", "0", "set", "1234", "--yes"], 0, "1234"),
            (["clock", "0", "set", "later", "--yes"], 2, "or now"),
            (["security", "0", "--yes"], 0, "flags: a: switches none", "0 entries, then status 73"),
            (["battery", "0", "--yes"], 0, "battery fail flag: 0"),
            (["battery", "1", "--yes"], 1, "code 25", "Try:"),
            (["random", "0", "2"], 1, "code 74"),
            (["random", "0", "2", "--enable", "67305985", "--yes"], 0, "54651\n"),
            (["firmware", "2"], 0, "does not run", "stand-in"),
            (["raw", "0", "1", "75"], 0, "GetInputs() = inputs 16 24 25\nanswer: 00 00 01 03 00"),
            (["raw", "0", "1", "85", "0x63", "--yes"], 1, "code 66"),
            (["meters", "0"], 2, "--cabinet FILE"),
            (["meters", "0", "--open", *CABINET], 0, "total_in"),
            (["coins", "0", "token", "--yes", *CABINET], 2, "ccTalk"),
            (["serial", "0", "1", "--format", "1201", "--yes"], 2, "110, 300"),
            (["nonsense"], 2, "Subcommands"),
        ]:
            self.sees(words, status, *parts)
        self.assertEqual("2 hello\n", self.sees(["serial", "0", "1", "--format", "9600", "--yes"], 0, input="2 hello\n",
                                                stdin=None))
        self.assertEqual({"status": 1, "code": 74}, {key: json.loads(self.sees(["random", "3", "1", "--json"], 1))
                         ["error"][key] for key in ("status", "code")})

    def test_a_dump_restored_to_another_board_is_identical(self):
        with tempfile.TemporaryDirectory() as folder:
            source, here, there = (pathlib.Path(folder, name) for name in ("source", "here", "there"))
            for kind, length, chip in [("sram", 0xF3FFE, []), ("eeprom", 8191 - 8, ["--chip", "24LC64"])]:
                source.write_bytes(os.urandom(length))
                self.sees([kind, 3, "restore", source], 2, "needs --yes")
                self.sees([kind, 3, "restore", source, "--yes", *chip], 0, "read back alike")
                self.sees([kind, 3, "dump", here, "--yes", *chip], 0, f"{length} bytes")
                self.sees([kind, 4, "restore", here, "--yes", *chip], 0, "read back alike")
                self.sees([kind, 4, "dump", there, "--yes", *chip], 0)
                self.assertEqual(source.read_bytes(), there.read_bytes(), kind)
            first = here.read_bytes()
            self.sees(["eeprom", 3, "verify", here, "--open"], 0, "alike")
            here.write_bytes(first[:100] + bytes([first[100] ^ 1]) + first[101:])
            self.sees(["eeprom", 3, "verify", here, "--open"], 1, "at byte 100 (address 108)")

    def test_what_cannot_be_told_is_no_success(self):
        with open("/dev/full", "w") as full:
            done = subprocess.run([SORVANE, "list"], stdout=full, stderr=subprocess.PIPE, text=True)
        self.assertEqual((1, "sorvane: what there is to tell could not be written\n"), (done.returncode, done.stderr))
        ctl("--board", 1, "fail", "ioctl", "request", 74)
        self.sees(["list"], 1, "trouble", "Virtual R35 1.0")
        ctl("--board", 1, "fail", "off")

    def test_what_pays_wants_consent_and_no_other_program(self):
        pay = ["hopper", 0, "5", "pay", "1", "--output", "37"]
        stock = state(0)["hoppers"][0]["stock"]
        self.sees(pay, 2, "needs --yes")
        with open("/dev/Vexa_0", "r+b", buffering=0):
            self.sees([*pay, "--yes"], 1, f"open in {os.getpid()} (", "--beside")
            self.assertEqual(stock, state(0)["hoppers"][0]["stock"])
            self.sees([*pay, "--yes", "--beside"], 0)
        with open("/dev/Vexa_2", "r+b", buffering=0):
            self.sees(["info", 2, "--open"], 1, "loads the R20s's firmware", f"open in {os.getpid()} (", "--beside")
        self.assertFalse(state(2)["firmware_running"])
        for answer, left in (b"\n", 1), (b"y\n", 2):
            os.write(OUTSIDE, answer)
            run(*pay, stdin=INSIDE)
            self.assertEqual(stock - left, state(0)["hoppers"][0]["stock"])

    def test_opening_does_only_what_was_asked_for(self):
        before = state(3)["eeprom_configured"]
        self.sees(["output", 3, 12, "on", "--yes"], 1, "configures the board", "--open")
        self.assertEqual(before, state(3)["eeprom_configured"])
        for words in (["firmware", 2, "load", "--yes"], ["info", 2, "--open"], ["eeprom", 2, "detect", "--yes"]):
            self.sees(words, 1, "is a real board", "SORVANE_FIRMWARE_DIR",
                      env={**os.environ, "LD_PRELOAD": str(BUILD / "tests/tools/libas_device.so")})
        self.assertFalse(state(2)["firmware_running"])
        self.sees(["output", 3, 12, "on", "--yes", "--open"], 0)
        self.sees(["output", 3, 13, "flash", "--yes", "--open"], 0)
        self.assertEqual([13], state(3)["outputs_on_period"])

    def test_following_begins_with_the_state_and_ends_what_it_began(self):
        inputs = begin("inputs", 3, "--follow", "--json")
        first = json.loads(inputs.stdout.readline())
        self.assertEqual(33, len(first["inputs"]))
        ctl("--board", 3, "input", 7, "on")
        change = json.loads(inputs.stdout.readline())
        self.assertEqual((7, True), (change["input"], change["on"]))
        coins = begin("coins", 3, 2, "--follow", "--yes", "--beside")
        coins.stdout.readline()
        while not any(counter["checking"] for counter in state(3)["counters"]):
            time.sleep(0.01)
        ctl("--board", 3, "coin", 2)
        self.assertIn("input 2: 1 more, 1 in all", coins.stdout.readline())
        for program, number in (inputs, signal.SIGHUP), (coins, signal.SIGTERM):
            program.send_signal(number)
            program.communicate(timeout=10)
            self.assertEqual(0, program.returncode)
        self.assertFalse(any(counter["checking"] for counter in state(3)["counters"]))

    def test_a_signal_at_any_moment_of_a_payout_leaves_the_hopper_stopped(self):
        def moments(model, board, some):
            for moment, number in some:
                program = begin("hopper", board, 5, "pay", 1000, "--output", 37, "--yes", "--json")
                time.sleep(moment)
                program.send_signal(number)
                said = program.communicate(timeout=30)[0]
                at_end = state(board)["hoppers"][0]
                time.sleep(0.45)
                later = state(board)["hoppers"][0]
                more = at_end["stock"] - later["stock"]
                self.assertNotEqual(4, later["status"], said)
                self.assertLessEqual(more, 1 if model == "R20" else 0, said)
                yield json.loads(said)["stopped"] if said else False

        signals = itertools.cycle([signal.SIGINT, signal.SIGTERM, signal.SIGHUP])
        with concurrent.futures.ThreadPoolExecutor(10) as pool:
            jobs = []
            for model, boards in PAYING.items():
                for board in boards:
                    some = [(0.05 + 0.012 * n, next(signals)) for n in range(board - boards[0], 50, len(boards))]
                    jobs.append(pool.submit(lambda *job: list(moments(*job)), model, board, some))
            stopped = [each for job in jobs for each in job.result()]
        self.assertEqual(100, len(stopped))
        self.assertGreater(sum(stopped), 50, "most of them came while it paid")

    def test_a_payout_whose_exchanges_fail_is_stopped(self):
        program = begin("hopper", 4, 5, "pay", 1000, "--output", 37, "--yes")
        while state(4)["hoppers"][0]["status"] != 4:
            time.sleep(0.01)
        for request, count in (124, 2), (113, 1):
            ctl("--board", 4, "fail", "ioctl", "count", count, "request", request)
        self.assertIn("code 6", program.communicate(timeout=10)[0])
        self.assertNotEqual(4, state(4)["hoppers"][0]["status"])

    def test_looking_changes_nothing(self):
        # A killed program leaves its registration and, as nobody else is there, the memory: whoever joins and leaves
        # takes the memory away.
        writer = self.writer()
        self.addCleanup(run, "doctor", "--reset-if-unused")
        writer.kill()
        writer.wait()

        def everything():
            boards = [state(board) for board in range(4)]
            for board in boards:
                for key in ("exchange_count", "last_exchanges", "clock", "in_on_period", "outputs_lit"):
                    del board[key]
            return boards, Sysv().all(), sorted(os.listdir("/tmp"))

        before = everything()
        self.assertEqual(1, len(before[1][0]))
        for words in self.LOOKING:
            run(*words)
            self.assertEqual(before, everything(), words)

    LOOKING = [["list"], ["doctor"], *([command, board] for command in ("info", "inputs", "outputs", "selftest")
                                       for board in range(4))]

    def test_selftest_tells_what_is_well_and_puts_back_what_it_wrote(self):
        with tempfile.TemporaryDirectory() as folder:
            results, before, after = (pathlib.Path(folder, name) for name in ("results.xml", "before", "after"))
            before.write_bytes(os.urandom(16384))
            self.sees(["sram", 0, "restore", before, "--page", 0, "--yes"], 0)
            self.sees(["selftest", 0, "--loopback"], 2, "needs --yes")
            self.sees(["selftest", 0, "--loopback", "--sram", 16320, "--yes", "--junit", results], 0,
                      "passed      SRAM", "passed      clock", "passed      serial port 0", "passed      serial port 1",
                      "check byte right", "at the 99th percentile")
            ctl("--board", 0, "slow", "50ms")
            stopped = begin("selftest", 0, "--sram", 64, "--yes")
            while [each["operation"] for each in state(0)["last_exchanges"][-1:]] != ["WriteBankedSRAM"]:
                time.sleep(0.01)
            stopped.terminate()
            self.assertIn("what was begun was ended", stopped.communicate(timeout=20)[0])
            ctl("--board", 0, "slow", "0s")
            self.sees(["sram", 0, "dump", after, "--page", 0], 0)
            self.assertEqual(before.read_bytes(), after.read_bytes())
            suite = xml.etree.ElementTree.parse(results).getroot()
            self.assertEqual(("11", "0"), (suite.get("tests"), suite.get("failures")))
        self.sees(["selftest", 1], 0, "not fitted  1-Wire number", "not fitted  serial port 1")
        self.sees(["selftest", 2], 1, "FAILED      firmware", "not fitted  clock")
        ctl("--board", 3, "fail", "short", "count", 2, "request", 120)
        tests = json.loads(self.sees(["selftest", 3, "--json"], 1))["tests"]
        self.assertEqual({"1-Wire number"}, {test["test"] for test in tests if test["outcome"] == "failed"})

    def test_doctor_tells_who_holds_what_and_removes_only_what_nobody_uses(self):
        first = self.writer()
        self.sees(["doctor"], 0, f"/dev/Vexa_3 is open in {first.pid} (", "is a stand-in", "1 registrations")
        self.sees(["doctor", "--reset-if-unused"], 1, "1 processes are attached")
        ctl("--board", 3, "slow", "200ms")
        self.addCleanup(ctl, "--board", 3, "slow", "0s")
        time.sleep(0.3)  # now it is in a slow exchange, and stops behind it
        first.send_signal(signal.SIGSTOP)
        while pathlib.Path(f"/proc/{first.pid}/stat").read_text().split()[2] != "T":
            time.sleep(0.01)
        self.sees(["doctor"], 1, "is stopped while it holds lock", f"kill -CONT {first.pid}")
        first.kill()
        first.wait()
        self.sees(["doctor"], 0, "1 registrations without an attached process")
        self.sees(["doctor", "--reset-if-unused"], 0, "the shared memory was removed", "the semaphores were removed")
        self.assertEqual(({}, []), Sysv().all())
        os.chmod("/dev/Vexa_3", 0o600)
        self.addCleanup(os.chmod, "/dev/Vexa_3", 0o666)
        if subprocess.run(["test", "-x", SORVANE], user=65534).returncode:
            return print("not tried: a node that is closed to the user, since no other user may run the build's programs")
        self.sees(["doctor"], 1, "/dev/Vexa_3 is closed to user nobody (mode 0600", "60-sorvane.rules", user=65534)


if __name__ == "__main__":
    if os.environ.get("IN_A_RUN") is None:
        reason = subprocess.run([SIM, "run", "--how", "node", "--board", "0=R35", "--", SORVANE, "--version"],
                                capture_output=True, text=True)
        if reason.returncode:
            print(f"SKIPPED: no device nodes here, or no programs of this width: {reason.stderr}")
            sys.exit(77)
        terminal = pty.openpty()  # what a run shows of /dev has none
        os.environ["IN_A_RUN"] = "{} {}".format(*terminal)
        for descriptor in terminal:
            os.set_inheritable(descriptor, True)
        words = [word for board in BOARDS for word in ("--board", board)]
        os.execv(SIM, [SIM, "run", *words, "--", sys.executable, __file__, BUILD, *sys.argv[1:]])
    OUTSIDE, INSIDE = map(int, os.environ["IN_A_RUN"].split())
    unittest.main(verbosity=0)
