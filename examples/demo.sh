#!/usr/bin/env bash
# The kit's main job in a minute: a server, two services against it, and each kind of line explained where it first
# appears. demo.sh OSKA
set -euo pipefail
oska=$(realpath "$1")
cd "$(dirname "$0")/corner_shop"
work=$(mktemp -d)
server=
finish() {
    [ -z "$server" ] || { kill -INT "$server" 2>/dev/null && wait "$server" 2>/dev/null; } || true
    rm -rf "$work"
}
trap finish EXIT

say() { printf '\n\033[1m%s\033[0m\n' "$*"; }

# Prints each kind of line once with what it means, and of the results that follow only those that tell something new.
explain() {
    awk '
        function note(text) { printf "      ^ %s\n", text }
        function show() { print (length($0) > 150 ? substr($0, 1, 147) "..." : $0) }
        function once(kind, text) { show(); if (!seen[kind]++) note(text) }
        /^\(QuenloResource\)/ { once("get", "the kit asks the server where the bundle of the sector lies, and which version it is"); next }
        /fetched BundleOutput/ { once("output", "the answer; the bundle file itself is downloaded next, unless this version is held already"); next }
        / updated (Pelio|Dapo)Bundle/ { once("updated", "downloaded, decoded and kept in memory for the life of the process"); next }
        /version unchanged/ { once("unchanged", "a second initialisation: the same version is reused, nothing is downloaded"); next }
        /force updated/ { once("forced", "a forced one: downloaded again, whatever the version"); next }
        /\(initialize\) : success/ { once("init", "wards and map images are indexed: the service is ready"); next }
        /\(startGenerator\)/ { once("start", "the signal generator runs, here from a recording instead of a radio"); next }
        /^\[/ { next }
        /MapImageData/ { if (maps[service]++ < 1) { show(); note("one for each level: where its map image is and how ward positions are placed on it") } next }
        /onInitSuccess/ { once("onInit", "what the host hears of the initialisation"); next }
        /on(Pelio|Dapo)Success/ { once("onStart", "and of the start"); next }
        /onPelioResult/ {
            place = $0; sub(/.*"building_name"/, "", place)
            sub(/"result":.*"level_name"/, "... \"level_name\"")
            if (place != last && ++places <= 6) { show(); if (places == 1) note("a position: building, level and map coordinates of the ward heard best; one a sample, shown here when it changes") }
            last = place; next
        }
        /onDapoSelectionChanged/ { if (++selections <= 4) { show(); if (selections == 1) note("wards heard at or above their threshold in 6 samples of 10 seconds, with their content links") } next }
        /"visibility"/ { if (++visible <= 4) { show(); if (visible == 1) note("the view shows itself while something is selected, and hides 5 seconds after it was last heard") } next }
        /"upload"/ { once("upload", "every sample also goes to a recording endpoint, in batches of 10 seconds"); next }
        { show() }
        END { if (places > 6) printf "      ... and %d more changes of place\n", places - 6
              if (selections > 4) printf "      ... and %d more selections\n", selections - 4 }'
}

say "A recorded walk through a corner shop, replayed in virtual time"
"$oska" replay pelio --bundle pelio.json --recording walk.jsonl --log | explain

say "Try next"
cat <<EOT
  $1 replay pelio --bundle examples/corner_shop/pelio.json --recording examples/corner_shop/walk.jsonl
  $1 check examples/corner_shop/pelio.json
  $1 --help
EOT
