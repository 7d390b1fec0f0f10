#!/usr/bin/env bash
# The whole test suite: the debug build, then the same tests under
# AddressSanitizer and UndefinedBehaviorSanitizer; then one run of the main
# job (tools/run.sh) with the debug build's program on a scratch data root,
# as a smoke test of the shipped program. The release build is left out: it
# would compile everything a third time for no test of its own.
set -euo pipefail
cd "$(dirname "$0")/.."
source tools/deps.sh
zelkorin_instala_dependencias
for preset in debug sanitizers; do
  echo "== $preset =="
  cmake --preset "$preset" >/dev/null
  cmake --build --preset "$preset"
  ctest --preset "$preset"
done

echo "== o comando principal =="
raiz="$(mktemp -d)"
trap 'rm -rf "$raiz"' EXIT
ZELKORIN_ROOT="$raiz" ZELKORIN_PRESET=debug ./tools/run.sh
