#!/usr/bin/env bash
# The README's hosts are tests/embedding/host.cpp and qt_host.cpp, to the letter: readme_example.sh SOURCE_ROOT
set -euo pipefail
diff <(sed -n '/^```cpp$/,/^```$/{/^```/!p}' "$1/README.md") <(cat "$1"/tests/embedding/{host,qt_host}.cpp)
