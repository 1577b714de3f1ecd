"""Virtual Sorvane boards for the tests of a game: play a cabinet, and look at what it does.

    from sorvane_sim import Cabinet

    with Cabinet("fruit_machine.toml") as cabinet:
        game = cabinet.start("./game")
        cabinet.wait("output start_lamp flashing")
        cabinet.coin("coin_1")
        cabinet.press("start")
        cabinet.wait("hopper main_hopper paid = 3", within=10)
        cabinet.expect("meter total_out = 3")
        game.stop()

What is done is what `sorvane-sim ctl` does, in the words of docs/virtual_boards.md. pytest finds a `cabinet` fixture in
sorvane_sim.pytest_plugin.
"""
from .board import Board, Event, Hopper, Memory
from .cabinet import Cabinet, Program
from .control import CommandError, ConditionFailed, Connection, RunEnded, SimulatorError

__all__ = [
    "Board",
    "Cabinet",
    "CommandError",
    "ConditionFailed",
    "Connection",
    "Event",
    "Hopper",
    "Memory",
    "Program",
    "RunEnded",
    "SimulatorError",
]
