#!/usr/bin/env bash
# The README's host is tests/embedding/host.cpp, to the letter: readme_example.sh SOURCE_ROOT
set -euo pipefail
diff <(sed -n '/^```cpp$/,/^```$/p' "$1/README.md" | sed '1d;$d') "$1/tests/embedding/host.cpp"
