#!/usr/bin/python3
"""Runs every example of README.md and docs/*.md, from their text, against this build.

    scripts/isolated BUILD unshare --net scripts/check_examples.py BUILD

(in a network namespace of its own the runs of other programs cannot be mistaken for those of the examples).
An example is a fenced or an indented block, and its first line says what it is:

    ```cpp            the file that the next example compiles
    #!/bin/sh         a build server's script: run with each of GAMES it must end as told there
    # /etc/...        the text of a file of the machine, which is not run
    ```mermaid        a picture
    sorvane-sim ... [ how to call a command: its --help must know every option
    $ COMMAND         a session at a terminal: each command must succeed and say what stands beneath it, if anything
                      does; `...` stands for anything, 4711 for any number. `$ cat FILE`: a file that all examples find
    anything else     lines for a shell, which must succeed; scripts/NAME need only be there, for they run this test

All are run in one folder, which holds what the reader has: the examples and their programs, a game, and its tests.
"""
import contextlib
import os
import pathlib
import re
import select
import shutil
import signal
import subprocess
import sys
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parents[1]
GAMES = [  # a game, and how a build server's script ends that runs it
    ("echo 'says {what it likes'; ./lamp; exec sleep 60", 0),
    ("./lamp; exit 3", 123),
    ("exit 0", 123),
]
CMAKE = """#!/bin/sh
# What is tested has been configured and built.
case $1 in
--preset) test -e "build/$2" ;;
--build) test -e "build/$3" ;;
*) exec %s "$@" ;;
esac
"""
ELF_CLASS_64 = 2
MARK = "@done"
failures = []


def fail(place, what):
    failures.append(place)
    print(f"FAILED: {place}: {what}")


def examples(path):
    """Place, language and lines of each block."""
    lines = path.read_text().splitlines() + [""]
    at = 0
    while at < len(lines):
        begin = at
        place = f"{path.relative_to(ROOT)}:{begin + 1}"
        at += 1
        if lines[begin].startswith("```"):
            while not lines[at].startswith("```"):
                at += 1
            yield place, lines[begin][3:], lines[begin + 1 : at]
            at += 1
        elif lines[begin].startswith("    ") and not lines[begin - 1]:
            while at < len(lines) and (lines[at].startswith("    ") or not lines[at]):
                at += 1
            yield place, "", [line[4:] for line in lines[begin:at]]


def steps(lines):
    """The commands of a session, each with what is shown beneath it."""
    for step in re.split(r"^\$ ", "\n".join(lines), flags=re.M)[1:]:
        command, _, shown = step.partition("\n")
        yield command, shown.strip()


def matches(shown, output):
    parts = [re.escape(part).replace("4711", r"\d+") for part in re.split(r"\s*\.\.\.\s*", shown)]
    return not shown or re.fullmatch(".*".join(parts), output.strip(), re.S)


class Session:
    """A shell whose commands may start further shells, as at a terminal."""

    def __init__(self, folder):
        pipe = subprocess.PIPE
        self.shell = subprocess.Popen(
            ["bash"], cwd=folder, process_group=0, stdin=pipe, stdout=pipe, stderr=subprocess.STDOUT
        )

    def run(self, command, shown):
        """What the command did not do as it should; empty when all is well."""
        self.shell.stdin.write(f"{command}\necho {MARK} $?\n".encode())
        self.shell.stdin.flush()
        output, deadline = "", time.monotonic() + 30
        while True:
            status = re.search(rf"{MARK} (\d+)\n", output)
            said = output.replace(status[0], "") if status else output
            if status and status[1] != "0":
                return f"{command}: status {status[1]}\n{said}"
            if status and matches(shown, said):
                return ""
            if not select.select([self.shell.stdout], [], [], max(0, deadline - time.monotonic()))[0]:
                return f"{command}: expected\n{shown}\nand it said\n{said}"
            more = os.read(self.shell.stdout.fileno(), 65536).decode()
            if not more:
                return f"{command}: it ended the session and said\n{said}"
            output += more

    def end(self):
        self.shell.stdin.close()
        try:
            self.shell.wait(timeout=10)
        finally:
            with contextlib.suppress(ProcessLookupError):
                os.killpg(self.shell.pid, signal.SIGKILL)


def run_session(place, lines, folder):
    session = Session(folder)
    for command, shown in steps(lines):
        if fault := session.run(command, shown):
            fail(place, fault)
            break
    session.end()


def run(place, words, folder, expected=0):
    ended = subprocess.run(words, cwd=folder, stdin=subprocess.DEVNULL, capture_output=True, text=True, timeout=60)
    if ended.returncode != expected:
        fail(place, f"status {ended.returncode}, expected {expected}\n{ended.stdout}{ended.stderr}")


def write_program(path, text):
    path.write_text(text)
    path.chmod(0o755)


