# For every test of this directory: where the programs are, how to check, when to skip.
#   bash some_test.sh BUILD CLIENT_WIDTH
set -u
build=$1
width=$2
sim=$build/sim/command/sorvane-sim
client=$build/tests/nodes/node_client
failures=0

# By hand, too, a test meets no other run and no key file.
[ -n "${SORVANE_EMULATOR+set}" ] || exec "$(dirname "$0")/../../scripts/isolated" "$build" bash "$0" "$@"

for program in "$sim" "$client"; do
    [ -x "$program" ] || {
        echo "FAILED: $program is not built"
        exit 1
    }
done

skip() { # what has failed before is not forgotten
    echo "SKIPPED: $*"
    [ "$failures" -eq 0 ] || exit 1
    exit 77
}

need_width() {
    "$client" </dev/null 2>/dev/null || skip "this machine does not run $width-bit programs"
}

# Ends the test when this machine cannot run programs of the build's width, or cannot show them device nodes.
need_nodes() {
    need_width
    local reason
    reason=$("$sim" run --how node --board 0=R35 -- true 2>&1) || skip "no device nodes here: $reason"
}

check() { # WHAT EXPECTED ACTUAL
    if [ "$2" != "$3" ]; then
        echo "FAILED: $1"
        echo "  expected: $2"
        echo "  actual:   $3"
        failures=$((failures + 1))
    fi
}

contains() { # WHAT PART WHOLE
    case $3 in
    *"$2"*) ;;
    *) check "$1" "something with: $2" "$3" ;;
    esac
}

finish() {
    [ "$failures" -eq 0 ] && echo "passed"
    exit $((failures > 0))
}

# Waits until a command succeeds, and no longer than half a minute: the machine may be busy.
eventually() {
    local n
    for ((n = 0; n < 600; ++n)); do
        "$@" && return 0
        sleep 0.05
    done
    return 1
}
