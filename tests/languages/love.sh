#!/usr/bin/env bash
# Plays examples/love without a screen: drags the budget, sends the characters, waits, and checks
# where they are and that no frame's navigation took more than 2 ms.
# usage: love.sh SOURCE_FOLDER BUILD_FOLDER [PICTURE], below xvfb-run
set -euo pipefail
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
export ZUNO_LIBRARY=$2/lib/libzunoc.so XDG_DATA_HOME=$folder SDL_AUDIODRIVER=dummy LIBGL_ALWAYS_SOFTWARE=1
love "$1/examples/love" >"$folder/output" 2>&1 &
love=$!
for _ in $(seq 50); do
    xdotool search --pid $love >/dev/null 2>&1 && break
    sleep 0.2
done
sleep 2
xdotool mousemove 95 868 click 1
xdotool mousemove 600 300 click 1
sleep 1
xdotool key F12
sleep 16
xdotool key Escape
wait $love
cat "$folder/output"
if [ -n "${3:-}" ]; then cp "$folder/love/zuno/harbour.png" "$3"; fi
grep -q '^50 of 50 at their goals; flag 60.0 30.0; budget 500 us;' "$folder/output"
grep -qx 'left behind: 0 blocks' "$folder/output"
awk '/navigation at most/ { if ($(NF - 1) > 2) { print "more than 2 ms"; exit 1 } }' "$folder/output"
