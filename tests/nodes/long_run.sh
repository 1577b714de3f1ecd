#!/usr/bin/env bash
# 16 boards and 16 programs at once for a minute, without an error or a lost output change. Not part of the default run:
#   bash tests/nodes/long_run.sh BUILD WIDTH [SECONDS]
. "$(dirname "$0")/support.sh"
seconds=${3:-60}
writer=$build/tests/nodes/output_writer

field() { # NAME < STATE
    tr '{' '\n' | grep -o "\"$1\":\[*[0-9,]*" | tr -dc '0-9,\n' | sed 's/,$//'
}
exchanges() { "$sim" ctl state --json | field exchange_count; }

inside() {
    # What opening a board takes, so that each exchange after it is a change.
    for ((n = 0; n < 16; ++n)); do
        "$writer" $n $((n + 3)) 0 >/dev/null || check "opening board $n" 0 $?
    done
    mapfile -t opening < <(exchanges)
    local programs=()
    for ((n = 0; n < 16; ++n)); do
        "$writer" $n $((n + 3)) "${seconds}s" >"$folder/$n" &
        programs+=($!)
    done
    for ((n = 0; n < 16; ++n)); do
        wait "${programs[n]}"
        check "program $n" 0 $?
    done
    mapfile -t total < <(exchanges)
    mapfile -t lit < <("$sim" ctl state --json | field outputs_on_period)
    local all=0
    for ((n = 0; n < 16; ++n)); do
        check "exchanges of board $n" $((2 * opening[n] + $(cat "$folder/$n"))) "${total[n]}"
        check "lit on board $n" $((n + 3)) "${lit[n]}"
        all=$((all + $(cat "$folder/$n")))
    done
    echo "$all changes in $seconds seconds"
    finish
}

if [ -n "${4:-}" ]; then
    folder=$4
    inside
fi
need_nodes
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
models=(R20 R20s R35)
boards=()
for ((n = 0; n < 16; ++n)); do
    boards+=(--board "$n=${models[n % 3]},firmware=running")
done
"$sim" run "${boards[@]}" -- bash "$0" "$build" "$width" "$seconds" "$folder"
