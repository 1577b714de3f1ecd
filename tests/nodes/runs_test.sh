#!/usr/bin/env bash
# Runs by name, in the background and over several programs, the names of their parts, and what is kept of them.
. "$(dirname "$0")/support.sh"
need_nodes
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
cd "$folder" || exit 1
cat >two.toml <<END
version = 1
[[board]]
name = "left"
device = 0
model = "R20"
[[board]]
name = "right"
device = 1
model = "R35"
hoppers = { tube = 5 }
serial0 = "cctalk"
eeprom_file = "kept.bin"
END

# The pipe of its output ends although the run stays, and nobody waits for a zombie.
check "in the background" "bench" "$("$sim" serve --background --name bench --cabinet two.toml)"
check "no zombie" "" "$(ps -eo stat=,comm= | grep '^Z')"
check "its name is taken" 2 "$("$sim" serve --name bench --board 0=R20 2>taken; echo $?)"
contains "its name is taken" "sorvane-sim stop bench" "$(cat taken)"
"$sim" serve --board 0=R20 >/dev/null & other=$!
eventually "$sim" ctl --run $other state >/dev/null 2>&1
contains "which run" "bench" "$("$sim" ctl state 2>&1)"
listed=$("$sim" list)
contains "list" "0=R20 (left), 1=R35 (right)" "$listed"
contains "list" "$other" "$listed"
check "stop" 0 "$("$sim" stop $other; echo $?)"
wait $other
check "it ended well" 0 $?

ctl() { "$sim" ctl "$@" 2>&1; }
check "a command by name" "" "$(ctl "hopper tube" stock 3)"
contains "what it did" "input 5: stock 3" "$(ctl state)"

# A client that asks nothing, or nothing sensible, or never reads, keeps no other from the boards.
cat >talk.py <<'END'
import json, os, socket, sys
def connect():
    connection = socket.socket(socket.AF_UNIX)
    connection.connect("\0" + sys.argv[1])
    return connection, connection.makefile("rwb")
held = [connect() for _ in range(31)]
ours, lines = connect()
for line in b'{', b'[]', b'{"sorvane":2,"words":[]}', b'{"sorvane":1}', b'{"sorvane":1,"words":[1]}', b'\xff', \
        b'{"sorvane":1,"words":["eeprom","load","x"],"content":"0"}', b'{"sorvane":1,"words":["dance\\u0000"]}', \
        b'{"sorvane":1,"words":["--board","1","input","3","on"]}':
    lines.write(line + b'\n')
lines.flush()
print(*[json.loads(lines.readline())["status"] for _ in range(9)])
print(json.loads(connect()[1].readline())["error"][:30])
END
address=$(sed -n 's/.*@\(sorvane-sim\/.*bench\)$/\1/p' /proc/net/unix | head -1)
check "requests" "2 2 2 2 2 2 2 2 0
others hold 32 connections to " "$(/usr/bin/python3 talk.py "$address")"

# Memories: to a file and back, from one run to the next.
ctl --board right eeprom dump one.bin
check "a dump" 32768 "$(wc -c <one.bin)"
printf '\x2a%.0s' $(seq 16384) >page.bin
ctl --board right sram load page.bin --page 3
check "a page" "" "$(ctl --board right sram dump - --page 3 | cmp - page.bin)"
head -c 32768 /dev/zero | tr '\0' '\5' >fives.bin
contains "another size" "32768, as in the board" "$(ctl --board right eeprom load page.bin)"
ctl --board right eeprom load fives.bin
check "not written before the power is lost" 1 "$([ -e kept.bin ]; echo $?)"
ctl --board right unplug
check "written at power loss" "" "$(cmp kept.bin fives.bin 2>&1)"
ctl --board right plug
ctl --board right eeprom load - <one.bin
check "stop by name" 0 "$("$sim" stop bench; echo $?)"
check "written at the end" "kept.bin" "$(cmp kept.bin one.bin 2>&1; echo kept*)"
cp fives.bin kept.bin
echo "eeprom load page.bin" >"$folder/scenario"
contains "a file of a scenario lies beside it" "32768, as in the board" \
    "$(cd /; "$sim" run --board 0=R35 --scenario "$folder/scenario" -- true 2>&1)"
for how in node preload; do
    mkfifo $how
    "$sim" run --how $how --board 1=R35,eeprom_file=kept.bin --name again -- "$client" <$how >/dev/null &
    exec 9>$how
    eventually "$sim" ctl --run again eeprom dump $how.bin >/dev/null 2>&1
    contains "a run of its name, $how" "$client" "$("$sim" list | grep '^again')"
    exec 9>&-
    wait $!
    check "the next run, $how" "" "$(cmp $how.bin fives.bin 2>&1)"
done

# Whoever holds the input's other end ends the run, however it goes.
mkfifo input
"$sim" serve --background --end-with-input --name held --board 0=R35 <input >/dev/null &
exec 9>input
eventually "$sim" ctl --run held state >/dev/null 2>&1
check "it is up" 0 "$("$sim" ctl --run held unplug; echo $?)"
exec 9>&-
gone() { ! "$sim" ctl --run held state >/dev/null 2>&1; }
check "it ends with its input" 0 "$(eventually gone; echo $?)"
finish
