#!/usr/bin/env bash
# Writes the README's blocks that begin with the name of a file ("// host.cpp") as these files: readme_files.sh README FOLDER
set -euo pipefail
mkdir -p "$2"
awk -v folder="$2" '
    /^```/ { file = ""; begins = !inside; inside = !inside; next }
    begins { begins = 0; if (/^(\/\/|#) [A-Za-z_]+\.[a-z]+$/) file = folder "/" $2 }
    file { print >file }' "$1"
