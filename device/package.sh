#!/usr/bin/env bash
# package.sh OUT: builds the device library and both packages into OUT, checks the library, and says
# where everything is and what is in it.
set -euo pipefail
device=$(cd "$(dirname "$0")" && pwd)
mkdir -p "${1:-build/package}"
out=$(cd "${1:-build/package}" && pwd)
version=$(cat "$device/../VERSION")
# One time stamp for everything: the same sources give the same bytes.
export SOURCE_DATE_EPOCH=1420070400

echo "Building the library for arm64 and armv7 …"
"$device/build.sh" "$out/device"
python3 "$device/tools/check_image.py" "$out/device/proCorvalen.dylib"

# pack NAME CONTROL: builds a package from $stage.
pack() {
  local name=$1 control=$2
  mkdir -p "$stage/DEBIAN"
  sed "s/@VERSION@/$version/" "$device/package/$control" >"$stage/DEBIAN/control"
  find "$stage" -type d -exec chmod 755 {} +
  find "$stage" -type f -exec chmod 644 {} +
  find "$stage" -name '*.dylib' -exec chmod 755 {} +
  find "$stage" -exec touch -h -d "@$SOURCE_DATE_EPOCH" {} +
  # gzip and owner 0/0: what the phones' dpkg unpacks and expects.
  dpkg-deb -Zgzip --root-owner-group -b "$stage" "$out/${name}_${version}_iphoneos-arm.deb" >/dev/null
  rm -rf "$stage"
}

stage=$out/stage
rm -rf "$stage"
libraries=$stage/Library/MobileSubstrate/DynamicLibraries
mkdir -p "$libraries"
cp "$out/device/proCorvalen.dylib" "$device/package/proCorvalen.plist" "$libraries"
pack com.qvethmar.corvalenpro control.in

panes=$stage/Library/PreferenceLoader/Preferences
mkdir -p "$panes"
python3 "$device/package/make_settings_pane.py" "$panes/CorvalenPro.plist"
pack com.qvethmar.corvalenpro-settings control-settings.in

for package in "$out"/*.deb; do
  echo
  echo "$package"
  dpkg-deb -c "$package"
done
