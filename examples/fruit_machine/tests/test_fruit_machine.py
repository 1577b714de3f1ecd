"""What the fruit machine does with money, presses and the door, seen from outside."""
import signal

import pytest

LAMPS = ["start_lamp", "collect_lamp", "win_lamp", "hold_left_lamp", "hold_middle_lamp", "hold_right_lamp"]


def meters(cabinet):
    """What came in, what went out, and the games."""
    contents = cabinet.eeprom[8:20]
    return [int.from_bytes(contents[at : at + 4], "little") for at in (0, 4, 8)]


def insert(cabinet, game, coin, credit):
    """A coin, and the credit that there is then."""
    said = game.output.count(f"coin {coin}")
    assert cabinet.coin(coin)
    game.says(f"coin {coin}", times=said + 1)
    game.says(f"credit {credit}\n")


def test_each_coin_counts_once_for_its_value(cabinet, play):
    game = play()
    cabinet.wait("output start_lamp flashing")
    for coin, credit in ("coin_1", 1), ("coin_2", 3), ("coin_1", 4), ("token", 9):
        insert(cabinet, game, coin, credit)
        cabinet.wait("output start_lamp on")
    # The acceptor tells its last coin with every answer.
    for _ in range(3):
        cabinet.wait(r'serial acceptor sent "\xE5\x18"')
    assert game.stop() == 0
    assert game.output.endswith("end credit 9\n")
    assert meters(cabinet) == [9, 0, 0]


@pytest.mark.parametrize("ending", [signal.SIGTERM, signal.SIGINT, signal.SIGHUP])
def test_a_signal_leaves_the_machine_safe(cabinet, play, ending):
    game = play()
    for credit in 2, 4, 6:
        insert(cabinet, game, "coin_2", credit)
    cabinet.press("collect")
    cabinet.wait("hopper main_hopper paid >= 1")
    assert game.stop(ending) == 0
    cabinet.expect("not hopper main_hopper paying")
    for lamp in LAMPS:
        cabinet.expect(f"output {lamp} off")
    paid = 20 - cabinet.hopper("main_hopper").stock
    assert 1 <= paid < 6
    again = play()
    again.says(f"ready credit {6 - paid} total_in 6 total_out {paid} games 0")


def test_a_power_cut_of_the_board_loses_and_invents_no_coin(cabinet, play):
    game = play()
    for credit in 1, 2, 3:
        insert(cabinet, game, "coin_1", credit)
    cabinet.unplug()
    game.says("board lost")
    cabinet.plug()
    game.says("ready", times=2)
    assert "ready credit 3 total_in 3 total_out 0 games 0" in game.output
    insert(cabinet, game, "coin_1", 4)
    assert meters(cabinet) == [4, 0, 0]


def test_an_open_door_stops_the_hopper(cabinet, play):
    game = play()
    for credit in 5, 10:
        insert(cabinet, game, "token", credit)
    cabinet.press("collect")
    cabinet.wait("hopper main_hopper paid >= 2")
    cabinet.input("door", True)
    game.says("door open")
    cabinet.wait("not hopper main_hopper paying")
    cabinet.wait("quiet 1ms")
    assert cabinet.hopper("main_hopper").paid < 10
    cabinet.input("door", False)
    cabinet.wait("output start_lamp on")
    cabinet.press("collect")
    cabinet.wait("meter total_out = 10", within=10)
    cabinet.wait("output start_lamp flashing")
    assert cabinet.hopper("main_hopper").stock == 10


def test_an_empty_hopper_puts_the_machine_out_of_order(cabinet, play):
    cabinet.hopper("main_hopper").stock = 2
    game = play()
    for credit in 2, 4:
        insert(cabinet, game, "coin_2", credit)
    cabinet.press("collect")
    game.says("paid 2 of 4 credit 2", within=15)
    cabinet.wait("output hold_left_lamp flashing")
    cabinet.expect("output start_lamp off")
    cabinet.input("door", True)
    game.says("door open")
    cabinet.input("door", False)
    cabinet.wait("output start_lamp on")
    assert meters(cabinet) == [4, 2, 0]


def test_a_win_is_shown_and_paid(cabinet, play):
    game = play(wins="0,3")
    insert(cabinet, game, "coin_2", 2)
    cabinet.press("start")
    cabinet.wait("reel right turning")
    game.says("no win credit 1", within=10)
    cabinet.wait("output hold_left_lamp flashing")
    cabinet.press("hold_left")
    cabinet.wait("output hold_left_lamp on")
    cabinet.press("start")
    cabinet.wait("reel right turning")
    cabinet.expect("reel left still")
    cabinet.wait("output win_lamp flashing", within=10)
    cabinet.wait("hopper main_hopper paying")
    cabinet.expect("output collect_lamp flashing")
    cabinet.expect("output win_lamp off")
    game.says("paid 3 of 3 credit 0", within=10)
    cabinet.wait("output collect_lamp off")
    assert cabinet.hopper("main_hopper").stock == 17
    assert meters(cabinet) == [2, 3, 2]
