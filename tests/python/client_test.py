"""The Python client and its pytest plugin, against real runs of sorvane-sim."""
import json
import os
import pathlib
import signal
import subprocess
import sys
import time

import pytest
from sorvane_sim import Cabinet, CommandError, ConditionFailed, RunEnded, SimulatorError
from sorvane_sim.cabinet import find_sim

PACKAGE = pathlib.Path(sys.modules["sorvane_sim"].__file__).parents[1]
TWO = """version = 1
[[board]]
name = "left"
device = 0
model = "R20"
inputs = { start = 8 }
firmware = "running"
[[board]]
name = "right"
device = 1
model = "R35"
inputs = { start = 3, door = { number = 9, active = "low" } }
outputs = { lamp = 12 }
hoppers = { tube = { input = 5, stock = 7 } }
coins = { token = { cctalk = 4 } }
serial0 = "cctalk"
firmware = "running"
"""


@pytest.fixture
def machine(tmp_path):
    (tmp_path / "two.toml").write_text(TWO)
    return tmp_path / "two.toml"


def runs():
    return json.loads(subprocess.check_output([find_sim(), "list", "--json"]))["runs"]


def test_each_method_says_what_the_table_of_commands_knows(machine):
    table = json.loads(subprocess.check_output([find_sim(), "commands", "--json"]))["commands"]
    with Cabinet(machine, name="tabled") as cabinet:
        right, said, command = cabinet.board("right"), set(), cabinet.connection.stream
        cabinet.connection.stream = lambda words, content=None: (
            said.add(words[2 if words[0] == "--board" else 0]), command(words, content))[1]
        cabinet.press("left.start", times=2)
        cabinet.input("door", True)
        assert cabinet.coin("token") is True
        tube = cabinet.hopper("right.tube")
        tube.stock += 2
        assert (tube.stock, tube.paid, tube.jammed) == (9, 0, False)
        tube.jam()
        assert tube.jammed
        tube.free()
        right.switch(2, opened=True)
        right.fail("status 0x1e", count=3, request=75)
        right.fail("off")
        right.slow(0.00025)
        contents = right.eeprom.read()
        right.eeprom[8:10] = b"\x2a\x01"
        right.expect("eeprom 8 = 2A 01")
        assert right.eeprom.read() == contents[:8] + b"\x2a\x01" + contents[10:]
        with pytest.raises(ValueError, match="cannot become"):
            right.eeprom[0:2] = b"\1"
        right.sram[20000] = 9
        assert (right.sram[20000], len(right.sram)) == (9, 65 * 16384)
        right.unplug()
        right.wait("not plugged")
        right.plug()
        assert right.state()["open_switches"] == [2]
        assert [event.kind for event in right.events(kinds=["plugged"])] == ["plugged"] * 2
        assert cabinet.events(parts=["door"])[-1].value is False
        for words in ["battery", "fail"], ["clock", "fail"], ["spi", "reply", "1"], ["serial", "0", "send", "a"]:
            right.command(*words)
        assert said == {row["name"] for row in table}
    assert runs() == []


def test_errors_are_told_apart(machine):
    with Cabinet(machine) as cabinet:
        with pytest.raises(CommandError, match="left.start, right.start"):
            cabinet.press("start")
        with pytest.raises(CommandError, match="which board"):
            cabinet.state()
        with pytest.raises(ConditionFailed, match=r"(?s)output lamp on.*did not hold within 30ms.*off"):
            cabinet.wait("output lamp on", within=0.03)
        # The press has come and gone, and belongs to what is waited for.
        cabinet.press("right.start")
        time.sleep(0.1)
        cabinet.wait("input right.start on", within=0)
        with pytest.raises(AssertionError, match="did not say 'nothing' and ended with 3; it said:\nopen"):
            cabinet.start("sh", "-c", "echo open; exit 3").says("nothing")
        stubborn = cabinet.start("sh", "-c", "trap '' TERM; echo on; sleep 97531 & wait; wait")
        stubborn.says("on")
        assert stubborn.stop(grace=0.2) == -signal.SIGKILL
        subprocess.run([find_sim(), "stop", cabinet.name], check=True)
        with pytest.raises(RunEnded):
            cabinet.expect("plugged")
    with pytest.raises(SimulatorError, match="0 to 15"), Cabinet(["16=R35"]):
        pass
    with pytest.raises(SimulatorError, match="with statement"):
        Cabinet(["0=R35"]).unplug()


TESTED = """import pytest
@pytest.mark.cabinet("two.toml", name="interrupted")
def test_it(cabinet):
    program = cabinet.start("sh", "-c", "echo it was me; sleep 86420")
    program.says("me")
    cabinet.input("door", True)
    cabinet.wait("output lamp flashing", within=%s)
"""


def started(folder, within):
    (folder / "conftest.py").write_text('pytest_plugins = ["sorvane_sim.pytest_plugin"]\n')
    (folder / "test_it.py").write_text(TESTED % within)
    words = [sys.executable, "-m", "pytest", "-p", "no:cacheprovider", "test_it.py"]
    return subprocess.Popen(words, cwd=folder, env={**os.environ, "PYTHONPATH": str(PACKAGE)}, text=True,
                            stdout=subprocess.PIPE, stderr=subprocess.STDOUT, start_new_session=True)


def test_a_failure_is_reported_with_journal_and_output(machine):
    report = started(machine.parent, 0.05).communicate(timeout=30)[0]
    for part in "events of the boards", "door (9) off", "what the program said", "it was me", "1 failed":
        assert part in report


@pytest.mark.parametrize("end", [signal.SIGINT, signal.SIGTERM, signal.SIGKILL])
def test_an_interrupted_test_leaves_nothing_behind(machine, end):
    tests = started(machine.parent, 60)
    wait_until(lambda: any(run["name"] == "interrupted" for run in runs()) and sleeping(), "it is up")
    tests.send_signal(end)
    tests.communicate(timeout=30)
    wait_until(lambda: not runs() and not sleeping(), "all is gone")


def sleeping():
    return subprocess.run(["pgrep", "-f", "^sleep 86420"], stdout=subprocess.DEVNULL, check=False).returncode == 0


def wait_until(holds, what):
    end = time.monotonic() + 20
    while not holds():
        assert time.monotonic() < end, what
        time.sleep(0.02)
