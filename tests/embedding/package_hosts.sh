#!/usr/bin/env bash
# Installs the kit and builds the README's hosts against the package: package_hosts.sh SOURCE_ROOT BINARY_DIR CXX KIT_BUILD
set -euo pipefail
root=$1 binary=$2 compiler=$3 kit=$4
embedding=$(dirname "$(realpath "$0")")
rm -rf "$binary"
"$embedding/readme_files.sh" "$root/README.md" "$binary/sources"
cmake --install "$kit" --prefix "$binary/prefix" >/dev/null
options=(-G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER="$compiler" -DHOST_SOURCES="$binary/sources"
    -DCMAKE_PREFIX_PATH="$binary/prefix")
# The package serves a host without Qt, too.
cmake -S "$embedding" -B "$binary/without_qt" "${options[@]}" -DCMAKE_DISABLE_FIND_PACKAGE_Qt6=ON >/dev/null
cmake -S "$embedding" -B "$binary/build" "${options[@]}" >/dev/null
cmake --build "$binary/build"
