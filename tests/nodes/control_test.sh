#!/usr/bin/env bash
# Words: options, commands, scenarios, and the state they lead to.
. "$(dirname "$0")/support.sh"

# Every mistake gives status 2 and names what is allowed.
mistake() { # ALLOWED ARGUMENT...
    local allowed=$1 output
    shift
    output=$("$sim" "$@" 2>&1)
    check "sorvane-sim $*" 2 $?
    contains "sorvane-sim $*" "$allowed" "$output"
}
machine=$(dirname "$0")/../../examples/cabinets/fruit_machine.toml
mistake "run" fly
mistake "--board" run --boards 0=R35 -- true
mistake "PROGRAM" run --board 0=R35
mistake "PROGRAM" enter
mistake "--board 0=R35" run -- true
mistake "--board 0=R35" serve
mistake "sorvane-sim serve --board" ctl state
mistake "sorvane-sim serve --board" enter --run 4711 -- true
mistake "N=MODEL" run --board R35 -- true
mistake "0 to 15" run --board 16=R35 -- true
mistake "R20, R20s, R35" run --board 0=R36 -- true
mistake "R20, R20s, R35" run --board 0= -- true
mistake "one for each number" run --board 0=R35 --board 0=R20 -- true
mistake "speed, number, eeprom" run --board 0=R35,colour=red -- true
mistake "speed, number, eeprom" run --board 0=R35, -- true
mistake "speed=full|high" run --board 0=R35,speed= -- true
mistake "high, full" run --board 0=R35,speed=low -- true
mistake "once" run --board 0=R35,number=1,number=1 -- true
mistake "0 to 7" run --board 0=R35,number=8 -- true
mistake "24LC512" run --board 0=R35,eeprom=24LC3 -- true
mistake "loopback" run --board 0=R35,serial0=mouse -- true
mistake "0 to 1" run --board 0=R35,serial2=cctalk -- true
mistake "0 to 32" run --board 0=R35,hopper33=1 -- true
mistake "on, off" run --board 0=R35,input9=high -- true
mistake "No such file" run --cabinet /none -- true
mistake "one for each number" serve --cabinet "$machine" --board 0=R20
mistake "run and enter" cabinet check "$machine" -- true
mistake "FILE is required" cabinet check
mistake "R20,R20s,R35" cabinet new R36
mistake "node, preload, auto" run --board 0=R35 --how maybe -- true
mistake "--share-ipc" run --private-ipc --share-ipc -- true
mistake "0 to 37" run --board 0=R35,hopper5=1@38 -- true
mistake "COINS[@OUTPUT]" run --board 0=R35,hopper5=1@2@3 -- true
mistake "once" run --board 0=R35,hopper5=1,hopper05=2 -- true
mistake "private-ipc" run --private-ipc=false --board 0=R35 -- true
mistake "No such file" run --board 0=R35 --scenario "" -- true
mistake "cannot be read" run --board 0=R35 --scenario /tmp -- true
mistake "regular file" run --board 0=R35 --how preload --scenario /dev/null -- true
mistake "run and enter" serve --board 0=R35 -- true
mistake "a letter, then" serve --board 0=R35 --name 0bench
mistake "holds no memory" run --board 0=R35,eeprom_file=/dev/null -- true
mistake "65536, as in the board" run --board 0=R20,sram_file=$machine -- true
mistake "one file for each" run --board 0=R20,sram_file=/tmp/same,eeprom_file=/tmp/same -- true
mistake "in a folder" run --board 0=R20,sram_file=/none/none -- true
mistake "run and enter" ctl unplug -- plug
mistake "there is no run" ctl --run "" unplug
mistake "0 to 15" ctl --board "" unplug
mistake "1 to 133" ctl fail ioctl 38
mistake "once" ctl fail ioctl count 2 count 3
mistake "input, coin, hopper" ctl
mistake "input, coin, hopper" ctl dance
mistake "0 to 15" ctl --board 16 unplug
mistake "on, off, pulse" ctl input 3 blink
mistake "0 to 32" ctl input 33 on
mistake "0 to 32" ctl input "" on
mistake "input PART on|off|pulse" ctl input 3 on off
mistake "jam" ctl hopper 5
mistake "open, close" ctl switch shut
mistake "fail, replace" ctl battery
mistake "0 to 64" ctl sram dump - --page 65
mistake "a file's name" ctl eeprom load
mistake "1.5s or 20ms" ctl slow 20
mistake "1.5s or 20ms" ctl slow -1s
mistake "\\xHH" ctl serial 0 send 'a\q'
mistake "0 to 255" ctl spi reply 256
mistake "ioctl [ERRNO]" ctl fail sideways
mistake "count N" ctl fail ioctl twice
mistake "1 to 1000000" ctl fail ioctl count 0
mistake "state [--json]" ctl state --xml
mistake "nothing is allowed behind it" ctl input 3 on --follow

