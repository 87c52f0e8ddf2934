#!/usr/bin/env bash
# quick-check.sh [--staged]: what can be checked in a minute of what changed since the last commit (or
# of what is staged): format, lengths and opening comments, documents, deliberate changes that lost
# their place, and, where a host build is there, all scenarios with the library rebuilt.
set -euo pipefail
cd "$(dirname "$0")/.."

what=(HEAD)
[ "${1:-}" = --staged ] && what=(--cached)
mapfile -t changed < <({
  git diff --name-only --diff-filter=ACMR "${what[@]}"
  [ "${1:-}" = --staged ] || git ls-files --others --exclude-standard
} | sort -u)
if [ ${#changed[@]} -eq 0 ]; then
  echo "Nothing has changed"
  exit 0
fi
is_there() { printf '%s\n' "${changed[@]}" | grep -qE "$1"; }

tools/check-style.sh "${changed[@]}"
tools/check_documents.py
is_there '^(loader|springboard|apps|ui|welcome|settings|platform|tests/mutants)/' &&
  tools/mutants.py --check

is_there '\.(cpp|hpp|S|def)$|^scenarios/|^settings/texts/' || exit 0
if [ ! -e build/host/build.ninja ]; then
  echo "Not played: the scenarios, as there is no build/host (./corvalen run makes it)"
  exit 0
fi
cmake --build --preset host --target corvalen-sim >/dev/null
mapfile -t scenarios < <(find scenarios -name '*.txt')
build/host/corvalen-sim run --leaks "${scenarios[@]}" >/dev/null
echo "${#scenarios[@]} scenarios hold"
