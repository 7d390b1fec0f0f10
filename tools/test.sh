#!/usr/bin/env bash
# The whole test suite: the debug build, then the same tests under
# AddressSanitizer and UndefinedBehaviorSanitizer.
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
