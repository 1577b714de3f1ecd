"""Reads what callgrind writes, and the system calls that valgrind lists beside it."""
import collections
import pathlib
import re

# Of the one call through which old 32-bit programs reach all of SysV IPC, by its first argument; 4 is semop with a
# time limit, which semop is made of.
IPC = {"1": "semop", "2": "semget", "3": "semctl", "4": "semop", "21": "shmat", "22": "shmdt", "23": "shmget",
       "24": "shmctl"}
SAME = {"semtimedop": "semop", "newfstatat": "fstat", "fstat64": "fstat", "mmap2": "mmap", "fcntl64": "fcntl"}


class Dump:
    """One dump: the instructions of each function, told by object and name, and those below each call."""

    def __init__(self, path):
        self.label = ""
        self.total = 0  # where the source lines of inlined functions are known, callgrind lists some twice
        self.own = collections.Counter()
        self.below = collections.Counter()  # by caller and callee
        self.names = {}
        self._read(path.read_text().splitlines())

    def _name(self, kind, text):
        number, _, name = text.partition(" ")
        if name:
            self.names[kind, number] = name
        return self.names.get((kind, number), text)

    def _read(self, lines):
        here = callee_object = None
        object_name = callee = ""
        called = False
        for line in lines:
            key, separator, value = line.partition("=")
            if line.startswith("desc: Trigger: Client Request: "):
                self.label = line.rsplit(": ", 1)[1]
            elif line.startswith("summary: "):
                self.total = int(line.split()[1])
            elif key == "ob":
                object_name = self._name("ob", value)
            elif key == "fn":
                here = object_name, self._name("fn", value)
            elif key == "cob":
                callee_object = self._name("ob", value)
            elif key == "cfn":
                callee = callee_object or object_name, self._name("fn", value)
                callee_object = None
            elif key == "calls":
                called = True
            elif here and not separator and re.match(r"[-+*\d]", line):
                cost = int(line.split()[1])
                if called:
                    self.below[here, callee] += cost
                else:
                    self.own[here] += cost
                called = False

    def instructions(self, counts):
        """Of the functions whose object and name the function counts() accepts."""
        return sum(cost for (where, name), cost in self.own.items() if counts(where, name))

    def instructions_below(self, counts):
        """Of those functions and all that they call."""
        return sum(cost for (caller, callee), cost in self.below.items() if counts(*callee) and not counts(*caller))


def dumps(base):
    """Every dump of a run by its label."""
    parts = pathlib.Path(base).parent.glob(pathlib.Path(base).name + ".*")
    return {dump.label: dump for dump in map(Dump, parts)}


def system_calls(log):
    """Names and numbers of the system calls of the process that writes the marks BEGIN name and END into a log of
    --trace-syscalls=yes, between these marks."""
    marks, current, process = {}, None, None
    for line in pathlib.Path(log).read_text(errors="replace").splitlines():
        if mark := re.match(r"\*\*(\d+)\*\* (BEGIN|END) ?(.*)", line):
            process, word, name = mark.groups()
            current = marks.setdefault(name, collections.Counter()) if word == "BEGIN" else None
        call = re.match(r"SYSCALL\[(\d+),\d+\]\( *\d+\) (?:sys_)?(\w+) *\( *([^, )]*)", line)
        if current is not None and call and call.group(1) == process:
            name, first = call.group(2, 3)
            name = IPC.get(first, name) if name == "ipc" else SAME.get(name, name)
            current[name] += 1
    return marks
