#!/usr/bin/env bash
# The main job: builds the server in release and runs the sample client
# session against it, on the embedded default data root
# (~/.local/share/zelkorin unless ZELKORIN_ROOT says otherwise).
set -euo pipefail
cd "$(dirname "$0")/.."
source tools/deps.sh
zelkorin_instala_dependencias
cmake --preset release >/dev/null
cmake --build --preset release --target zelkorin
exec ./build/release/tools/zelkorin/zelkorin sample "$@"
