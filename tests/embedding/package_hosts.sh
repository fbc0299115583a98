#!/usr/bin/env bash
# Installs the kit and builds the README's hosts against the package: package_hosts.sh SOURCE_ROOT BINARY_DIR CXX KIT_BUILD
set -euo pipefail
root=$1 binary=$2 compiler=$3 kit=$4
embedding=$(dirname "$(realpath "$0")")
rm -rf "$binary"
"$embedding/readme_files.sh" "$root/README.md" "$binary"
cmake --install "$kit" --prefix "$binary/prefix" >/dev/null
sed -i 's|^add_subdirectory.*|find_package(QuenloOska 0.1 REQUIRED COMPONENTS qt)|' "$binary/CMakeLists.txt"
options=(-S "$binary" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER="$compiler" -DCMAKE_PREFIX_PATH="$binary/prefix"
    -DCMAKE_PROJECT_hosts_INCLUDE="$embedding/host_checks.cmake")
if [ -d "$binary/prefix/include/adapters/qt" ]; then
    cmake -B "$binary/qt" "${options[@]}" >/dev/null
    cmake --build "$binary/qt"
fi
# A host without Qt needs nothing of it.
sed -i 's| COMPONENTS qt||; /[qQ]t/d' "$binary/CMakeLists.txt"
cmake -B "$binary/plain" "${options[@]}" -DCMAKE_DISABLE_FIND_PACKAGE_Qt6=ON >/dev/null
cmake --build "$binary/plain"
