#!/usr/bin/env bash
# All measurements, in one run: ratios against yardsticks, and the throughput of the oska program. run.sh BUILD_DIR
set -euo pipefail
build=$(realpath "$1")
cd "$(dirname "$0")"
grep -m 1 'model name' /proc/cpuinfo | sed 's/.*: /Processor: /'
"$build/bench/oska_bench" 2>/dev/null

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
walk=../examples/corner_shop/walk.jsonl
repeat=2000

# The walk, repeated; each round begins later than the one before.
awk -v repeat=$repeat '
    { gsub(/^{"mobile_time": */, ""); split($0, part, ","); times[NR] = part[1]; rest[NR] = substr($0, length(part[1]) + 1) }
    END {
        span = times[NR] - times[1] + 500
        for (i = 0; i < repeat; i++) for (n = 1; n <= NR; n++) printf "{\"mobile_time\": %.0f%s\n", times[n] + i * span, rest[n]
    }' "$walk" >"$work/walk.jsonl"
samples=$(wc -l <"$work/walk.jsonl")
for service in pelio dapo; do
    start=$(date +%s%N)
    "$build/tools/oska/oska" replay $service --bundle ../examples/corner_shop/7/$service.json --recording "$work/walk.jsonl" >"$work/events"
    elapsed=$((($(date +%s%N) - start) / 1000000))
    echo "oska replay $service: $samples samples and $(wc -l <"$work/events") events in $elapsed ms, $((samples * 1000 / elapsed)) samples/s"
done
