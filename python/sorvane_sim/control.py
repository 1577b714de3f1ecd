"""The control protocol (docs/control_protocol.md), and the errors that come by it."""
from __future__ import annotations

import contextlib
import json
import socket
import struct
from typing import Any, Iterator, Mapping, Sequence

PROTOCOL_VERSION = 1

_FAILED, _CALLED_WRONGLY, _DOES_NOT_HOLD = 1, 2, 3


class SimulatorError(Exception):
    """Something about the virtual boards went wrong."""


class CommandError(SimulatorError):
    """A command cannot be: the text says what is allowed."""


class RunEnded(SimulatorError):
    """The boards are gone."""


class ConditionFailed(AssertionError):
    """A condition did not hold: the text says what was expected, what is, and what happened last."""


class Connection:
    """A connection with a run."""

    def __init__(self, user: int, run: str, name: str = "") -> None:
        """Connects with the run of this user, number and name, as `sorvane-sim list --json` shows them."""
        self._user = user
        self._address = f"\0sorvane-sim/{user}/{run}" + (f"/{name}" if name not in ("", run) else "")
        self._since: dict[str, int] = {}
        self._waits = False  # for an answer; still so at the next request where something broke in
        self._open()

    def _open(self) -> None:
        self._socket = socket.socket(socket.AF_UNIX, socket.SOCK_STREAM)
        try:
            self._socket.connect(self._address)
            # Anybody can take such a name; the user behind it tells whose it is.
            peer = self._socket.getsockopt(socket.SOL_SOCKET, socket.SO_PEERCRED, struct.calcsize("3i"))
        except OSError as error:
            self._socket.close()
            raise RunEnded(f"the run cannot be reached: {error.strerror}") from error
        self._lines = self._socket.makefile("rwb")
        if struct.unpack("3i", peer)[1] != self._user:
            self.close()
            raise SimulatorError("the run belongs to somebody else")

    def command(self, words: Sequence[str], content: bytes | None = None) -> Any:
        """Carries a command out; the result is its data, else its text.

        A condition is looked at from the moment on at which the command before it began, so that nothing that the
        one brings about is missed by the other.
        """
        heard = list(self.stream(words, content))
        return heard[-1]

    def stream(self, words: Sequence[str], content: bytes | None = None) -> Iterator[Any]:
        """What a command tells, an item for each event, and at last what command() returns."""
        request: dict[str, Any] = {"words": list(words), "json": True, "since": self._since}
        if content is not None:
            request["content"] = content.hex()
        for answer in self._ask(request):
            if "status" not in answer:
                yield answer.get("event", answer.get("text"))
                continue
            self._since = answer.get("began", self._since)
            yield _result(answer)

    def mark(self) -> None:
        """Something that is no command begins: what happens from now on is not missed."""
        self.command(["state"])

    def stop(self) -> None:
        """Ends the run, and waits until it has ended."""
        for answer in self._ask({"stop": True}):
            _result(answer)
        self._lines.read()

    def close(self) -> None:
        """Lets the run go on without this connection."""
        with contextlib.suppress(OSError):  # a request that nobody took
            self._lines.close()
        self._socket.close()

    def _ask(self, request: Mapping[str, Any]) -> Iterator[dict[str, Any]]:
        if self._waits:
            self.close()
            self._open()
        self._waits = True
        try:
            self._lines.write(json.dumps({"sorvane": PROTOCOL_VERSION, **request}).encode() + b"\n")
            self._lines.flush()
            while answer := self._lines.readline():
                told = json.loads(answer)
                self._waits = "status" not in told
                yield told
                if not self._waits:
                    return
        except OSError as error:
            raise RunEnded(f"the run has ended: {error.strerror}") from error
        raise RunEnded("the run has ended")


def _result(answer: Mapping[str, Any]) -> Any:
    status = answer["status"]
    text = str(answer.get("error", ""))
    if status == _DOES_NOT_HOLD:
        raise ConditionFailed(text)
    if status == _CALLED_WRONGLY:
        raise CommandError(text)
    if status != 0:
        raise SimulatorError(text)
    return answer.get("data", answer.get("text", ""))
