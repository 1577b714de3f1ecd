"""pytest: a `cabinet` fixture with virtual boards that are up for one test.

    # conftest.py
    pytest_plugins = ["sorvane_sim.pytest_plugin"]

    # pytest.ini
    [pytest]
    sorvane_cabinet = fruit_machine.toml

    # test_game.py
    def test_a_coin_gives_credit(cabinet):
        cabinet.start("./game")
        cabinet.coin("coin_1")
        cabinet.wait("output start_lamp on")

The file is looked for beside pytest.ini. A test that needs another machine says so:
`@pytest.mark.cabinet("other.toml")`, from the test's own folder, or `@pytest.mark.cabinet(["0=R35"])`. The report of a
test that fails has the last events of its boards and what its programs said.
"""
from __future__ import annotations

import os
import pathlib
from typing import Any, Generator

import pytest

from .cabinet import Cabinet
from .control import SimulatorError

_EVENTS_SHOWN = 60
_INI = "sorvane_cabinet"
_CABINET = pytest.StashKey[Cabinet]()


def pytest_addoption(parser: pytest.Parser) -> None:
    """Adds the ini option."""
    parser.addini(_INI, "the cabinet file of the tests, from the folder of the ini file")


def pytest_configure(config: pytest.Config) -> None:
    """Adds the marker."""
    config.addinivalue_line("markers", "cabinet(machine, **more): a cabinet file, or boards, and what Cabinet() takes")


def _cabinet_for(request: pytest.FixtureRequest) -> Cabinet:
    marker = request.node.get_closest_marker("cabinet")
    if marker:
        machine, *rest = marker.args
        if isinstance(machine, (str, os.PathLike)):
            machine = request.path.parent / machine
        return Cabinet(machine, *rest, **marker.kwargs)
    told = request.config.getini(_INI)
    if not told:
        raise pytest.UsageError(f"which cabinet? Say {_INI} = FILE in the ini file, or mark the test with cabinet(FILE)")
    base = request.config.inipath.parent if request.config.inipath else pathlib.Path()
    return Cabinet(base / str(told))


@pytest.fixture
def cabinet(request: pytest.FixtureRequest) -> Generator[Cabinet, None, None]:
    """Virtual boards, up for this test."""
    with _cabinet_for(request) as plugged:
        request.node.stash[_CABINET] = plugged
        yield plugged


@pytest.hookimpl(hookwrapper=True)  # type: ignore[misc]
def pytest_runtest_makereport(item: pytest.Item, call: pytest.CallInfo[None]) -> Generator[None, Any, None]:
    """Attaches what the boards and the programs have to tell."""
    outcome = yield
    report = outcome.get_result()
    plugged = item.stash.get(_CABINET, None)
    if plugged is None or call.when != "call" or not report.failed:
        return
    report.sections.append(("events of the boards", _journal(plugged)))
    for number, program in enumerate(plugged.programs, 1):
        title = "what the program said" if len(plugged.programs) == 1 else f"what program {number} said"
        report.sections.append((title, program.output))


def _journal(plugged: Cabinet) -> str:
    try:
        events = plugged.events()
    except SimulatorError as error:
        return str(error)
    earlier = f"(and {len(events) - _EVENTS_SHOWN} earlier ones)\n" if len(events) > _EVENTS_SHOWN else ""
    return earlier + "\n".join(map(str, events[-_EVENTS_SHOWN:]))
