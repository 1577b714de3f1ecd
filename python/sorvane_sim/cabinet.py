"""A cabinet of virtual boards that is up, and the programs that run in it."""
from __future__ import annotations

import json
import os
import pathlib
import shutil
import signal
import subprocess
import tempfile
import time
from types import TracebackType
from typing import IO, Mapping, Sequence, Union

from .board import Board, Part
from .control import Connection, RunEnded, SimulatorError

PathLike = Union[str, "os.PathLike[str]"]

_SIM = "sorvane-sim"
_LOOK_EVERY = 0.01


def find_sim() -> str:
    """Where sorvane-sim is: what SORVANE_SIM says, in the PATH, or in the bin beside this package's lib."""
    told = os.environ.get("SORVANE_SIM")
    found = shutil.which(told or _SIM)
    if not found and not told:
        folders = [str(parent / "bin") for parent in pathlib.Path(__file__).resolve().parents]
        found = shutil.which(_SIM, path=os.pathsep.join(folders))
    if not found:
        raise SimulatorError(f"{told or _SIM} is not there; install it, or say in SORVANE_SIM where it is")
    return found


class Program:
    """A program that has entered a cabinet."""

    def __init__(self, process: subprocess.Popen[bytes], output: IO[bytes]) -> None:
        self._process = process
        self._output = output

    @property
    def output(self) -> str:
        """What it has said so far, on its standard output and error."""
        size = os.fstat(self._output.fileno()).st_size
        return os.pread(self._output.fileno(), size, 0).decode(errors="replace")

    @property
    def status(self) -> int | None:
        """None while it runs; then its exit status, or minus the signal that ended it."""
        return self._process.poll()

    def says(self, text: str, within: float = 5.0, times: int = 1) -> None:
        """Waits until it has said this, so many times. Raises AssertionError with all that it said."""
        end = time.monotonic() + within
        while self.output.count(text) < times:
            ended = self.status is not None
            if self.output.count(text) < times and (ended or time.monotonic() >= end):
                why = f"within {within:g} s" if not ended else f"and ended with {self.status}"
                raise AssertionError(f"the program did not say {text!r} {why}; it said:\n{self.output}")
            time.sleep(_LOOK_EVERY)

    def wait(self, within: float = 5.0) -> int:
        """Its exit status, as soon as it has ended by itself. Raises AssertionError when it does not."""
        try:
            return self._process.wait(within)
        except subprocess.TimeoutExpired:
            raise AssertionError(f"the program did not end within {within:g} s; it said:\n{self.output}") from None

    def send_signal(self, number: signal.Signals) -> None:
        """Sends it a signal."""
        self._process.send_signal(number)

    def stop(self, number: signal.Signals = signal.SIGTERM, grace: float = 2.0) -> int:
        """Ends it: by this signal, and by SIGKILL after so many seconds. The result is its exit status."""
        if self.status is None:
            self.send_signal(number)
        try:
            return self._process.wait(grace)
        except subprocess.TimeoutExpired:
            return self.kill()

    def kill(self) -> int:
        """Ends it and all that it started, without asking."""
        self._process.kill()
        return self._process.wait()


class Cabinet(Board):
    """Virtual boards, up for as long as the with statement lasts.

        with Cabinet("machine.toml") as cabinet: ...
        with Cabinet(["0=R35,hopper5=20", "1=R20"]) as cabinet: ...

    However this process ends, the boards and the programs in them end with it.
    """

    def __init__(
        self, machine: PathLike | Sequence[str], *, boards: Sequence[str] = (), scenario: PathLike | None = None,
        name: str | None = None,
    ) -> None:
        """`machine` is a cabinet file, or the words of --board for each board; `boards` are further ones."""
        super().__init__(None)
        is_file = isinstance(machine, (str, os.PathLike))
        self._words = ["--cabinet", os.fspath(machine)] if is_file else []  # type: ignore[arg-type]
        for board in [*([] if is_file else machine), *boards]:  # type: ignore[misc]
            self._words += ["--board", board]
        if scenario is not None:
            self._words += ["--scenario", os.fspath(scenario)]
        if name is not None:
            self._words += ["--name", name]
        self._sim = find_sim()
        self._hold: int | None = None
        self.programs: list[Program] = []
        """Every program that was started, the first one first."""
        self.name = ""
        """The run's name, for `sorvane-sim ctl --run NAME`."""

    def __enter__(self) -> Cabinet:
        # The run ends when the last writer of its input is gone, which is this process, however it goes.
        end, self._hold = os.pipe()
        try:
            words = [self._sim, "serve", "--background", "--end-with-input", *self._words]
            served = subprocess.run(words, stdin=end, capture_output=True, text=True, check=False)
        finally:
            os.close(end)
        if served.returncode != 0:
            self.close()
            raise SimulatorError(served.stderr.strip())
        self.name = served.stdout.strip()
        try:
            self._connection = self._connect()
        except BaseException:
            self.close()
            raise
        return self

    def __exit__(
        self, kind: type[BaseException] | None, error: BaseException | None, trace: TracebackType | None
    ) -> None:
        self.close()

    def close(self) -> None:
        """Ends the programs and pulls the boards."""
        for program in self.programs:
            program.stop()
        if self._connection is not None:
            try:
                self._connection.stop()
            except RunEnded:
                pass
            self._connection.close()
            self._connection = None
        if self._hold is not None:
            os.close(self._hold)
            self._hold = None

    def board(self, board: Part) -> Board:
        """One of several boards, by name or device number."""
        return Board(self.connection, board)

    def start(
        self, program: PathLike, *arguments: str, cwd: PathLike | None = None, env: Mapping[str, str] | None = None
    ) -> Program:
        """Starts a program that finds the boards where a machine has real ones."""
        self.connection.mark()
        output = tempfile.TemporaryFile()
        words = [self._sim, "enter", "--end-with-run", "--run", self.name, "--", os.fspath(program), *arguments]
        process = subprocess.Popen(
            words, stdin=subprocess.DEVNULL, stdout=output, stderr=subprocess.STDOUT, cwd=cwd, env=env
        )
        self.programs.append(Program(process, output))
        return self.programs[-1]

    def _connect(self) -> Connection:
        listed = subprocess.run([self._sim, "list", "--json"], capture_output=True, text=True, check=True)
        for run in json.loads(listed.stdout)["runs"]:
            if run["name"] == self.name and run["uid"] == os.geteuid():
                return Connection(run["uid"], run["id"], run["name"])
        raise RunEnded(f"the run {self.name} has ended")
