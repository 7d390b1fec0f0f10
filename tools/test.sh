#!/usr/bin/env bash
# The whole test suite: one build, with AddressSanitizer and
# UndefinedBehaviorSanitizer, and every test run there; then one run of the
# main job (tools/run.sh) with that build's program on a scratch data root,
# as a smoke test of the shipped program under the sanitizers.
#
# One build, not three: a debug build would run the same tests with fewer
# checks, and a release build would compile everything again for no test of
# its own; together they would take the run past its ten minutes on two
# cores. Developers keep the debug preset for their own runs.
set -euo pipefail
cd "$(dirname "$0")/.."
source tools/deps.sh
zelkorin_instala_dependencias
echo "== sanitizers =="
cmake --preset sanitizers >/dev/null
cmake --build --preset sanitizers
ctest --preset sanitizers

echo "== o comando principal =="
raiz="$(mktemp -d)"
trap 'rm -rf "$raiz"' EXIT
ZELKORIN_ROOT="$raiz" ZELKORIN_PRESET=sanitizers ./tools/run.sh
