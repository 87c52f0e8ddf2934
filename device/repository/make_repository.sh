#!/usr/bin/env bash
# make_repository.sh PACKAGE DIR: puts the package into the APT repository DIR, which is made if it is
# not there; other versions under DIR/debs stay on offer. DIR can be put on any web server as it is.
#
# It is what Cydia calls a flat repository: Release, Packages and the icon lie at its root.
set -euo pipefail
umask 022 # a web server must be able to read all of it
here=$(cd "$(dirname "$0")" && pwd)
package=$(realpath "$1")
mkdir -p "$2/debs"
cd "$2"

cp "$package" debs/
cp "$here/CydiaIcon.png" .
# Debian's own Python, which has the Debian packages.
/usr/bin/python3 "$here/make_pages.py" .

dpkg-scanpackages --multiversion debs >Packages
# What the phones' apt reads; it knows no xz.
gzip -9kfn Packages
bzip2 -9kf Packages

# Last, as it vouches for the others. The phones' apt reads these three sums and no others.
option=APT::FTPArchive
release=$option::Release
apt-ftparchive -o $option::SHA512=false -o $release::Default-Patterns=false \
  -o $release::Patterns::=Packages -o $release::Patterns::='Packages.*' \
  -o $release::Origin='Corvalen Pro' -o $release::Label='Corvalen Pro' \
  -o $release::Suite=stable -o $release::Codename=ios -o $release::Version=1.0 \
  -o $release::Architectures=iphoneos-arm -o $release::Components=main \
  -o $release::Description='Play starts the player of your choice' \
  -o $release::Date="$(date -u -R -d "@$SOURCE_DATE_EPOCH")" release . >Release.new
mv Release.new Release
echo "The repository is in $PWD:"
find . -type f | sort
