#!/usr/bin/env bash
# The whole test suite: the debug build, then the same tests under
# AddressSanitizer and UndefinedBehaviorSanitizer; then one run of the main
# job (tools/run.sh, which builds the release preset's program, warnings as
# errors) on a scratch data root, as a smoke test of the shipped program.
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

echo "== release: o comando principal =="
raiz="$(mktemp -d)"
trap 'rm -rf "$raiz"' EXIT
ZELKORIN_ROOT="$raiz" ./tools/run.sh
