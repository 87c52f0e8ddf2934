#!/usr/bin/env bash
# Two runs of every scenario give the same bytes, in both formats and with all calls shown.
set -euo pipefail
simulator=$1
mapfile -t scenarios < <(find scenarios -name '*.txt' | sort)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
for options in "--format text" "--format json" "--calls all"; do
  for run in first second; do
    # shellcheck disable=SC2086 # the options are several words
    "$simulator" run $options "${scenarios[@]}" >"$work/$run" 2>"$work/$run.errors" ||
      { cat "$work/$run.errors"; exit 1; }
  done
  cmp "$work/first" "$work/second"
  echo "$options: ${#scenarios[@]} scenarios, $(wc -c <"$work/first") bytes, twice the same"
done
# A copy of the library that was reset for the next process is as good as one that was loaded for it.
CORVALEN_FRESH_COPIES=1 "$simulator" run --calls all "${scenarios[@]}" >"$work/second" 2>/dev/null
cmp "$work/first" "$work/second"
echo "--calls all: the same with a library loaded for each process"
