#!/usr/bin/env python3
"""Shows that tests of the fruit machine find each fault of examples/fruit_machine/faults.txt.

    fruit_machine_faults.py BUILD COMPILER FLAGS STATUS COMMAND...

For each fault the game is built with it, and the command runs with FRUIT_MACHINE naming that program. It has to end with
this status, by which it says that a test has failed, and with 0 on the game without a fault. COMPILER and FLAGS are those
of BUILD.
"""
import concurrent.futures
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

GAME = pathlib.Path(__file__).resolve().parents[1] / "examples/fruit_machine"
AT_ONCE = 12  # mostly they wait
ALLOWED = 120  # seconds


def faults():
    """What is wrong, the file, the text, and what stands there instead."""
    text = (GAME / "faults.txt").read_text()
    lines = [line for line in text.splitlines() if not line.startswith("#")]
    groups = [group.strip("\n").split("\n") for group in "\n".join(lines).split("\n\n") if group.strip()]
    assert groups and all(len(group) == 4 for group in groups), "faults.txt has four lines for each fault"
    return groups


def compiled(compiler, flags, folder, sources):
    """Object files, beside their sources."""
    objects = [source.with_suffix(".o") for source in sources]
    include = f"-I{GAME.parents[1] / 'api'}"
    for source, target in zip(sources, objects):
        subprocess.run([compiler, *flags, "-std=c++17", "-O0", include, "-c", source, "-o", target], cwd=folder, check=True)
    return objects


def build_with(fault, folder, build, compiler, flags, objects):
    """The game with a fault, or without; what the fault does not touch is compiled already."""
    shutil.copytree(GAME, folder, ignore=shutil.ignore_patterns("tests"))
    touched = []
    if fault:
        title, name, old, new = fault
        text = (folder / name).read_text()
        assert text.count(old) == 1, f"{title}: {name} must have this text once: {old}"
        (folder / name).write_text(text.replace(old, new))
        touched = sorted(folder.glob("*.cpp")) if name.endswith(".h") else [folder / name]
    fresh = compiled(compiler, flags, folder, touched)
    kept = [each for each in objects if each.name not in {target.name for target in fresh}]
    program = folder / "fruit_machine"
    library = [f"-L{build}", "-lsorvaneusb", f"-Wl,-rpath,{build}", "-pthread"]
    subprocess.run([compiler, *flags, *fresh, *kept, "-o", program, *library], check=True)
    return program


def look_for(fault, folder, built, status, command):
    """What is to be said about the tests' result, empty when it is as it should be."""
    environment = {**os.environ, "FRUIT_MACHINE": str(build_with(fault, folder, *built))}
    pipe = subprocess.PIPE
    try:
        ran = subprocess.run(command, env=environment, stdin=subprocess.DEVNULL, stdout=pipe, stderr=subprocess.STDOUT,
                             text=True, timeout=ALLOWED)
    except subprocess.TimeoutExpired:
        return f"the tests did not end within {ALLOWED} s"
    return "" if ran.returncode == status else f"status {ran.returncode} instead of {status}\n{ran.stdout}"


def main():
    build, compiler, flags, status, *command = sys.argv[1:]
    with tempfile.TemporaryDirectory() as name, concurrent.futures.ThreadPoolExecutor(AT_ONCE) as pool:
        top = pathlib.Path(name)
        base = top / "base"
        shutil.copytree(GAME, base, ignore=shutil.ignore_patterns("tests"))
        objects = compiled(compiler, flags.split(), base, sorted(base.glob("*.cpp")))
        built = (build, compiler, flags.split(), objects)
        whole = pool.submit(look_for, None, top / "whole", built, 0, command)
        found = {
            fault[0]: pool.submit(look_for, fault, top / str(number), built, int(status), command)
            for number, fault in enumerate(faults())
        }
        if whole.result():
            print(f"FAILED without a fault: {whole.result()}")
            return 1
        missed = {title: result.result() for title, result in found.items() if result.result()}
    for title, why in missed.items():
        print(f"NOT FOUND: {title}: {why}")
    print(f"{len(found) - len(missed)} of {len(found)} faults found")
    return 1 if missed else 0


if __name__ == "__main__":
    sys.exit(main())
