#!/usr/bin/env bash
# package.sh [--repo DIR] [OUT]: builds the device library, the settings bundle and the package of both
# into OUT (build/package by default), checks them, and says what is in the package. With --repo, DIR
# becomes or is brought up to date as an APT repository with the package, for any web server.
set -euo pipefail
device=$(cd "$(dirname "$0")" && pwd)
repository=
if [ "${1:-}" = --repo ]; then
  repository=${2:?--repo needs a folder}
  shift 2
fi
if [ $# -gt 1 ] || [[ ${1:-} == -* ]]; then
  echo "usage: package.sh [--repo DIR] [OUT]" >&2
  exit 2
fi
mkdir -p "${1:-build/package}"
out=$(cd "${1:-build/package}" && pwd)
# One time stamp for everything: the same sources give the same bytes.
export SOURCE_DATE_EPOCH=${SOURCE_DATE_EPOCH:-1420070400}

echo "Building the library for arm64 and armv7 …"
"$device/build.sh" "$out/device"
echo "Building the settings bundle for arm64 and armv7 …"
"$device/build.sh" "$out/device" CorvalenPro
for image in proCorvalen.dylib CorvalenPro.bundle/CorvalenPro; do
  python3 "$device/tools/check_image.py" "$out/device/$image"
done

# Only one is left to copy to a device: no other version, no part of earlier times.
rm -f "$out"/com.qvethmar.corvalenpro*.deb
package=$(python3 "$device/package/make_deb.py" "$out/device" "$out")
python3 "$device/tools/check_package.py" "$package"
dpkg-deb -c "$package"
[ -z "$repository" ] || "$device/repository/make_repository.sh" "$package" "$repository"
python3 "$device/package/publication.py"