def run_script(place, lines, folder):
    write_program(folder / "script", "\n".join(lines) + "\n")
    for game, status in GAMES:
        write_program(folder / "game", f"#!/bin/sh\n{game}\n")
        run(f"{place}, with a game that does: {game}", ["./script"], folder, status)


def check_call(place, lines):
    call = " ".join(lines)
    known = subprocess.run(call.split()[:2] + ["--help"], capture_output=True, text=True).stdout
    for option in re.findall(r"--\w[\w-]*", call):
        if option not in known:
            fail(place, f"{' '.join(call.split()[:2])} --help does not know {option}")


def run_commands(place, lines, folder):
    commands = [line for line in lines if not line.startswith("scripts/")]
    run(place, ["bash", "-ec", "\n".join(commands)], folder)


def run_example(place, language, lines, folder, source):
    if language not in ("", "sh", "console"):
        fail(place, f"an example in {language}, which nobody runs")
    elif lines[0].startswith("$ "):
        run_session(place, lines, folder)
    elif lines[0].startswith("#!/bin/sh"):
        run_script(place, lines, folder)
    elif re.match(r"sorvane(-sim)? \w+ .*\[", lines[0]):
        check_call(place, lines)
    elif not lines[0].startswith("# /etc/"):
        for name in re.findall(r"\b(\w+\.cpp)\b", "\n".join(lines)):
            (folder / name).write_text(source)
        run_commands(place, lines, folder)


def check_names(path):
    """Scripts and pages that the text refers to."""
    text = path.read_text()
    names = {ROOT / name for name in re.findall(r"\bscripts/\w+(?:\.py)?", text)}
    names |= {path.parent / name for name in re.findall(r"\]\(([^)#:]+)\)", text)}
    for name in sorted(names):
        if not name.exists():
            fail(path.relative_to(ROOT), f"{name} is not there")


def prepare(folder, build):
    """The reader's folder, and the commands in the PATH."""
    (folder / "bin").mkdir()
    write_program(folder / "bin/cmake", CMAKE % shutil.which("cmake"))
    (folder / "bin/sorvane-sim").symlink_to(build / "sim/command/sorvane-sim")
    (folder / "bin/sorvane").symlink_to(build / "tools/sorvane")
    (folder / "examples").symlink_to(ROOT / "examples")
    os.environ["PATH"] = f"{folder}/bin:{os.environ['PATH']}"
    os.environ["PYTHONPATH"] = str(ROOT / "python")
    os.environ["PYTHONDONTWRITEBYTECODE"] = "1"
    (folder / "build").mkdir()
    for preset in ("i386", "amd64"):
        (folder / "build" / preset).symlink_to(build)
    for game in ("attract_mode", "fruit_machine"):
        (folder / game).symlink_to(build / "examples" / game)
    write_program(folder / "game_tests", "#!/bin/sh\nexec ./attract_mode\n")


def skip_unless_possible(build):
    for reason, words in [
        ("this machine does not run programs of this width", [build / "tests/nodes/node_client"]),
        ("no device nodes here", "sorvane-sim run --how node --board 0=R35 -- true".split()),
        ("python3-pytest is missing", ["/usr/bin/python3", "-m", "pytest", "--version"]),
    ]:
        there = shutil.which(words[0])
        tried = there and subprocess.run(words, stdin=subprocess.DEVNULL, capture_output=True, text=True)
        if not tried or tried.returncode != 0:
            print(f"SKIPPED: {reason}{': ' + tried.stderr if tried else ''}")
            sys.exit(77)


def all_examples(names):
    """Those of all pages, with the names of this build."""
    for page in [ROOT / "README.md", *sorted((ROOT / "docs").glob("*.md"))]:
        check_names(page)
        for place, language, lines in examples(page):
            for old, new in names.items():
                lines = [line.replace(old, new) for line in lines]
            yield place, language, lines


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        prepare(folder, build)
        skip_unless_possible(build)
        # The texts name the 32-bit build; in a 64-bit one its names take their place.
        names = {"/opt/sorvane": f"{folder}/opt/sorvane"}
        if (build / "libsorvaneusb.so").read_bytes()[4] == ELF_CLASS_64:
            names |= {"-m32": "-m64", "lib/i386-linux-gnu": "lib/x86_64-linux-gnu"}
        found = list(all_examples(names))
        for _, _, lines in found:
            for command, shown in steps(lines):
                if command.startswith("cat "):
                    (folder / command.split()[1]).write_text(shown + "\n")
        source = ""
        for place, language, lines in found:
            if language == "cpp":
                source = "\n".join(lines) + "\n"
            elif language != "mermaid":
                run_example(place, language, lines, folder, source)
    print(f"{len(found)} examples, {len(failures)} failures")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
