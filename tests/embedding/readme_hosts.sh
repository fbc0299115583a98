#!/usr/bin/env bash
# Builds the README's hosts with the README's CMakeLists.txt, and waits until each prints a position:
# readme_hosts.sh SOURCE_ROOT BINARY_DIR CXX OSKA. Only the server's port is changed, to a free one.
set -euo pipefail
root=$1 binary=$2 compiler=$3 oska=$4
embedding=$(dirname "$(realpath "$0")")

for path in $(grep -oEh 'examples/[a-z_]+/[a-z0-9_/.]*[a-z]' "$root/README.md" "$root/examples/demo.sh" "$root/bench/run.sh" | sort -u); do
    [ -e "$root/$path" ] || { echo "$path is named, but is not there" >&2; exit 1; }
done

server=
trap '[ -z "$server" ] || kill -INT "$server"' EXIT
exec {log}< <(exec "$oska" serve "$root/examples/riverside" --port 0 2>&1)
server=$!
url=$(grep -om 1 'http://[^ ]*' <&"$log")
cat <&"$log" >/dev/null &

rm -rf "$binary"
"$embedding/readme_files.sh" "$root/README.md" "$binary"
sed -i "s|http://127.0.0.1:5050|$url|" "$binary"/*.cpp
grep -q "$url" "$binary/host.cpp" && grep -q "$url" "$binary/qt_host.cpp"
sed -i "s|add_subdirectory(\.\. kit)|add_subdirectory($root kit)|" "$binary/CMakeLists.txt"
cmake -S "$binary" -B "$binary/build" -G Ninja -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER="$compiler" \
    -DCMAKE_PROJECT_hosts_INCLUDE="$embedding/host_checks.cmake" >/dev/null
cmake --build "$binary/build"

cd "$root"
for host in host qt_host; do
    echo "$host:"
    exec {output}< <(QT_QPA_PLATFORM=offscreen exec timeout 300 "$binary/build/$host")
    program=$!
    grep -m 1 -E '^[A-Za-z][^{]*: [0-9.]+, [0-9.]+$' <&"$output" || { echo "$host has printed no position" >&2; exit 1; }
    kill "$program"
    exec {output}<&-
done
