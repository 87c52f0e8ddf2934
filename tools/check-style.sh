#!/usr/bin/env bash
# Every source is formatted, and no file is longer than a person reads in one sitting.
set -euo pipefail
cd "$(dirname "$0")/.."

mapfile -t sources < <(find platform loader springboard apps ui welcome sim tests \
  -name '*.cpp' -o -name '*.hpp' -o -name '*.h' | sort)
echo "${#sources[@]} files"
clang-format-14 --dry-run --Werror "${sources[@]}"

longest=450
failed=0
while read -r lines file; do
  if [ "$file" != total ] && [ "$lines" -gt $longest ]; then
    echo "$file: $lines lines, more than $longest" >&2
    failed=1
  fi
done < <(wc -l "${sources[@]}")
exit $failed
