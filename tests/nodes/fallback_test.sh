#!/usr/bin/env bash
# Without device nodes the boards live inside the program, where it takes the library that carries them.
. "$(dirname "$0")/support.sh"
need_width
[ -z "${SANITIZED:-}" ] || skip "the sanitizers' runtime cannot come second, behind a preloaded library"
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
printf 'input 9 on\nat 0.4s input 3 on\nat 9000s input 4 on\n' >"$folder/scenario"

preload=("$sim" run --how preload --board)
sees_input_3() {
    echo "ask 75 1"
    grep -qs "ok 5 8 2" "$folder/out"
}
for model in R20 R35; do
    rm -f "$folder/out"
    { printf 'open 0\nproduct 0\nother\npointers\n'; eventually sees_input_3; } |
        "${preload[@]}" "0=$model,firmware=running" --scenario "$folder/scenario" -- "$client" >"$folder/out" 2>"$folder/left"
    check "$model inside the program" "open;Sorvane $model Board;ENOTTY;refused;ok 5 8 2 0 0 0" \
        "$(grep -v 'ok 5 0 2 0 0 0' "$folder/out" | uniq | paste -sd';')"
    check "what was not reached is said" "sorvane-sim: $folder/scenario:3: not reached before the end" "$(cat "$folder/left")"
done
mkfifo "$folder/orders"
"${preload[@]}" 0=R35,firmware=running -- "$client" <"$folder/orders" >"$folder/out" &
run=$!
{
    eventually "$sim" ctl --run $run input 4 on >/dev/null 2>&1
    printf 'open 0\nask 75 1\n'
} >"$folder/orders"
wait
check "ctl reaches it" "open ok 5 16 0 0 0 0" "$(xargs <"$folder/out")"
check "a cabinet's board" "open Sorvane R35 Board" "$("$sim" run --how preload \
    --cabinet "$(dirname "$0")/../../examples/cabinets/fruit_machine.toml" -- "$client" <<<$'open 0\nproduct 0' | xargs)"
if [ "$width" -eq 64 ]; then
    # The shell has boards, too, and they are nobody's.
    output=$("${preload[@]}" 0=R35 -- bash -c "$sim ctl hopper 5 stock 20; exit \$?" 2>&1)
    check "ctl from inside is refused" 2 $?
    contains "ctl from inside is refused" "say --run" "$output"
fi
check "its status is passed on" 7 "$("${preload[@]}" 0=R35 -- "$client" <<<"exit 7" 2>/dev/null; echo $?)"
check "a program that is not there" 127 "$("${preload[@]}" 0=R35 -- /no/such/program 2>/dev/null; echo $?)"

cp "$client" "$folder/privileged" && chmod u+s "$folder/privileged"
# Just enough of a 32-bit program; this machine's perl is a 64-bit one.
perl -e 'print pack "C16 S2 L5 S6 L8", 0x7f, 0x45, 0x4c, 0x46, 1, 1, 1, (0) x 9, 2, 3, 1, 0, 52, 0, 0, 52, 32, 1, 0, 0, 0, 3, (0) x 7' \
    >"$folder/of_32_bits"
[ "$width" -eq 64 ] && other=$folder/of_32_bits || other=$(command -v perl)
for refused in "$build/tests/nodes/static_client" "$folder/privileged" "$other"; do
    output=$("${preload[@]}" 0=R35 -- "$refused" 2>&1 </dev/null)
    check "$refused takes no library" 125 $?
    contains "$refused takes no library" "no boards inside $refused" "$output"
done
contains "the other width" "--how node" "$output"

# An ordinary user who may not open /dev/fuse is told so in one line.
if [ "$(id -u)" -eq 0 ] && command -v setpriv >/dev/null && [ "$(stat -c %a /dev/fuse 2>/dev/null)" = 600 ] &&
    setpriv --reuid 65534 --regid 65534 --clear-groups test -x "$sim" 2>/dev/null; then
    user=(setpriv --reuid 65534 --regid 65534 --clear-groups)
    printf 'open 0\nask 75 1\n' |
        "${user[@]}" "$sim" run --board 0=R35,firmware=running -- "$client" >"$folder/out" 2>"$folder/complaint"
    check "it falls back" "open ok 5 0 0 0 0 0" "$(xargs <"$folder/out")"
    check "in one line" 1 "$(wc -l <"$folder/complaint")"
    contains "what to do" "chmod 666 /dev/fuse" "$(cat "$folder/complaint")"
fi

# Who asks for nodes and cannot have them gets no others, but the next step.
cat >"$folder/deny" <<'DENY'
my $filter = pack "SCCL" x 4, 0x20, 0, 0, 0, 0x15, 0, 1, shift, 0x06, 0, 0, 0x00050001, 0x06, 0, 0, 0x7fff0000;
syscall 157, 38, 1, 0, 0, 0;
syscall(157, 22, 2, pack "S x6 P", 4, $filter) == 0 and exec @ARGV;
DENY
no_nodes() { # NEXT_STEP PREPARATION, in front of the command
    local output
    output=$(unshare --mount sh -c "$2"' "$@"' sh "$sim" run --how node --board 0=R35 -- true 2>&1)
    check "$2" 125 $?
    contains "$2" "$1" "$output"
}
if [ -c /dev/fuse ]; then
    no_nodes "modprobe fuse" 'mount -t tmpfs none /dev;'
    no_nodes "mknod -m 666 /dev/fuse" 'mount --bind /dev/null /dev/fuse;'
    no_nodes "--cap-add SYS_ADMIN" "perl $folder/deny 165" # mount(2) of 64 bits
fi
finish
