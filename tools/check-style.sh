#!/usr/bin/env bash
# Every source is formatted, no file is longer than a person reads in one sitting, and every file
# opens by saying what it is for. With files as arguments, only these are looked at.
set -euo pipefail
cd "$(dirname "$0")/.."

longest=450
folders=(platform loader springboard apps ui welcome settings sim tests device tools)
mapfile -t sources < <({
  if [ $# -gt 0 ]; then printf '%s\n' "$@"; else find "${folders[@]}" -type f | sort; fi
} | grep -E '\.(cpp|hpp|h|c|m|S|py|sh)$' || true)
echo "${#sources[@]} files"
[ ${#sources[@]} -gt 0 ] || exit 0

failed=0
complain() { echo "$1" >&2; failed=1; }

# The comment that a file opens with, in one line without its markers. Empty if it opens with anything else.
opening() {
  awk 'NR == 1 && /^#!/ { next }
       /^(\/\/|\/\*| \*|# |#$|""")/ || inside {
         if (/"""/ && !(/""".*"""/)) inside = !inside
         sub(/^(\/\/|\/\*| \*|#) ?/, ""); printf "%s ", $0; next }
       { exit }' "$1"
}

# A source beside a header of its own name is told about there.
for file in "${sources[@]}"; do
  case "$file" in
    *.cpp | *.m | *.c) [ -e "${file%.*}.hpp" ] || [ -e "${file%.*}.h" ] && continue ;;
  esac
  comment=$(opening "$file")
  if [ -z "$comment" ]; then
    complain "$file: does not open with a comment that says what it is for"
  elif [[ "$file" =~ ^(platform|sim)/.*\.hpp$ && ! "${comment,,}" =~ lea(ve|ves|ving)\ out|left\ out|nothing\ of ]]; then
    complain "$file: does not say what it leaves out"
  fi
done

mapfile -t formatted < <(printf '%s\n' "${sources[@]}" | grep -E '\.(cpp|hpp)$|^tests/.*\.h$' || true)
if [ ${#formatted[@]} -gt 0 ]; then
  clang-format-14 --dry-run --Werror "${formatted[@]}" || failed=1
fi

while read -r lines file; do
  if [ "$file" != total ] && [ "$lines" -gt $longest ]; then
    complain "$file: $lines lines, more than $longest"
  fi
done < <(wc -l "${sources[@]}")
exit $failed
