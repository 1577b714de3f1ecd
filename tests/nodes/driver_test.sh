#!/usr/bin/env bash
# The driver's side of a node, model by model: exact errors, faults, unplugging, attributes.
. "$(dirname "$0")/support.sh"

inside() {
    coproc talk { "$client"; }
    say() { # ORDER EXPECTED
        echo "$1" >&"${talk[1]}"
        local answer
        read -r answer <&"${talk[0]}"
        check "$model, $1" "$2" "$answer"
    }
    ctl() { check "$model, ctl $*" "" "$("$sim" ctl "$@" 2>&1)"; }

    say "product 0" "Sorvane $model Board"
    say "speed 0" 480
    say "product 1" ENOENT
    say "open 1" ENOENT
    say "open 0" open

    ctl input 9 on
    say "ask 75 1" "ok 5 0 2 0 3 0"
    check "$model, a static program" "open ok 5 0 2 0 3 0" "$(printf 'open 0\nask 75 1\n' | "${client%/*}/static_client" | xargs)"
    say other ENOTTY
    say unknown ENOTTY
    say "ask 200 1" "status 64"

    before=$("$sim" ctl state --json)
    say pointers refused
    after=$("$sim" ctl state --json)
    changing='s/"(clock|in_on_period)":[a-z0-9]*//g'
    check "$model, wrong pointers change nothing" "$(sed -E "$changing" <<<"$before")" "$(sed -E "$changing" <<<"$after")"

    # Whom mode and owner let in, as the kernel judges by them; root always.
    node=/dev/Vexa_0
    chmod 600 $node
    check "$model, the mode" 600 "$(stat -c %a $node)"
    if [ "$(id -u)" -eq 0 ] && command -v setpriv >/dev/null; then
        as_user() { setpriv --reuid 65534 --regid 65534 --clear-groups "$@"; }
        opened() { printf 'open 0\n' | "$@" "$client"; }
        check "$model, another user" EACCES "$(opened as_user)"
        check "$model, root" open "$(opened)"
        check "$model, another user changes it" 1 "$(as_user chmod 666 $node 2>/dev/null; echo $?)"
        chown :65534 $node
        check "$model, a group without rights" EACCES "$(opened as_user)"
        chmod 660 $node
        check "$model, the group" open "$(opened as_user)"
        chown 65534:0 $node
        check "$model, the owner" "65534:0 660 open" "$(stat -c '%u:%g %a' $node) $(opened as_user)"
    fi
    chmod 666 $node

    # What goes wrong on demand, once each, and is over afterwards.
    if [ "$model" = R20 ]; then
        faults=("ioctl:EIO" "ioctl 19:ENODEV" "status 0x1e:status 30" "short:count 1" "short 0:count 0" "short 2:ok 0"
            "short 5:ok 3 0 2 0" "echo:echo 0" "echo 78:echo 78")
    else
        faults=("ioctl:EIO" "ioctl 19:ENODEV" "status 0x1e:status 30" "status 70000:status 70000" "short:ok 0"
            "short 3:ok 3 0 2 0")
    fi
    for fault in "${faults[@]}"; do
        ctl fail ${fault%:*}
        say "ask 75 1" "${fault#*:}"
        say "ask 75 1" "ok 5 0 2 0 3 0"
    done
    ctl fail status 9 count 2 request 77
    say "ask 75 1" "ok 5 0 2 0 3 0"
    say "ask 77 1 0 0 0 0 0 0 0 0 0 0" "status 9"
    ctl fail off
    say "ask 77 1 1 0 0 0 0 0 0 0 0 0" "ok 0"

    # Signals that do not kill, also in the middle of slow exchanges.
    say "flood 2000 200" all
    ctl slow 5ms
    say "flood 20 1000" all
    ctl slow 0s

    # Pulled off in the middle of a slow exchange.
    exec {product}</sys/class/Vexa/Vexa_0/device/product
    cd /sys/class/Vexa/Vexa_0/device
    slow_one_has_begun() { "$sim" ctl state --json | grep -q '"pending_faults":0'; }
    ctl slow 60s count 1
    SECONDS=0
    (eventually slow_one_has_begun; "$sim" ctl unplug) &
    say "ask 75 1" ENODEV
    check "$model, nobody waits for a board that is gone" yes "$([ $SECONDS -le 30 ] && echo yes)"
    say other ENODEV
    say "product 0" ENOENT
    check "$model, an unplugged board has no directory" "" "$(ls /sys/class/Vexa)"
    check "$model, an unplugged board cannot be opened" "ENODEV" "$(echo "open 0" | "$client")"
    ctl plug
    say "product 0" "Sorvane $model Board"
    check "$model, attributes of the board that was pulled off stay gone" "" "$(cat <&"$product" product 2>/dev/null)"
    say "ask 75 1" ENODEV
    say close closed
    say "open 0" open
    say "ask 75 1" "status 67"
    ctl slow 60s count 1
    SECONDS=0
    (eventually slow_one_has_begun; "$sim" ctl slow 0s) &
    say "ask 75 1" "status 67"
    check "$model, a delay that is called off keeps nobody" yes "$([ $SECONDS -le 30 ] && echo yes)"
    finish
}

model=${3:-}
if [ -n "$model" ]; then
    inside
fi
need_nodes
for model in R20 R20s R35; do
    "$sim" run --board "0=$model,speed=high,number=3,firmware=running" -- bash "$0" "$build" "$width" "$model"
    check "$model" 0 $?
done
finish
