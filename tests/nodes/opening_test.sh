#!/usr/bin/env bash
# Programs that open the same boards at once: six boards, a model in both speeds each.
. "$(dirname "$0")/support.sh"
need_nodes
"$build/tests/nodes/opening_worker_other_width" </dev/null >/dev/null 2>&1 || {
    echo "not tried: programs of the other width, which cannot be made or run here"
    export OPENING_IN_ONE_WIDTH=1
}
boards=()
for model in R20 R20s R35; do
    for speed in full high; do
        n=$((${#boards[@]} / 2))
        boards+=(--board "$n=$model,speed=$speed,number=$n")
    done
done
SORVANE_SIM=$sim "$sim" run "${boards[@]}" -- "$build/tests/nodes/test_opening" --gtest_brief=1
check "programs that open the same boards" 0 $?
finish
