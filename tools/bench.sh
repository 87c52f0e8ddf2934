#!/usr/bin/env bash
# Counts what the device library costs the processes it is loaded into, beside what a plain tweak does,
# and what each hook costs.
set -euo pipefail
cd "$(dirname "$0")/.."
out=build/host/yardstick
images=()
for name in without_registration plain_tweak plain_tweak_with_metadata; do
  device/build.sh "$out/$name" "$name" 2>/dev/null || device/build.sh "$out/$name" "$name"
  images+=("--${name//_/-}" "$out/$name/$name.dylib")
done
exec build/host/corvalen-sim bench --image build/host/device/proCorvalen.dylib "${images[@]}"
