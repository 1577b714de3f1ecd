#!/usr/bin/env bash
# How a run begins and ends: statuses, signals, and that nothing is left behind.
. "$(dirname "$0")/support.sh"
need_nodes
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
export -f eventually

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
check "a pipe ends when the program lets go of it" "" \
    "$("${run[@]}" -- bash -c "exec >/dev/null; eventually [ -e $folder/end ] || touch $folder/late" | { cat; touch "$folder/end"; }
        ls "$folder/late" 2>/dev/null)"

# A signal reaches the program once, whichever way it comes. SIGPWR ends the program: of signals that wait, the lowest
# number is taken first, so all the others have come by then.
cat >"$folder/counter" <<'COUNTER'
my $end;
$SIG{$_} = do { my $name = $_; sub { syswrite STDOUT, "$name\n"; $end ||= $name eq "PWR" } } for qw(TERM INT USR1 PWR);
$| = 1; print "ready\n"; for (1 .. 1200) { last if $end; select undef, undef, undef, 0.1 }
COUNTER
signals() { # HOW: sends by `HOW pid` to a run that is its group's leader
    rm -f "$folder/out"
    setsid "${run[@]}" -- perl "$folder/counter" >"$folder/out" &
    local pid=$!
    eventually grep -qs ready "$folder/out"
    "$1" "$pid"
    kill -PWR "$pid"
    wait "$pid" 2>/dev/null
    sed '/ready/d; /PWR/d' "$folder/out" | sort | tr '\n' ' '
}
to_process() { kill -TERM "$1"; kill -INT "$1"; }
to_group() {
    kill -TERM -"$1"
    kill -USR1 -"$1"
    # Equal ones that wait become one, wherever they wait.
    eventually grep -q USR1 "$folder/out"
    eventually grep -q "ShdPnd:.0000000000000000" "/proc/$1/status"
    kill -USR1 "$1"
}
check "kill" "INT TERM " "$(signals to_process)"
check "kill of the group, then of the process" "TERM USR1 USR1 " "$(signals to_group)"
to_group_in_a_burst() {
    perl -e 'kill USR1 => -$ARGV[0] for 1 .. 50' "$1"
    kill -TERM "$1" # behind all of them
    eventually grep -q TERM "$folder/out"
    burst=$(grep -c USR1 "$folder/out")
    kill -USR1 "$1"
}
signals to_group_in_a_burst >/dev/null
check "a signal after a burst of them" $((burst + 1)) "$(grep -c USR1 "$folder/out")"
{
    eventually grep -qs ready "$folder/typed"
    printf '\003'
    eventually grep -qs INT "$folder/typed"
    kill -PWR "$(cat "$folder/pid")"
} | script -qec "sh -c 'echo \$\$ >$folder/pid; exec ${run[*]} -- perl $folder/counter'" /dev/null >"$folder/typed"
check "from the terminal" "ready INT PWR" "$(tr -d '\r^C' <"$folder/typed" | xargs)"
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
        '"$sim"' ctl slow 60s count 1
        (echo "open 0"; echo "ask 75 1") | '"$client"' & first=$!
        slow_one_has_begun() { '"$sim"' ctl state --json | grep -q "\"pending_faults\":0"; }
        eventually slow_one_has_begun
        (echo "open 0"; echo "ask 75 1") | '"$client"' & second=$!
        has_opened() { ls -l /proc/$second/fd | grep -q Vexa; }
        eventually has_opened
        kill -'$signal' $second
        wait $second
        kill -'$signal' $first
        wait' >/dev/null &
    SECONDS=0
    wait $!
    check "a caller killed by $signal in a slow exchange is gone at once" yes "$([ $SECONDS -le 30 ] && echo yes)"
done
eventually nothing_left
check "the machine is as it was" "$before" "$(machine)"
finish
