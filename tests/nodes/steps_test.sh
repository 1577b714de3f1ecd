#!/usr/bin/env bash
# Steps: what a program did is judged one after the other, and the run ends accordingly.
. "$(dirname "$0")/support.sh"
need_nodes
root=$(dirname "$0")/../..
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
lamp='open 0
ask 77 1 0 32 0 0 0 0 0 0 0 0
ask 77 1 0 0 0 0 0 0 32 0 0 0'

# Each step in quotes; the client's orders come from its input. What is told and the status are expected.
play() { # STATUS TOLD ORDERS STEP...
    local expected=$1 told=$2 orders=$3 how output steps=() step
    shift 3
    for step; do
        steps+=(--steps "$step")
    done
    for how in $ways; do
        output=$(eval "$orders" | "$sim" run --how $how --grace 200ms --board 0=R35,firmware=running "${steps[@]}" \
            -- $program 2>&1)
        check "$how: $*" "$expected" $?
        contains "$how: $*" "$told" "$output"
    done
}
ways="node preload"
program=$client
play 0 "ok 0" 'echo "$lamp"' "wait output 13 on" "wait output 13 off"
play 0 "ok 0" 'echo "$lamp"' "wait operation ModifyOutputs" "at end expect output 13 off" "never output 14 lit"
play 123 '--steps:2: "output 14 on" did not hold before the program ended' 'echo "$lamp"' "wait plugged" "wait output 14 on"
play 123 '--steps:1: "output 13 on" did not hold in time' 'sleep 1' "wait output 13 on within 50ms"
play 123 '--steps:1: "output 13 lit" has held' 'sleep 0.3; echo "$lamp"; sleep 1' "never output 13 lit"
play 123 '--steps:2: at the end "output 13 on" does not hold' 'echo "$lamp"' "wait plugged" "at end expect output 13 on"
play 123 '--steps:2: the program ended before it was reached' 'echo "$lamp"' "wait plugged" "pause 20s"
play 0 "" 'sleep 1' "unplug" "never output 13 off" "pause 50ms" "stop"
play 0 "" 'sleep 1' "stop"
# A build has the library of its own width, and the machine's programs have 64 bits.
[ "$width" = 64 ] || ways=node
program=false
play 1 "" true "wait plugged"
program="sh $folder/deaf"
echo 'trap "" TERM; while :; do sleep 0.1; done' >"$folder/deaf"
for how in $ways; do
    "$sim" run --how $how --grace 200ms --board 0=R35 --steps stop -- $program 2>/dev/null
    check "a program that does not end, $how" 0 $?
done

# Mistakes are told before the program starts, with their place.
mistake() { # TOLD LINE...
    local told=$1 output
    shift
    printf '%s\n' "$@" >"$folder/steps.txt"
    output=$("$sim" run --board 0=R20 --scenario "$folder/steps.txt" -- sh -c 'echo started' 2>&1)
    check "$*" 2 $?
    contains "$*" "sorvane-sim: $folder/steps.txt:$#: " "$output"
    contains "$*" "$told" "$output"
}
mistake "is a step" "wait plugged"
mistake "twice" "steps" "steps"
mistake "no times" "steps" "at 1s plug"
mistake "nothing is reached" "steps" "stop" "plug"
mistake "at end expect" "at end plug"
mistake "allowed are 0 to 37" "steps" "never output 38 on"
mistake "TERM, INT" "steps" "stop NOW"
mistake "ends at 32767" "steps" "wait eeprom 32767 = 1 2"
mistake "has no name" "at end expect meter 8 = 2"

# The fruit machine's own steps.
SORVANE_SIM=$sim FRUIT_MACHINE=$build/examples/fruit_machine "$root/scripts/play_steps" >"$folder/played" 2>&1
check "the steps of the fruit machine: $(grep -A5 'txt:\|lost' "$folder/played")" 0 $?
finish
