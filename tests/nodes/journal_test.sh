#!/usr/bin/env bash
# The journal from outside: ctl events, the summary and the record of a run.
. "$(dirname "$0")/support.sh"
need_nodes
root=$(dirname "$0")/../..
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
sed 's/^model = .*/&\nfirmware = "running"/' "$root/examples/cabinets/fruit_machine.toml" >"$folder/machine.toml"
machine=(--cabinet "$folder/machine.toml")

# ctl events: once, from a place on, by part, and as they come.
run=$("$sim" serve --background "${machine[@]}")
"$sim" ctl events --follow >"$folder/followed" &
follower=$!
"$sim" ctl hopper main_hopper jam
"$sim" ctl coin coin_1
check "ctl events" "running off stock empty jammed in on" "$("$sim" ctl events | sed 's/.* = .*/stock/; s/.* //' | head -7 | xargs)"
check "ctl events --since --kind" 1 "$("$sim" ctl events --since 4 --kind hopper | wc -l)"
contains "ctl events --part" "coin coin_1 (2) in" "$("$sim" ctl events --part coin_1)"
"$sim" ctl events --json >"$folder/events.jsonl"
eventually grep -q "coin_1 (2) off" "$folder/followed"
check "what was followed" "$("$sim" ctl events)" "$(cat "$folder/followed")"

# A wait is woken by what it waits for, holds nobody up, and ends with whoever waits, or with the run.
"$sim" ctl wait "hopper main_hopper stock = 7" within 60s &
waiter=$!
timeout 0.3 "$sim" ctl wait input start on within 60s
"$sim" ctl hopper main_hopper stock 7
wait $waiter
check "a wait for what comes" 0 $?
"$sim" ctl wait "input start pulse" 2>/dev/null
check "a wait for what is no condition" 2 $?
output=$("$sim" ctl wait not input start off within 10ms --since 4 2>&1)
check "a wait in vain" 3 $?
contains "a wait in vain" "now: input start (8) off" "$output"
"$sim" ctl wait meter games = 7 2>/dev/null &
waiter=$!
"$sim" ctl expect hopper main_hopper stock = 7
check "expect" 0 $?
"$sim" stop "$run"
wait $waiter
check "a wait beyond the end of the run" 1 $?
wait $follower

# A record is written as it goes; a summary tells what was asked and what was left.
for how in node preload; do
    output=$(printf 'open 0\nask 77 1 0 32 0 0 0 0 0 0 0 0\nask 75 1\nask 75 1 9\n' | "$sim" run --how $how --summary \
        --record "$folder/$how.jsonl" "${machine[@]}" -- "$client" 2>&1)
    contains "summary, $how" "outputs on: win_lamp (13)" "$output"
    contains "summary, $how" "  2  GetInputs (1 refused)" "$output"
    contains "record, $how" '"text":"output win_lamp (13) on"' "$(cat "$folder/$how.jsonl")"
done
{ "$sim" run --record "$folder/killed.jsonl" "${machine[@]}" -- sh -c 'kill -KILL $$'; } 2>/dev/null
check "a record of a killed program" 5 "$(wc -l <"$folder/killed.jsonl")"
output=$("$sim" run --record "$folder/none/such" "${machine[@]}" -- sh -c 'echo started' 2>&1)
check "a record that cannot be" 125 $?
contains "a record that cannot be" "No such file" "$output"
# A build has the library of its own width, and the machine's shell is a 64-bit program.
if [ "$width" = 64 ]; then
    output=$("$sim" run --how preload --summary "${machine[@]}" -- sh -c "$client </dev/null; true" 2>&1)
    contains "a summary of several processes" "of one process" "$output"
fi

# Every line is as the schema says.
/usr/bin/python3 - "$root/docs/journal.schema.json" "$folder"/*.jsonl <<'PYTHON'
import json, sys
import jsonschema
check = jsonschema.Draft202012Validator(json.load(open(sys.argv[1])))
for name in sys.argv[2:]:
    for line in open(name):
        check.validate(json.loads(line))
PYTHON
check "the schema" 0 $?
finish
