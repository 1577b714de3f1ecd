#!/usr/bin/env bash
# Programs of the library on virtual boards: the examples, and two processes that share one board.
. "$(dirname "$0")/support.sh"
need_nodes
examples=$build/examples
folder=$(mktemp -d)
chmod 755 "$folder"
trap 'rm -rf "$folder"' EXIT
traces() {
    ls /tmp/R20SharedMemory /tmp/Sem_R20Mutex 2>/dev/null
    awk 'FNR > 1 { print $1, $2 }' /proc/sysvipc/shm /proc/sysvipc/sem
}
before=$(traces)

run() { timeout 100 "$sim" run "$@" 2>&1; }
board=R35,number=3,serial0=cctalk,hopper5=40,hopper10=40
for model in R20 R20s R35; do
    output=$(run --board "0=$model,number=3" -- "$examples/attract_mode")
    check "attract_mode on an $model" 0 $?
    contains "attract_mode on an $model" "Found an $model at full speed" "$output"
    contains "attract_mode on an $model" "board number 3" "$output"
done
for example in coin_and_hopper reels cctalk_acceptor lockdown; do
    run --board "0=$board,speed=high" -- "$examples/$example" >/dev/null
    check "$example" 0 $?
done

# An ordinary user, where /dev/fuse lets one in; root enters as that user. Somebody takes the name of a run of root's.
user=(setpriv --reuid 65534 --regid 65534 --clear-groups)
if [ "$(id -u)" -eq 0 ] && command -v setpriv >/dev/null && "${user[@]}" test -x "$sim" &&
    "${user[@]}" unshare --user true && mknod -m 666 "$folder/fuse" c 10 229; then
    mount --bind "$folder/fuse" /dev/fuse
    contains "an ordinary user" "Found an R35" "$(cd / && "${user[@]}" "$sim" run --how node --board 0=R35 -- "$examples/attract_mode" 2>&1)"
    contains "an ordinary user without permission" "Permission denied" \
        "$("${user[@]}" "$sim" run --how node --board 0=R35 -- sh -c 'chmod 0 /dev/Vexa_0; : </dev/Vexa_0' 2>&1)"
    "${user[@]}" "$sim" serve --board 0=R35,firmware=running >"$folder/served" & serving=$!
    eventually grep -qs "sorvane-sim enter" "$folder/served"
    check "root enters as the boards' user" "65534 opened" \
        "$("$sim" enter --run $serving -- sh -c 'exec 3<>/dev/Vexa_0 && echo $(id -u) opened' 2>&1)"
    "${user[@]}" perl -MIO::Socket::UNIX -e '
        my $name = "\0sorvane-sim/0/1";
        my @planted = IO::Socket::UNIX->new(Local => $name, Listen => 1);
        push @planted, IO::Socket::UNIX->new(Peer => $name) for 1 .. 2;  # as many as wait
        print "planted\n"; close STDOUT; sleep 120' >"$folder/planted" &
    stranger=$!
    eventually grep -qs planted "$folder/planted"
    SECONDS=0
    contains "root means its own runs" "of yours" "$("$sim" ctl input 3 on 2>&1)"
    check "a name that somebody else took" "" "$("$sim" ctl --run $serving input 3 on 2>&1)"
    check "it keeps nobody" yes "$([ $SECONDS -le 60 ] && echo yes)"
    kill $serving $stranger
    wait $serving $stranger 2>/dev/null
else
    echo "not tried: the boards of an ordinary user, for want of setpriv, user namespaces or the right to make a device"
fi

# Two processes switch an output each on one board, many times at once: neither may undo the other's.
check "two processes share a board" "0 0 [1,2]" "$(run --board 0=R35,firmware=running -- bash -c '
    '"$build"'/tests/nodes/output_writer 0 1 400 >/dev/null & first=$!
    '"$build"'/tests/nodes/output_writer 0 2 400 >/dev/null; second=$?
    wait $first
    echo $? $second $('"$sim"' ctl state --json | grep -o "\"outputs_on_period\":[^]]*]" | cut -d: -f2)')"

check "no key file, no SysV object remains" "$before" "$(traces)"
finish
