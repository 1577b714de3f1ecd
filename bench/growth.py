"""How the cost grows: with the bytes of a transfer, the processes on a board, and the boards on a machine."""
import pathlib
import resource

from counts import under_callgrind
from times import switching

STEPS = (1, 2, 4, 16)
SECONDS = 2


def transfers(build):
    """Bytes, exchanges and instructions of each transfer."""
    lines, dumped, _ = under_callgrind(build, "transfers", [pathlib.Path(build) / "bench/bench_transfers"])
    for line in lines:
        dump = dumped[line["transfer"]]
        spent = dump.total - dump.instructions(lambda where, name: "answering_driver" in where)
        yield line["transfer"].split()[0], line["bytes"], line["exchanges"], spent


def cpu_of_children():
    usage = resource.getrusage(resource.RUSAGE_CHILDREN)
    return usage.ru_utime + usage.ru_stime


def through_nodes(build):
    """For so many boards, each with so many processes that switch its outputs: exchanges a second, microseconds of CPU
    for each in the programs, and in programs and boards together."""
    simulator = pathlib.Path(build) / "sim/command/sorvane-sim"
    for boards in STEPS:
        place = [simulator, "run"]
        for board in range(boards):
            place += ["--board", f"{board}=R35,firmware=running"]
        for processes in STEPS:
            before = cpu_of_children()
            switching(build, "library", boards, processes, 0, [*place, "--"])
            idle = cpu_of_children() - before
            before = cpu_of_children()
            run = switching(build, "library", boards, processes, SECONDS, [*place, "--"])
            everything = cpu_of_children() - before - idle
            done = run["operations"]
            yield boards, processes, done / run["seconds"], 1e6 * run["cpu"] / done, 1e6 * everything / done
