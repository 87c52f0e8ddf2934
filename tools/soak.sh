#!/usr/bin/env bash
# soak.sh MINUTES: random situations for that long, each on the host build and on both slices of the
# device binary. Stops at the first finding, shrunk and ready to be kept in scenarios/.
set -euo pipefail
cd "$(dirname "$0")/.."
minutes=$1
end=$(($(date +%s) + minutes * 60))
seed=$(date +%s)
tried=0
while [ "$(date +%s)" -lt "$end" ]; do
  python3 tests/random_devices.py build/host/corvalen-sim build/host/device/proCorvalen.dylib \
    "$seed" 50 >/tmp/corvalen-soak.$$ || { cat /tmp/corvalen-soak.$$; rm -f /tmp/corvalen-soak.$$; exit 1; }
  seed=$((seed + 50))
  tried=$((tried + 50))
  echo "$tried situations, 0 findings, $((end - $(date +%s))) s left"
done
rm -f /tmp/corvalen-soak.$$
