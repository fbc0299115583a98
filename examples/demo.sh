#!/usr/bin/env bash
# Shows what the kit does, in about a minute: demo.sh OSKA SITE_VIEWER PICTURES
#
# With a display, the site viewer plays a walk. Without one, both services run against a local server and each kind of
# line is explained where it first appears; the folder PICTURES gets pictures of the viewer.
set -euo pipefail
oska=$(realpath "$1")
viewer=$(realpath "$2")
mkdir -p "$3"
pictures=$(realpath --relative-to=. "$3")
root=$PWD
examples=$(dirname "$0")
site=$examples/riverside
walk=$site/walks/museum_visit.jsonl

say() { printf '\n\033[1m%s\033[0m\n' "$*"; }

# If the display does not exist, the viewer aborts (134), and the demo goes on in the terminal.
if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
    say "The site viewer plays $walk; Space pauses, a click on the orange frame lists what is near."
    status=0
    "$viewer" "$site" "$walk" || status=$?
    [ $status -eq 134 ] || exit $status
    echo "The viewer could not open a window; the terminal will do." >&2
fi

pictures_of_the_viewer() {
    cd "$root"
    say "The site viewer on the sample site, as pictures"
    export XDG_RUNTIME_DIR=${XDG_RUNTIME_DIR:-$work}
    "$viewer" "$site" "$walk" --screenshot "$pictures/museum.png" --at 100 --tap >/dev/null
    "$viewer" "$site" "$walk" --screenshot "$pictures/museum_phone.png" --at 250 --size 390x844 >/dev/null
    "$viewer" "$site" "$site/walks/library_and_lunch.jsonl" --screenshot "$pictures/library.png" --at 60 >/dev/null
    echo "  $pictures/museum.png         the museum after 100 seconds, its overlay tapped"
    echo "  $pictures/museum_phone.png   its upper level, in a window of a phone's size"
    echo "  $pictures/library.png        the library"
}

work=$(mktemp -d)
server=
finish() {
    [ -z "$server" ] || { kill -INT "$server" 2>/dev/null && wait "$server" 2>/dev/null; } || true
    rm -rf "$work"
}
trap finish EXIT

# Explains each kind of line once, and prints only those results that differ from the one before.
explain() {
    local live=()  # mawk, Debian's awk, otherwise waits for a whole block of input
    case "$(awk -W version 2>&1 </dev/null | head -n 1)" in mawk*) live=(-W interactive) ;; esac
    awk "${live[@]}" '
        function note(text) { printf "      ^ %s\n", text }
        function show() { print (length($0) > 150 ? substr($0, 1, 147) "..." : $0) }
        function once(kind, text) { show(); if (!seen[kind]++) note(text) }
        /^\(QuenloResource\)/ { once("get", "the kit asks the server for the address and the version of the bundle of the sector"); next }
        /fetched BundleOutput/ { once("output", "the reply; then the bundle is downloaded, unless this version is in memory"); next }
        /force updated/ { once("forced", "a forced initialisation: downloaded again, although the version has not changed"); next }
        / updated (Pelio|Dapo)Bundle/ { once("updated", "downloaded, decoded, and kept in memory until the process ends"); next }
        /version unchanged/ { once("unchanged", "a second initialisation: the same version is reused, nothing is downloaded"); next }
        /\(initialize\) : success/ { once("init", "wards and map images are indexed: the service is ready"); next }
        /\(startGenerator\)/ { once("start", "the signal generator runs, here from a recording instead of a radio"); next }
        /^\[/ { next }
        /MapImageData/ { if (maps[service]++ < 1) { show(); note("one for each level: the address of its map image, and how ward positions are converted to it") } next }
        /onInitSuccess/ { once("onInit", "the callback to the host: the outcome of the initialisation"); next }
        /on(Pelio|Dapo)Success/ { once("onStart", "the callback to the host: the outcome of the start"); next }
        /onPelioResult/ {
            place = $0; sub(/.*"building_name"/, "", place)
            sub(/"result":.*"level_name"/, "... \"level_name\"")
            if (place != last && ++places <= 6) { show(); if (places == 1) note("a position: building, level and map coordinates of the strongest ward; one for each sample, printed here when it changes") }
            last = place; next
        }
        /onDapoSelectionChanged/ { if (++selections <= 4) { show(); if (selections == 1) note("wards received at or above their threshold in 6 samples within 10 seconds, with their content links") } next }
        /"visibility"/ { if (++visible <= 4) { show(); if (visible == 1) note("the view is visible while a ward is selected, and is hidden 5 seconds after the last sample of it") } next }
        /"upload"/ { once("upload", "every sample also goes to a recording endpoint, in batches of 10 seconds"); next }
        { show() }
        END { if (places > 6) printf "      ... and %d more changes of place\n", places - 6
              if (selections > 4) printf "      ... and %d more selections\n", selections - 4 }'
}

cd "$examples/corner_shop"

say "A development server on loopback: oska serve examples/corner_shop"
"$oska" serve . --port 0 --uploads "$work/uploads.jsonl" 2>"$work/server.log" &
server=$!
url=
for _ in $(seq 100); do
    url=$(grep -o 'http://[^ ]*' "$work/server.log" | head -n 1) && break
    sleep 0.1
done
[ -n "$url" ] || { cat "$work/server.log" >&2; exit 1; }
echo "It listens on $url, serves the bundles of sector 7 and receives uploads."

# After the walk, initialise again in both ways.
last=$(tail -n 1 walk.jsonl | grep -o '"mobile_time": *[0-9]*' | grep -o '[0-9]*$')
cp walk.jsonl "$work/walk.jsonl"
printf '{"mobile_time": %s, "action": "initialize"}\n' $((last + 20000)) >>"$work/walk.jsonl"
printf '{"mobile_time": %s, "action": "initialize", "forceUpdate": true}\n' $((last + 40000)) >>"$work/walk.jsonl"

say "Pelio against that server, a walk of three minutes at twenty times its pace"
"$oska" run pelio --base-url "$url" --token demo --sector 7 --recording "$work/walk.jsonl" --speed 20 --tail 1 | explain

say "Dapo on the same walk"
"$oska" run dapo --base-url "$url" --token demo --sector 7 --recording walk.jsonl --speed 20 | explain
echo "The server has $(wc -l <"$work/uploads.jsonl") samples from the upload, which are a recording again."

pictures_of_the_viewer

say "Try next"
cat <<EOT
  $2 examples/riverside examples/riverside/walks/museum_visit.jsonl   # on a display
  $1 replay dapo --bundle examples/corner_shop/7/dapo.json --recording examples/corner_shop/walk.jsonl   # in virtual time, at once
  $1 check examples/corner_shop/7/pelio.json           # what in a bundle is probably not intended
  $1 --help
EOT
