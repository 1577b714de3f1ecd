#!/usr/bin/env bash
# How a run begins and ends: statuses, signals, and that nothing is left behind.
. "$(dirname "$0")/support.sh"
need_nodes
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# Everything of a run has this word in its environment, processes that it leaves running included.
export SUPERVISION_TEST=$folder
left() {
    local file
    for file in /proc/[0-9]*/environ; do
        [ "$file" != "/proc/$$/environ" ] && grep -qzx "SUPERVISION_TEST=$folder" "$file" 2>/dev/null &&
            [ "$(readlink "${file%/*}/exe")" != "$(readlink /proc/$$/exe)" ] && tr '\0' ' ' <"${file%/*}/cmdline"
    done
    return 0
}
nothing_left() { [ -z "$(left)" ]; }
machine() { # what must be the same before and after
    cat /proc/self/mounts
    ls -d /dev/Vexa_* /dev/sorvane-sim /sys/class/Vexa /tmp/R20SharedMemory /tmp/Sem_R20Mutex 2>&1
    tail -n +2 /proc/sysvipc/shm /proc/sysvipc/sem
}
before=$(machine)

status_of() { # COMMAND...: its status, also as a signal's 128 + n
    "$@" >/dev/null 2>&1
    echo $?
}
run=("$sim" run --board 0=R35)
check "a status is passed on" 42 "$(status_of "${run[@]}" -- sh -c 'exit 42')"
check "a signal is passed on" 137 "$(status_of "${run[@]}" -- sh -c 'kill -KILL $$')"
check "a signal is a signal" "terminated by 15" \
    "$(perl -e 'system @ARGV; printf "terminated by %d", $? & 127' "${run[@]}" -- sh -c 'kill -TERM $$')"
check "a program that is not there" 127 "$(status_of "${run[@]}" -- /no/such/program)"
check "a program that may not be run" 126 "$(status_of "${run[@]}" -- /etc/passwd)"

surroundings='read -r l; echo "$PWD $(id -u) $l" $(cd /proc/self/fd && echo [0-9])'
check "working directory, user, input and descriptors stay" "$(cd / && echo line | bash -c "$surroundings" 7>&1)" \
    "$(cd / && echo line | "${run[@]}" -- bash -c "$surroundings" 7>&1)"
"${run[@]}" -- sh -c "printf 'open 0\nask 75 1\n' | $client >$folder/out; (exec 3>&1) 2>/dev/null || echo closed >>$folder/out" <&- >&-
check "closed input and output stay closed" "open status 67 closed" "$(xargs <"$folder/out")"
check "the machine's own devices are there" "yes" \
    "$("${run[@]}" -- bash -c 'exec 3<>/dev/null && [ -d /dev/pts ] && [ -c /dev/zero ] && ls /sys/class/tty >/dev/null && echo yes')"
check "a pipe ends when the program lets go of it" "end" \
    "$("${run[@]}" -- bash -c 'exec >/dev/null; sleep 3; echo late >'"$folder/late" | { cat; [ -e "$folder/late" ] || echo end; })"

# A signal reaches the program once, whichever way it comes.
cat >"$folder/counter" <<'COUNTER'
$SIG{$_} = do { my $name = $_; sub { syswrite STDOUT, "$name\n" } } for qw(TERM INT USR1 HUP);
$| = 1; print "ready\n"; my $end = time + 2; select undef, undef, undef, 0.1 while time < $end;
COUNTER
signals() { # HOW NUMBER_OF_LINES: sends by `HOW pid` to a run that is its group's leader
    setsid "${run[@]}" -- perl "$folder/counter" >"$folder/out" &
    local pid=$!
    eventually grep -qs ready "$folder/out"
    "$1" "$pid"
    wait "$pid" 2>/dev/null
    tail -n +2 "$folder/out" | sort | tr '\n' ' '
}
to_process() { kill -TERM "$1"; sleep 0.2; kill -INT "$1"; }
to_group() { kill -TERM -"$1"; sleep 0.2; kill -USR1 -"$1"; sleep 0.2; kill -USR1 "$1"; }
check "kill" "INT TERM " "$(signals to_process)"
check "kill of the group, then of the process" "TERM USR1 USR1 " "$(signals to_group)"
to_group_in_a_burst() {
    perl -e 'kill USR1 => -$ARGV[0] for 1 .. 50' "$1"
    sleep 0.4
    burst=$(grep -c USR1 "$folder/out")
    kill -USR1 "$1"
}
signals to_group_in_a_burst >/dev/null
check "a signal after a burst of them" $((burst + 1)) "$(grep -c USR1 "$folder/out")"
check "from the terminal" "ready INT" "$(
    { sleep 1; printf '\003'; sleep 1.5; } | script -qec "${run[*]} -- perl $folder/counter" /dev/null |
        tr -d '\r^C' | xargs)"
for n in 1 2 3 4 5 6 7 8 9 10; do
    "${run[@]}" -- sleep 20 &
    sleep "0.0$n"
    kill -TERM $!
    wait $! 2>/dev/null
    check "a signal during the start" 143 $?
done

"${run[@]}" -- sh -c "sleep 50 & setsid sleep 51 & (sleep 52 & exec setsid sh -c 'trap : TERM HUP INT; sleep 53; sleep 54') & exit 3"
check "the status of a program that leaves others running" 3 $?
check "they end with it" "" "$(left)"

# SIGKILL at any moment: everything goes by itself.
for round in $(seq 60); do
    "${run[@]}" -- sh -c 'sleep 50 & sleep 51' &
    sleep "$(printf '0.%03d' $((round * 2)))"
    kill -KILL $!
    wait $! 2>/dev/null
done
eventually nothing_left
check "nothing runs after SIGKILL" "" "$(left)"

# Also when it hits a program in the middle of an exchange.
for signal in KILL ABRT TERM; do
    "${run[@]}" -- bash -c '
        exec 2>/dev/null
        '"$sim"' ctl slow 30s
        (echo "open 0"; echo "ask 75 1") | '"$client"' & first=$!
        sleep 0.2
        (echo "open 0"; echo "ask 75 1") | '"$client"' & second=$!
        sleep 0.3
        kill -'$signal' $second
        wait $second
        kill -'$signal' $first
        wait' >/dev/null &
    SECONDS=0
    wait $!
    check "a caller killed by $signal in a slow exchange is gone at once" yes "$([ $SECONDS -le 2 ] && echo yes)"
done
eventually nothing_left
check "the machine is as it was" "$before" "$(machine)"
finish
