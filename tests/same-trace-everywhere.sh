#!/usr/bin/env bash
# Every scenario runs on the host build and on both slices of the device binary: the expectations hold,
# no reference is lost, and the three traces are the same bytes, every message and function call
# included.
set -euo pipefail
simulator=$1
image=$2
mapfile -t scenarios < <(find scenarios -name '*.txt' | sort)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

play() { # NAME OPTION…
  local name=$1
  shift
  "$simulator" run --leaks "$@" "${scenarios[@]}" >"$work/$name" 2>"$work/$name.errors" ||
    { head -n 50 "$work/$name.errors"; echo "$name: failed"; exit 1; }
}

for calls in effects all; do
  play host --calls $calls
  for slice in arm64 armv7; do
    play $slice --calls $calls --image "$image" --slice $slice
    diff "$work/host" "$work/$slice" | head -n 20
    cmp "$work/host" "$work/$slice"
    echo "$slice, --calls $calls: ${#scenarios[@]} scenarios, the same $(wc -c <"$work/host") bytes"
  done
done
