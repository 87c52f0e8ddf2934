#!/usr/bin/env bash
# live.sh CORVALEN-REAL: two processes in real time, whose notifications go through GNUstep's own
# daemon, here one of this test's. Exit status 77 where that cannot run.
set -euo pipefail
skip() { echo "Skipped: $1"; exit 77; }
command -v gdnc >/dev/null || skip "GNUstep's notification daemon (gdnc) is not installed"

folder=$(mktemp -d)
export TEMP=$folder HOME=$folder  # where GNUstep keeps the names of daemons, and its defaults
gdnc -f >"$folder/log" 2>&1 &
daemon=$!
trap 'kill $daemon 2>/dev/null || true; wait $daemon 2>/dev/null || true; rm -rf "$folder"' EXIT
for ((i = 0; i < 200; ++i)); do
  [ -z "$(ls "$folder/NSMessagePort/names" 2>/dev/null)" ] || break
  kill -0 $daemon 2>/dev/null || break
  sleep 0.05
done
[ "$i" -lt 200 ] && kill -0 $daemon 2>/dev/null ||
  skip "GNUstep's notification daemon does not come up: $(tail -1 "$folder/log")"
"$1" --live "$(dirname "$0")/live.txt"
