#!/usr/bin/env bash
# Installs the Debian 12 packages that the project builds, tests and checks itself with.
# usage: scripts/setup.sh [--quiet]   (--quiet says nothing when nothing is missing)
set -euo pipefail

PACKAGES=(
    # tools
    clang-14 clang clang-format clang-tidy libclang-rt-14-dev llvm-14 lld g++ cmake ninja-build
    ccache pkg-config git python3 shellcheck gcovr openssl
    # libraries
    libboost1.81-dev libboost-json1.81-dev libboost-url1.81-dev
    libcli11-dev libcurl4-openssl-dev libgmock-dev libgtest-dev libicu-dev libplist-dev
    libsecret-1-dev libsqlite3-dev libsqlitecpp-dev libssl-dev zlib1g-dev
)

missing=()
for package in "${PACKAGES[@]}"; do
    state="$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null || true)"
    [ "$state" = installed ] || missing+=("$package")
done

if [ ${#missing[@]} -eq 0 ]; then
    [ "${1:-}" = --quiet ] || echo "setup: everything is installed"
    exit 0
fi

as_root=()
if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null; then
        echo "setup: these packages are missing and need root to install: ${missing[*]}" >&2
        exit 1
    fi
    as_root=(sudo)
fi

echo "setup: installing ${#missing[@]} packages: ${missing[*]}"
log="$(mktemp)"
trap 'rm -f "$log"' EXIT
export DEBIAN_FRONTEND=noninteractive
if ! { "${as_root[@]}" apt-get update &&
    "${as_root[@]}" apt-get install -y --no-install-recommends "${missing[@]}"; } >"$log" 2>&1; then
    tail -n 20 "$log" >&2
    echo "setup: the packages could not be installed; is this Debian 12 with its package registry in reach?" >&2
    exit 1
fi
echo "setup: done"
