#!/usr/bin/env bash
# soak.sh MINUTES: searches for faults for that long, in every way there is, tries all deliberate
# changes of the library, and says what was tried.
# Findings are printed as they come, ready to be kept in scenarios/regressions/; the exit status is 1
# if there were any. SEED=N repeats a soak's random choices.
set -euo pipefail
cd "$(dirname "$0")/.."

[[ "$1" =~ ^[0-9]+([.][0-9]+)?$ ]] || { echo "soak: $1 is no number of minutes" >&2; exit 2; }
minutes=$1
seed=${SEED:-$(date +%s)}
jobs=$(nproc)
simulator=build/host/corvalen-sim
image=build/host/device/proCorvalen.dylib
real=build/realruntime/corvalen-real
fuzzers=build/sanitize/tests
tours=(--check-up scenarios/tours/check-up.txt scenarios/tours/{ios*,settings,mean}.txt)
logs=$(mktemp -d)
trap 'rm -rf "$logs"' EXIT
figures=()
findings=0

share() { awk -v m="$minutes" -v part="$1" 'BEGIN { printf "%.3f", m * part / 100 }'; }

# A search: its findings and its progress are shown, its last line is kept.
tried() {
  local name=$1 log
  shift
  log="$logs/${#figures[@]}"
  echo "== $name"
  "$@" --jobs "$jobs" 2>&1 | tee "$log" || true
  figures+=("$(printf '%-48s %s' "$name" "$(tail -1 "$log")")")
  local found
  found=$(tail -1 "$log" | sed -n 's/.* \([0-9]*\) findings.*/\1/p')
  findings=$((findings + ${found:-1}))
}
search() { tried "$1" "$simulator" "${@:2}"; }

# Both fuzzers at once, each on a core of its own.
fuzz() {
  local seconds name
  seconds=$(share 20 | awk '{ print int($1 * 60) + 1 }')
  echo "== Fuzzing for $seconds s"
  for name in settings macho; do
    mkdir -p "$logs/$name.corpus"
    (cd "$logs" && "$OLDPWD/$fuzzers/${name}_fuzz" -max_total_time="$seconds" -timeout=60 \
      -rss_limit_mb=4096 -print_final_stats=1 -artifact_prefix="$logs/$name." \
      "$logs/$name.corpus" "$OLDPWD/tests/corpus/$name" >"$logs/$name.log" 2>&1) &
  done
  wait
  for name in settings macho; do
    local runs found=0 artifact
    runs=$(sed -n 's/^stat::number_of_executed_units: *//p' "$logs/$name.log")
    for artifact in "$logs/$name."{crash,timeout,oom,leak}-*; do
      [ -e "$artifact" ] || continue
      found=$((found + 1))
      tail -40 "$logs/$name.log"
      cp "$artifact" .
      echo "The input is kept as $(basename "$artifact")"
    done
    [ -n "$runs" ] || { tail -20 "$logs/$name.log"; found=1; }
    figures+=("$(printf '%-48s %s inputs, %s findings' "fuzzed: $name" "${runs:-0}" "$found")")
    findings=$((findings + found))
  done
}

echo "Soaking for $minutes minutes with seed $seed on $jobs cores"
search 'every fault alone' inject "${tours[@]}"
search 'every fault alone, arm64' inject --image "$image" --slice arm64 --seed "$seed" \
  --minutes "$(share 5)" "${tours[@]}"
search 'every fault alone, armv7' inject --image "$image" --slice armv7 --seed "$seed" \
  --minutes "$(share 5)" "${tours[@]}"
search 'faults in pairs' inject --pairs --seed "$seed" --minutes "$(share 20)" "${tours[@]}"
search 'random scenarios' explore --seed "$seed" --minutes "$(share 30)"
search 'random scenarios, host and both slices alike' explore --seed "$((seed + 500000000))" \
  --image "$image" --minutes "$(share 15)"
[ ! -x "$real" ] || search 'random scenarios, on the real runtime too' explore \
  --seed "$((seed + 1000000000))" --real "$real" --minutes "$(share 5)"
fuzz
# However long it takes: what nobody would notice is a gap in all that is above.
tried 'deliberate changes of the library' tools/mutants.py

echo
echo "== In $minutes minutes with seed $seed"
printf '%s\n' "${figures[@]}"
echo "$findings findings"
[ "$findings" -eq 0 ]
