#!/usr/bin/env bash
# Installs what the build, the tests, the benchmarks and the desktop program need.
# Idempotent: packages already present are not fetched again. Works as root or through sudo.
set -euo pipefail

packages=(
  cmake ninja-build g++ make pkg-config
  qt6-base-dev qt6-base-dev-tools libgl-dev
  qt6-svg-dev
  libgtest-dev googletest
  libgraphviz-dev
  fonts-dejavu-core
  xvfb xauth
  bison byacc time python3
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

if [ "$(id -u)" -eq 0 ]; then
  SUDO=()
elif command -v sudo >/dev/null 2>&1; then
  SUDO=(sudo)
else
  echo "install-deps: missing packages (${missing[*]}) and neither root nor sudo is available" >&2
  exit 1
fi

echo "install-deps: installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
"${SUDO[@]}" apt-get update -qq
"${SUDO[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
