#!/usr/bin/env bash
# Builds a host against the kit: build_host.sh SOURCE_DIR BINARY_DIR CXX [PACKAGE_BUILD]. With a fourth argument the kit
# is installed from that build folder first and found as a package; without, it is a subdirectory of the host.
set -euo pipefail
source=$1 binary=$2 compiler=$3 kit=${4:-}
rm -rf "$binary" && mkdir -p "$binary"
options=(-G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER="$compiler")
if [ -n "$kit" ]; then
    cmake --install "$kit" --prefix "$binary/prefix" >/dev/null
    options+=(-DHOST_USES_PACKAGE=ON -DCMAKE_PREFIX_PATH="$binary/prefix")
    # The package serves a host without Qt, too.
    cmake -S "$source" -B "$binary/without_qt" "${options[@]}" -DCMAKE_DISABLE_FIND_PACKAGE_Qt6=ON >/dev/null
fi
cmake -S "$source" -B "$binary/build" "${options[@]}" >/dev/null
cmake --build "$binary/build" --target host
