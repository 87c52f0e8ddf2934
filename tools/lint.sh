#!/usr/bin/env bash
# lint.sh BUILD: clang-tidy over the library and the simulated device as that build compiles them
# (a folder of the simulated device is one file to it), by the settings in .clang-tidy.
set -euo pipefail
cd "$(dirname "$0")/.."
python3 - "$1/compile_commands.json" <<'PYTHON' |
import json, sys
for entry in json.load(open(sys.argv[1])):
    if entry["file"].endswith(".cpp") or "/Unity/" in entry["file"]:
        if " -o tests/" not in entry["command"]:
            print(entry["file"])
PYTHON
  sort -u | xargs -r -P "$(nproc)" -n 1 clang-tidy-14 --quiet -p "$1" 2>/dev/null
echo "clang-tidy: nothing found"