for command in "" run serve enter ctl "ctl input"; do
    output=$("$sim" $command --help 2>&1)
    check "$command --help" 0 $?
    contains "$command --help" Usage "$output"
    check "$command --version" "sorvane-sim" "$("$sim" $command --version | cut -d' ' -f1)"
done

need_nodes
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

"$sim" cabinet new R20 >"$folder/cabinet"
check "a new cabinet" "$folder/cabinet: no mistakes; boards: 1, parts: 15" "$("$sim" cabinet check "$folder/cabinet")"
echo "side_door = 8" >>"$folder/cabinet"
check "a mistake" 1 "$("$sim" cabinet check "$folder/cabinet" >"$folder/out" 2>&1; echo $?)"
contains "a mistake" "$folder/cabinet:$(wc -l <"$folder/cabinet"): " "$(cat "$folder/out")"
state=$("$sim" run --cabinet "$machine" --board 3=R20 -- "$sim" ctl state)
contains "a cabinet's board" "stock 20" "$state"
contains "a board beside the cabinet" "Vexa_3  R20" "$state"

scenario_mistake() { # LINE PART SCENARIO: reported with its line, before the program starts
    local output
    printf "$3" >"$folder/scenario"
    output=$("$sim" run --board 0=R35 --scenario "$folder/scenario" -- echo started 2>&1)
    check "scenario $3" 2 $?
    contains "scenario $3" "$folder/scenario:$1: " "$output"
    contains "scenario $3" "$2" "$output"
    case $output in *started*) check "scenario $3" "no start" "$output" ;; esac
}
scenario_mistake 1 "on, off, pulse" 'input 3\n'
scenario_mistake 3 "1.5s or 20ms" '# coins\n\nat soon coin 3\n'
scenario_mistake 2 "allowed: 0" 'coin 1\nat 2s --board 1 coin 3\n'
scenario_mistake 1 "only an R20 echoes" 'at 5s fail echo\n'
scenario_mistake 1 "quote" 'serial 0 send "abc\n'
scenario_mistake 1 "hopper 5 stock" 'hopper 5 jam\n'
check "a scenario that is not there" 2 "$("$sim" run --board 0=R35 --scenario "$folder/none" -- true 2>/dev/null; echo $?)"

cat >"$folder/scenario" <<'SCENARIO'
at 1.5s input 4 on      # behind the next one in time
input 1 on
at 0.5s --board 0 input 2 on
serial 0 send "a # b\x00\\"  # "
at 9000s input 5 on
SCENARIO
centiseconds='now() { read -r up _ </proc/uptime; echo $((10#${up/./})); }'
eval "$centiseconds"
started=$(now)
# What input is on and how long after the start it was seen, until input 4 is.
"$sim" run --board 0=R35,firmware=running --scenario "$folder/scenario" -- bash -c "$centiseconds"'
    of() { '"$sim"' ctl state --json | grep -o "\"$1\":[^]}]*" | tr -dc "0-9,\n" | head -1; }
    until [[ $inputs == *4* ]]; do inputs=$(of inputs); echo $inputs $(($(now) - '"$started"')); done
    of waiting | cut -d, -f1' >"$folder/seen" 2>"$folder/left"
