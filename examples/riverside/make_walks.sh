#!/usr/bin/env bash
# Writes the sample walks: make_walks.sh OSKA. The same program and routes give the same bytes.
set -euo pipefail
oska=$(realpath "$1")
cd "$(dirname "$0")"
for route in routes/*.json; do
    walk=walks/$(basename "$route" .json).jsonl
    "$oska" simulate --bundle 12/pelio.json --route "$route" --seed 12 >"$walk"
done
