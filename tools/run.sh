#!/usr/bin/env bash
# The main job: builds the server in release, gives the embedded default
# data root (~/.local/share/zelkorin unless ZELKORIN_ROOT says otherwise)
# its suite store with the sample company EMPRESA_EXEMPLO, starts the server
# on it, runs the sample client session against it out of process, saves,
# reads and searches service calls through it (zelkorin call), asks it for
# its status, and stops it with SIGTERM. Extra arguments go to the
# sample session (--empresa, --usuario, --sessao). ZELKORIN_PRESET picks
# another configured preset's program (the test run reuses its debug build).
set -euo pipefail
cd "$(dirname "$0")/.."
source tools/deps.sh
zelkorin_instala_dependencias
preset="${ZELKORIN_PRESET:-release}"
cmake --preset "$preset" >/dev/null
cmake --build --preset "$preset" --target zelkorin

zelkorin="./build/$preset/tools/zelkorin/zelkorin"
raiz="${ZELKORIN_ROOT:-${HOME:-/tmp}/.local/share/zelkorin}"
mkdir -p "$raiz"
socket="$raiz/zelkorin.sock"

# The suite store and the sample company the sample session works in;
# nothing changes when they are there already.
"$zelkorin" suite init --sample --root "$raiz"

"$zelkorin" serve --root "$raiz" --socket "$socket" &
servidor=$!
encerra() {
  if kill -0 "$servidor" 2>/dev/null; then
    kill -TERM "$servidor"
    wait "$servidor" || true
  fi
}
trap encerra EXIT

# The server is ready once its socket answers.
for _ in $(seq 1 100); do
  [ -S "$socket" ] && "$zelkorin" status --socket "$socket" --timeout-ms 1000 >/dev/null 2>&1 && break
  kill -0 "$servidor" 2>/dev/null || { echo "o servidor não subiu" >&2; exit 1; }
  sleep 0.1
done

rc=0
"$zelkorin" sample --socket "$socket" "$@" || rc=$?
# Real work through the server: three calls of the sample company saved
# (services, sessions, an expense, a classification, texts), one read
# back, a search by executor and the agenda of another (tools/exemplos).
"$zelkorin" call --socket "$socket" tools/exemplos/sessao-atendimentos.json || rc=$?
"$zelkorin" status --socket "$socket" || rc=$?
trap - EXIT
encerra
exit "$rc"
