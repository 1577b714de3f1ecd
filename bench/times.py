"""The timed part. It depends on what else the machine does: library and hand take turns, and ratios are compared."""
import json
import pathlib
import re
import statistics
import subprocess

from counts import Refused, isolated

TURNS = 5
PROCESSES = (1, 2, 4, 16)


def medians(build):
    """Nanoseconds of library and hand for each operation and board."""
    program = pathlib.Path(build) / "bench/bench_times"
    if not program.exists():
        raise Refused("there is no Google Benchmark of this width")
    done = isolated(build, [program, "--benchmark_format=json", f"--benchmark_repetitions={TURNS}",
                            "--benchmark_enable_random_interleaving=true", "--benchmark_min_time=0.05",
                            "--benchmark_report_aggregates_only=true"])
    if done.returncode == 77:
        raise Refused(done.stdout.strip())
    found = {}
    for line in json.loads(done.stdout)["benchmarks"]:
        if line["aggregate_name"] == "median":
            operation, board, way = line["run_name"].rsplit("/", 2)
            found.setdefault((operation, board), {})[way] = line["cpu_time"]
    return {key: (ways["library"], ways["hand"]) for key, ways in found.items()}


def switching(build, way, boards, processes, seconds, place=()):
    """What processes that switch outputs do together: operations, seconds, and seconds of CPU. The place
    is a command that runs them beside boards; without it there is the driver that answers at once."""
    program = pathlib.Path(build) / "bench/bench_processes"
    place = place or ("env", f"LD_PRELOAD={pathlib.Path(build)}/bench/libbench_answering_driver.so")
    done = isolated(build, [*place, program, way, str(boards), str(processes), str(seconds)])
    if done.returncode == 77:
        raise Refused(done.stdout.strip())
    if done.returncode != 0:
        raise SystemExit(f"bench_processes failed with {done.returncode}")
    return json.loads(done.stdout.splitlines()[-1])


def pairs(build, seconds=0.3):
    """For so many processes on one board: the ratio of library to hand in operations a second and in CPU each."""
    results = {}
    for processes in PROCESSES:
        rates, costs = [], []
        for _ in range(TURNS):
            turn = [switching(build, way, 1, processes, seconds) for way in ("library", "hand")]
            rate = [run["operations"] / run["seconds"] for run in turn]
            cost = [run["cpu"] / run["operations"] for run in turn]
            rates.append(rate)
            costs.append(cost)
        results[processes] = (statistics.median(rate[0] for rate in rates),
                              statistics.median(rate[0] / rate[1] for rate in rates),
                              1e6 * statistics.median(cost[0] for cost in costs),
                              statistics.median(cost[0] / cost[1] for cost in costs))
    return results


def node_exchange(build):
    """Microseconds through a device node and of a bare FUSE ioctl, for each protocol."""
    program = pathlib.Path(build) / "bench/node_exchange"
    if not program.exists():
        raise Refused("node_exchange is not built")
    done = isolated(build, [program], stderr=subprocess.STDOUT)
    if done.returncode != 0:
        raise Refused(done.stdout.strip())
    return re.findall(r"(\w+) +node +([\d.]+) us +bare +([\d.]+) us", done.stdout)
