#!/usr/bin/env bash
# Without device nodes the boards live inside the program, where it takes the library that carries them.
. "$(dirname "$0")/support.sh"
need_width
[ -z "${SANITIZED:-}" ] || skip "the sanitizers' runtime cannot come second, behind a preloaded library"
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
printf 'input 9 on\nat 0.4s input 3 on\n' >"$folder/scenario"

talk() { # ORDER...: a program that asks, waits and asks again
    { printf 'open 0\nproduct 0\nask 75 1\nother\npointers\n'; sleep 2; printf 'ask 75 1\n'; } |
        "$@" -- "$client" | tr '\n' ';'
}
for model in R20 R35; do
    check "$model inside the program" \
        "open;Sorvane $model Board;ok 5 0 2 0 0 0;ENOTTY;refused;ok 5 8 2 0 0 0;" \
        "$(talk "$sim" run --how preload --board "0=$model,firmware=running" --scenario "$folder/scenario")"
done
{ printf 'open 0\n'; sleep 3; printf 'ask 75 1\n'; } |
    "$sim" run --how preload --board 0=R35,firmware=running -- "$client" >"$folder/out" &
run=$!
eventually "$sim" ctl --run $run input 4 on >/dev/null 2>&1
wait
check "ctl reaches it" "open ok 5 16 0 0 0 0" "$(xargs <"$folder/out")"
check "a cabinet's board" "open Sorvane R35 Board" "$("$sim" run --how preload \
    --cabinet "$(dirname "$0")/../../examples/cabinets/fruit_machine.toml" -- "$client" <<<$'open 0\nproduct 0' | xargs)"
check "its status is passed on" 7 "$("$sim" run --how preload -- "$client" <<<"exit 7" 2>/dev/null; echo $?)"
check "a program that is not there" 127 "$("$sim" run --how preload -- /no/such/program 2>/dev/null; echo $?)"

cp "$client" "$folder/privileged" && chmod u+s "$folder/privileged"
for refused in "$build/tests/nodes/static_client" "$folder/privileged"; do
    output=$("$sim" run --how preload --board 0=R35 -- "$refused" 2>&1 </dev/null)
    check "$refused takes no library" 125 $?
    contains "$refused takes no library" "no boards inside $refused" "$output"
done

# An ordinary user who may not open /dev/fuse is told so in one line.
if [ "$(id -u)" -eq 0 ] && command -v setpriv >/dev/null && [ "$(stat -c %a /dev/fuse 2>/dev/null)" = 600 ] &&
    setpriv --reuid 65534 --regid 65534 --clear-groups test -x "$sim" 2>/dev/null; then
    user=(setpriv --reuid 65534 --regid 65534 --clear-groups)
    printf 'open 0\nask 75 1\n' |
        "${user[@]}" "$sim" run --board 0=R35,firmware=running -- "$client" >"$folder/out" 2>"$folder/complaint"
    check "it falls back" "open ok 5 0 0 0 0 0" "$(xargs <"$folder/out")"
    check "in one line" 1 "$(wc -l <"$folder/complaint")"
    contains "what is missing" /dev/fuse "$(cat "$folder/complaint")"
    check "it does not fall back when nodes are asked for" 125 \
        "$("${user[@]}" "$sim" run --how node --board 0=R35 -- true 2>/dev/null; echo $?)"
fi
finish