check "a scenario keeps to its times" "" "$(awk '!/^1/ && !/^7$/ || $1 ~ /2/ && $2 < 49 || $1 ~ /4/ && $2 < 149' "$folder/seen")"
check "a scenario comes to its end" "1,2,4 7" "$(tail -2 "$folder/seen" | cut -d' ' -f1 | xargs)"
check "what was not reached is said" "sorvane-sim: $folder/scenario:5: not reached before the end" "$(cat "$folder/left")"

# Commands change what they say, seen by the program or in the state.
cat >"$folder/inside" <<'INSIDE'
field() { # EXPRESSION INDEX: of the board $b in the list of boards
    "$sim" ctl state --json | perl -MJSON::PP -0777 -ne '
        BEGIN { @words = splice @ARGV }
        my $b = decode_json($_)->{boards}[$words[1]];
        print JSON::PP->new->canonical->allow_nonref->encode(eval $words[0])' "$1" "${2:-0}"
}
expect() { check "$1" "$2" "$(field "$1" "${3:-0}")"; }
ctl() { check "ctl $*" "" "$("$sim" ctl "$@" 2>&1)"; }
ask() { { echo "open $1"; shift; printf '%s\n' "$@"; } | "$client" | tail -n +2 | tr '\n' ';'; }

check "which board" 2 "$("$sim" ctl input 3 on >"$folder/out" 2>&1; echo $?)"
contains "which board" "0, 7" "$(cat "$folder/out")"
check "no such hopper" 2 "$("$sim" ctl --board 0 hopper 6 jam >"$folder/out" 2>&1; echo $?)"
contains "no such hopper" "hopper 6 stock" "$(cat "$folder/out")"
check "no such board" 2 "$("$sim" ctl --board 3 input 3 on 2>/dev/null; echo $?)"
expect '[@$b{qw(device model plugged speed)}]' '[0,"R35",true,"full"]'
expect '[@$b{qw(device model board_number eeprom)}]' '[7,"R20",5,"24LC64"]' 1
ctl --board 0 input 3 on
ctl --board 0 input 2 pulse 3
ctl --board 0 switch open
ctl --board 0 switch 4 open
ctl --board 0 battery fail
ctl --board 0 clock set 1000
ctl --board 0 hopper 6 stock 9
ctl --board 7 hopper 5 jam
ctl --board 0 serial 0 parity 1
ctl --board 0 serial 0 send 'xy\x00'
ctl --board 0 spi reply 1 0x22 3
ctl --board 0 coin 2
expect '[grep { $_ == 3 } @{$b->{inputs}}]' "[3]"
expect '$b->{open_switches}' "[0,4]"
expect '$b->{battery_good}' false
expect '$b->{clock} >= 1000 && $b->{clock} <= 1100' 1
expect '[map { [@$_{qw(input stock jammed)}] } @{$b->{hoppers}}]' "[[6,9,false]]"
expect '[map { [@$_{qw(input stock jammed)}] } @{$b->{hoppers}}]' "[[5,20,true]]" 1
# Bytes take their time on the line.
waiting='[@{$b->{serial_ports}[0]}{qw(waiting parity_errors)}]'
have_come() { [ "$(field "$waiting")" = "[3,1]" ]; }
eventually have_come
expect "$waiting" "[3,1]"
check "the SPI slave replies" "ok 0;ok 3 1 34 3;" "$(ask 0 "ask 94 7" "ask 96 7 8 24 0 0")"

