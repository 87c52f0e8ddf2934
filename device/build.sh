#!/usr/bin/env bash
# build.sh OUT: builds the device library for both architectures into OUT/proCorvalen.dylib, with
# thin slices and, for back traces, unstripped ones beside it. The same sources give the same bytes
# in any folder. `build.sh OUT NAME` builds, in the same way, the settings bundle and its entry
# (CorvalenPro), or what the library is measured against: without_registration, plain_tweak or
# plain_tweak_with_metadata.
set -euo pipefail
device=$(cd "$(dirname "$0")" && pwd)
root=$(dirname "$device")
out=$1
identifier=${2:-proCorvalen}
image=$identifier.dylib # in OUT
install_name=/Library/MobileSubstrate/DynamicLibraries/$image
headers=/usr/lib/llvm-19/include/c++/v1
mkdir -p "$out"
out=$(cd "$out" && pwd)
work=$out/work.$identifier
rm -rf "$work"
mkdir -p "$work"

# The sources that library.cmake lists under a name.
listed() { sed -n "/^set($1\$/,/^)/s/^  \(.*\.cpp\)\$/\1/p" "$root/library.cmake"; }
mapfile -t sources < <(listed CORVALEN_LIBRARY_SOURCES)
strip=(-dead_strip)
overriding=() # instead of functions of the same name
more_imports=()
not_linked=() # of what there are stubs for
yardstick=device/yardstick
case $identifier in
  CorvalenPro)
    mapfile -t sources < <(listed CORVALEN_SETTINGS_SOURCES)
    image=CorvalenPro.bundle/CorvalenPro
    install_name=/Library/PreferenceBundles/$image
    not_linked=(CydiaSubstrate)
    rm -rf "$out/CorvalenPro.bundle"
    python3 "$root/settings/make_bundle.py" "$out" "$(cat "$root/VERSION")"
    ;;
  without_registration) overriding=($yardstick/without_registration.cpp) ;;
  plain_tweak*)
    sources=($yardstick/plain_tweak.m)
    [ "$identifier" = plain_tweak ] || sources+=($yardstick/metadata.m)
    more_imports=("$root/$yardstick/imports.txt")
    strip=() # the 32-bit linker would strip the metadata
    ;;
esac
python3 "$device/stubs/make_stubs.py" "$work/stubs" "${more_imports[@]}"
for library in "${not_linked[@]}"; do rm "$work/stubs/$library".*; done

# docs/decisions.md: No exceptions, no RTTI
cplusplus=(-std=c++20 -fno-rtti -fvisibility-inlines-hidden -fno-threadsafe-statics
  -fno-c++-static-destructors -nostdinc++)
objective_c=(-fblocks -Wno-unused-parameter -Wno-objc-root-class)
flags=(-fno-exceptions -fvisibility=hidden -fno-stack-protector -nostdlibinc -isystem "$device/shim/config" -isystem "$headers"
  -isystem "$device/shim/c" -I. -Wall -Wextra -Wpedantic -Wshadow -Wconversion -Werror)

# docs/decisions.md: One module a slice
# All sources of a slice become one module: nothing weak is left, and what is unused goes.
compile() {
  local slice=$1
  shift
  local target=--target=$slice-apple-ios7.0
  local modules=()
  for source in "${sources[@]}" "${overriding[@]}"; do
    local module=$work/${source//\//_}.$slice.bc
    # Small everywhere, but quick where every process passes.
    local size=-Oz
    # (Not the constructor in 32 bits, where small is quick: addresses take two instructions.)
    case $source in
      loader/constructor.cpp) [ "$slice" = armv7 ] || size=-O2 ;;
      loader/installer.cpp | *.m) size=-O2 ;;
    esac
    local language=("${cplusplus[@]}")
    [[ $source == *.m ]] && language=("${objective_c[@]}")
    (cd "$root" && clang-19 "$target" $size "${flags[@]}" "${language[@]}" "$@" \
      -Xclang -disable-llvm-passes -emit-llvm -c "$source" -o "$module")
    [[ " ${overriding[*]} " == *" $source "* ]] && module=--override=$module
    modules+=("$module")
  done
  llvm-link-19 "${modules[@]}" -o "$work/all.$slice.bc"
  opt-19 --passes='internalize,default<Oz>,globaldce' "$work/all.$slice.bc" -o "$work/opt.$slice.bc"
  clang-19 "$target" -Oz -Xclang -disable-llvm-passes -w -S "$work/opt.$slice.bc" -o "$work/$slice.s"
  # Constants fit into the data's one page; in the text they would make the file a page longer.
  sed -i 's/__TEXT,__const/__DATA,__const/' "$work/$slice.s"
  if [ "$slice" = armv7 ]; then
    python3 "$device/tools/fix_armv7_assembly.py" "$work/$slice.s"
  else
    python3 "$device/tools/shorten_addresses.py" "$work/$slice.s"
  fi
  clang-19 "$target" -c "$work/$slice.s" -o "$work/$slice.o"
}

compile arm64 -funwind-tables
compile armv7 -fno-unwind-tables -fno-asynchronous-unwind-tables

ld64.lld-19 -arch arm64 -platform_version ios 7.0 9.3 -dylib -dead_strip -no_encryption \
  -install_name "$install_name" -o "$work/arm64.dylib" "$work/arm64.o" "$work"/stubs/*.tbd
# The 32-bit linker knows pages of 4 KiB alone. In a second pass, filler makes each segment as long as
# the 16 KiB pages of newer kernels want it.
link_armv7() {
  ld64.lld.darwinold-13 -arch armv7 -ios_version_min 7.0 -sdk_version 9.3 -dylib "${strip[@]}" \
    -install_name "$install_name" -o "$work/armv7.dylib" "$@" "$work"/stubs/*.armv7.dylib
}
link_armv7 "$work/armv7.o"
python3 "$device/tools/make_filler.py" "$work/armv7.dylib" >"$work/filler.s"
clang-19 --target=armv7-apple-ios7.0 -c "$work/filler.s" -o "$work/filler.o"
link_armv7 "$work/filler.o" "$work/armv7.o"

for slice in arm64 armv7; do
  python3 "$device/tools/finish_image.py" "$work/$slice.dylib" "$out/$identifier.$slice.dylib" \
    "$out/$identifier.$slice.symbols" "$identifier"
done
llvm-lipo-19 -create "$out/$identifier.arm64.dylib" "$out/$identifier.armv7.dylib" \
  -output "$out/$image"
chmod 755 "$out/$image"
rm -rf "$work"
