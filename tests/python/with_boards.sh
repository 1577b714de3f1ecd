#!/usr/bin/env bash
# Runs a command that finds sorvane-sim, its Python package and the fruit machine of a build; skipped without nodes.
#   with_boards.sh BUILD WIDTH COMMAND...
. "$(dirname "$0")/../nodes/support.sh"
need_nodes
shift 2
export SORVANE_SIM=$sim FRUIT_MACHINE=$build/examples/fruit_machine PYTHONDONTWRITEBYTECODE=1
PYTHONPATH=$(cd "$(dirname "$0")/../../python" && pwd)
export PYTHONPATH
exec "$@"