# On in both periods, in one, in the other.
check "outputs" "ok 0;ok 0;" "$(ask 0 "ask 77 1 13 0 0 0 0 0 0 0 0 0" "ask 83 1 9 0 0 0 0")"
expect '[@$b{qw(outputs_on_period outputs_off_period)}]' "[[0,3],[0,2,3]]"
expect '$b->{last_exchanges}[-1]{operation}' '"SetOnPeriodOutputs"'
ctl --board 0 slow 5s
ctl --board 0 fail status 0x1e request 75
ctl --board 0 slow 0s
check "the next exchange is quick and fails" "status 30;" "$(ask 0 "ask 75 1")"
ctl --board 0 unplug
expect '[@$b{qw(plugged outputs_on_period firmware_running)}]' "[false,[],false]"
ctl --board 0 plug
expect '$b->{plugged}' true
contains "the text names what the program did" "SetOnPeriodOutputs" "$("$sim" ctl state)"
finish
INSIDE
"$sim" run --board 0=R35,firmware=running --board 7=R20,number=5,eeprom=24LC64,hopper5=20,firmware=running -- \
    bash -c ". '$(dirname "$0")/support.sh' '$build' '$width'; folder='$folder'; . '$folder/inside'"
check "commands" 0 $?

# From outside a run is named when there are several; others' runs are out of reach.
"$sim" run --board 0=R35 -- sleep 600 & first=$!
"$sim" run --board 0=R20 -- sleep 600 & second=$!
eventually "$sim" ctl --run $first state >/dev/null 2>&1
eventually "$sim" ctl --run $second state >/dev/null 2>&1
for run in $first $second; do
    contains "which run" "$run" "$("$sim" ctl state 2>&1)"
done
contains "the first run" R35 "$("$sim" ctl --run $first state)"
contains "the second run" R20 "$("$sim" ctl --run $second state)"
if [ "$(id -u)" -eq 0 ] && command -v setpriv >/dev/null; then
    for run in $first $second; do
        check "another user" 2 "$(setpriv --reuid 65534 --clear-groups "$sim" ctl --run $run unplug >/dev/null 2>&1; echo $?)"
    done
fi

# The picture is redrawn in place, and the terminal is left as it was.
{ eventually grep -qs lit "$folder/picture"; printf '\003'; } |
    script -qec "$sim ctl --run $first state --follow" /dev/null >"$folder/picture"
picture=$(cat "$folder/picture")
contains "the picture" "Vexa_0  R35" "$picture"
contains "the other page of the terminal" $'\033[?1049h' "$picture"
contains "the terminal afterwards" $'\033[?25h\033[?1049l' "$(tail -c 20 <<<"$picture")"
kill $first $second
wait

# Programs come and go while the boards stay.
"$sim" serve --board 0=R35,firmware=running >"$folder/served" &
eventually grep -qs "sorvane-sim enter" "$folder/served"
enter=("$sim" enter --run $!)
check "one line says how to enter" 1 "$(wc -l <"$folder/served")"
"$sim" ctl --run $! input 7 on
check "a program enters" "open ok 5 128 0 0 0 0 " "$(printf 'open 0\nask 75 1\nask 77 1 1 0 0 0 0 0 0 0 0 0\n' | "${enter[@]}" -- "$client" | head -2 | tr '\n' ' ')"
check "its status comes back" 9 "$("${enter[@]}" -- sh -c 'sleep 50 & exit 9' >/dev/null; echo $?)"
contains "the next one finds the board as it was" "steady 0;" "$("${enter[@]}" -- "$sim" ctl state)"
kill -TERM $!
wait $!
check "serving ends with a signal" 0 $?

# A build server may do all of this in a chroot, whose directories are nowhere else.
if [ "$(id -u)" -eq 0 ]; then
    mkdir "$folder/chroot"
    mount --rbind / "$folder/chroot"
    mount -t tmpfs tmpfs "$folder/chroot/mnt"
    mkdir "$folder/chroot/mnt/inside"
    check "a program enters in a chroot" /mnt/inside "$(chroot "$folder/chroot" bash -c '
        cd /mnt/inside; '"$sim"' serve --board 0=R35 >../served & until grep -qs enter ../served; do sleep 0.1; done
        '"$sim"' enter --run $! -- pwd; kill $!; wait $!')"
    umount -l "$folder/chroot"
fi
finish
