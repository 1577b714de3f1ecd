"""What can be done to a board, and what it tells."""
from __future__ import annotations

from dataclasses import dataclass
from typing import Any, Iterator, Mapping, Sequence, Union

from .control import CommandError, Connection, SimulatorError

Part = Union[str, int]
"""A part's name in the cabinet file, BOARD.name, or its number."""


@dataclass(frozen=True)
class Event:
    """Something that happened on a board (docs/journal.schema.json)."""

    number: int
    """Counts from 1 on each board."""
    device: int
    time: float
    """Seconds since the run began."""
    kind: str
    part: int | None
    name: str
    """The part's name, empty without one."""
    was: Any
    """For a change, the state before it."""
    value: Any
    """For a change, the state behind it."""
    text: str
    raw: Mapping[str, Any]
    """The whole object, as it came."""

    def __str__(self) -> str:
        return f"{self.time:12.6f}  {self.text}"

    @classmethod
    def of(cls, raw: Mapping[str, Any]) -> Event:
        """From its object in JSON."""
        return cls(
            raw["number"], raw["device"], raw["time"] / 1e9, raw["kind"], raw.get("part"), raw.get("name", ""),
            raw.get("was"), raw.get("is"), raw["text"], raw,
        )


class Memory:
    """The EEPROM or the SRAM of a board."""

    def __init__(self, board: Board, kind: str) -> None:
        self._board = board
        self._kind = kind

    def read(self) -> bytes:
        """The whole contents."""
        return bytes.fromhex(self._board.command(self._kind, "dump", "-")["bytes"])

    def write(self, contents: bytes) -> None:
        """Replaces the contents, all of them."""
        self._board.command(self._kind, "load", "-", content=contents)

    def __getitem__(self, place: int | slice) -> Any:
        return self.read()[place]

    def __setitem__(self, place: int | slice, value: int | bytes) -> None:
        contents = bytearray(self.read())
        size = len(contents)
        contents[place] = value  # type: ignore[index,assignment]
        if len(contents) != size:
            raise ValueError(f"a memory of {size} bytes cannot become one of {len(contents)}")
        self.write(bytes(contents))

    def __len__(self) -> int:
        return len(self.read())


class Hopper:
    """A hopper, by name or by the input that its coins pass."""

    def __init__(self, board: Board, part: Part) -> None:
        self._board = board
        self._part = str(part)

    @property
    def paid(self) -> int:
        """The coins since its last release."""
        return int(self._state()["paid"])

    @property
    def stock(self) -> int:
        """The coins that are in it."""
        return int(self._state()["stock"])

    @stock.setter
    def stock(self, coins: int) -> None:
        self._board.command("hopper", self._part, "stock", str(coins))

    @property
    def jammed(self) -> bool:
        """Whether a coin is stuck in it."""
        return bool(self._state()["jammed"])

    def jam(self) -> None:
        """Lets a coin get stuck."""
        self._board.command("hopper", self._part, "jam")

    def free(self) -> None:
        """Frees the coin."""
        self._board.command("hopper", self._part, "free")

    def _state(self) -> Mapping[str, Any]:
        found = [
            hopper
            for board in self._board.states()
            for hopper in board["hoppers"]
            if self._part in (str(hopper["input"]), hopper["name"], f"{board['name']}.{hopper['name']}")
        ]
        if len(found) != 1:
            raise CommandError(f"{'which' if found else 'no'} hopper {self._part}?")
        state: Mapping[str, Any] = found[0]
        return state


class Board:
    """A board, or the only one, or with parts by name the boards of a cabinet."""

    def __init__(self, connection: Connection | None, board: Part | None = None) -> None:
        self._connection = connection
        self._head = [] if board is None else ["--board", str(board)]

    @property
    def connection(self) -> Connection:
        """The connection with the run."""
        if self._connection is None:
            raise SimulatorError("the cabinet is not plugged in: use it in a with statement")
        return self._connection

    def command(self, *words: str, content: bytes | None = None) -> Any:
        """Any command of `sorvane-sim commands`; the result is its data, else its text."""
        return self.connection.command([*self._head, *words], content)

    def coin(self, coin: Part) -> bool:
        """Throws a coin in; False when the acceptor rejects it."""
        return not self.command("coin", str(coin))

    def press(self, button: Part, times: int = 1) -> None:
        """Lets an input be on for 20 ms, once every 40 ms."""
        self.command("input", str(button), "pulse", str(times))

    def input(self, part: Part, on: bool) -> None:
        """Puts an input on or off; one that is active low is on at its low level."""
        self.command("input", str(part), "on" if on else "off")

    def switch(self, part: Part, opened: bool) -> None:
        """Opens or closes a security switch."""
        self.command("switch", str(part), "open" if opened else "close")

    def hopper(self, part: Part) -> Hopper:
        """A hopper."""
        return Hopper(self, part)

    def fail(self, what: str, *, count: int = 1, request: int | None = None) -> None:
        """Lets the next exchanges fail: `fail("status 0x1e", count=2)`; "off" ends all faults."""
        options = [] if what == "off" else ["count", str(count)]
        if request is not None:
            options += ["request", str(request)]
        self.command("fail", *what.split(), *options)

    def slow(self, seconds: float) -> None:
        """Lets every exchange take so much longer; 0 ends it."""
        self.command("slow", _time(seconds))

    def unplug(self) -> None:
        """Pulls the board off."""
        self.command("unplug")

    def plug(self) -> None:
        """Plugs it in again."""
        self.command("plug")

    def wait(self, condition: str, within: float = 5.0) -> None:
        """Waits until a condition holds, as in `output win_lamp flashing`, or has held since the step before this one
        began. Raises ConditionFailed after so many seconds."""
        self.command("wait", condition, "within", _time(within))

    def expect(self, condition: str) -> None:
        """Raises ConditionFailed unless a condition holds now."""
        self.command("expect", condition)

    def events(
        self, *, since: int | None = None, kinds: Sequence[str] = (), parts: Sequence[Part] = (), exchanges: bool = False
    ) -> list[Event]:
        """What has happened, the oldest first, as far as it is kept."""
        words = ["events"]
        if since is not None:
            words += ["--since", str(since)]
        if kinds:
            words += ["--kind", *kinds]
        if parts:
            words += ["--part", *map(str, parts)]
        if exchanges:
            words += ["--exchanges"]
        told: Iterator[Any] = self.connection.stream([*self._head, *words])
        return [Event.of(each) for each in told if isinstance(each, dict) and "number" in each]

    def states(self) -> list[dict[str, Any]]:
        """The state of each board, as `sorvane-sim ctl state --json` shows it."""
        boards: list[dict[str, Any]] = self.command("state")["boards"]
        return boards

    def state(self) -> dict[str, Any]:
        """The state of the only board."""
        states = self.states()
        if len(states) != 1:
            numbers = ", ".join(str(state["device"]) for state in states)
            raise CommandError(f"which board? Say board(...) with one of: {numbers}")
        return states[0]

    @property
    def eeprom(self) -> Memory:
        """The EEPROM's contents: `cabinet.eeprom[8:12]`."""
        return Memory(self, "eeprom")

    @property
    def sram(self) -> Memory:
        """The SRAM's contents."""
        return Memory(self, "sram")


def _time(seconds: float) -> str:
    return f"{seconds * 1e6:.0f}us"
