#!/usr/bin/env bash
# Counts what the device library costs the processes it is loaded into, and what each hook costs.
set -euo pipefail
cd "$(dirname "$0")/.."
exec build/host/corvalen-sim bench --image build/host/device/proCorvalen.dylib
