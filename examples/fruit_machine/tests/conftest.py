"""The game in its cabinet: FRUIT_MACHINE says where the program is."""
import os

import pytest

pytest_plugins = ["sorvane_sim.pytest_plugin"]


@pytest.fixture
def play(cabinet):
    """Starts the game, and waits until it is ready; it wins what the list says."""

    def start(wins="0"):
        game = cabinet.start(os.environ.get("FRUIT_MACHINE", "fruit_machine"), "--wins", wins)
        game.says("ready")
        return game

    return start
