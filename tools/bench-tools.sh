#!/usr/bin/env bash
# bench-tools.sh [REVISION [COUNT]]: how fast the tools are, beside an earlier revision of them (by
# default origin/main, or the commit before) on the same machine in the same minutes: the time from
# a clean clone to the first trace, and random scenarios a second on each build. Then plays COUNT
# (2000) random scenarios on both and compares the traces byte for byte, on all three builds.
# The exit status is 1 if any trace differs.
set -euo pipefail
cd "$(dirname "$0")/.."
revision=${1:-$(git rev-parse --verify -q origin/main || git rev-parse HEAD~1)}
count=${2:-2000}
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

say() { printf '%-46s %12s %12s %8s\n' "$@"; }
ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.2f", b / a }'; }

# The revisions side by side, each a clone of its own: what is not committed is not measured.
for side in before after; do
  git clone -q . "$folder/$side"
done
git -C "$folder/before" checkout -q "$revision"

first_trace() {
  local started=$EPOCHREALTIME
  (cd "$folder/$1" && ./corvalen run >run.log 2>&1) || { cat "$folder/$1/run.log" >&2; exit 1; }
  awk -v a="$started" -v b="$EPOCHREALTIME" 'BEGIN { printf "%.0f", b - a }'
}
build_all() {
  (cd "$folder/$1" && cmake --build --preset host >build.log 2>&1) ||
    { tail -20 "$folder/$1/build.log" >&2; exit 1; }
}
# speed SIDE [OPTION…]: scenarios a second on one core, in three turns the best.
speed() {
  local side=$1 best=0 one
  shift
  for _ in 1 2 3; do
    one=$(cd "$folder/$side" && build/host/corvalen-sim explore --jobs 1 "$@" 2>&1 | tail -1 |
      sed -n 's/.* \([0-9]*\) a second.*/\1/p')
    [ "${one:-0}" -gt "$best" ] && best=$one
  done
  echo "$best"
}

say "" "before" "after" "ratio"
before=$(first_trace before) after=$(first_trace after)
say "clean clone to first trace, seconds" "$before" "$after" "$(ratio "$before" "$after")"
build_all before
build_all after
image=build/host/device/proCorvalen.dylib
before=$(speed before --count 1500) after=$(speed after --count 1500)
say "random scenarios a second, host" "$before" "$after" "$(ratio "$before" "$after")"
before=$(speed before --count 60 --image $image) after=$(speed after --count 60 --image $image)
say "random scenarios a second, host and slices" "$before" "$after" "$(ratio "$before" "$after")"

mkdir "$folder/drawn"
"$folder/after/build/host/corvalen-sim" explore --seed 70000001 --count "$count" \
  --jobs "$(nproc)" --keep "$folder/drawn" >/dev/null 2>&1 || true
traces() {
  find "$folder/drawn" -name '*.txt' | sort |
    (cd "$folder/$1" && xargs -n 500 build/host/corvalen-sim run "${@:2}" 2>/dev/null || true) | sha256sum
}
status=0
for slice in host arm64 armv7; do
  options=(--image "$image" --slice "$slice")
  [ $slice != host ] || options=()
  if [ "$(traces before "${options[@]}")" = "$(traces after "${options[@]}")" ]; then
    echo "$count random scenarios, $slice: the same traces"
  else
    echo "$count random scenarios, $slice: THE TRACES DIFFER"
    status=1
  fi
done
exit $status
