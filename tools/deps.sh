#!/usr/bin/env bash
# Installs the Debian 12 packages the build needs, when any is missing.
# Sourced by run.sh and test.sh; needs root (or sudo) only when installing.
set -euo pipefail

ZELKORIN_PACOTES=(
  g++ cmake ninja-build pkg-config
  libgtest-dev libgmock-dev libbenchmark-dev
  nlohmann-json3-dev libfmt-dev libcli11-dev libsqlite3-dev
  capnproto libcapnp-dev
)

zelkorin_instala_dependencias() {
  local faltando=()
  for p in "${ZELKORIN_PACOTES[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || faltando+=("$p")
  done
  [ ${#faltando[@]} -eq 0 ] && return 0
  echo "Instalando: ${faltando[*]}" >&2
  local sudo=""
  [ "$(id -u)" -eq 0 ] || sudo="sudo"
  export DEBIAN_FRONTEND=noninteractive
  $sudo apt-get update -qq
  $sudo apt-get install -y -qq --no-install-recommends "${faltando[@]}"
}
