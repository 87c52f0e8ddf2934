#!/usr/bin/env python3
"""make_deb.py BUILD OUT: makes the package of what the build left in BUILD; prints its path.

What is in it stands in contents.txt, what is said of it in control.in. The same input gives the same
bytes: modes are set here, owners are 0, and every time is SOURCE_DATE_EPOCH, in seconds since 1970.
"""
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

import publication

HERE = pathlib.Path(__file__).resolve().parent
IDENTIFIER = 'com.qvethmar.corvalenpro'
# Thin in 64 and in 32 bits, and with several slices.
MACH_O = (b'\xcf\xfa\xed\xfe', b'\xce\xfa\xed\xfe', b'\xca\xfe\xba\xbe')


def listed():
    """(source, folder on the device) of each line of the list."""
    for line in (HERE / 'contents.txt').read_text().splitlines():
        if line.strip() and not line.startswith('#'):
            source, folder = line.split()
            yield source, folder.lstrip('/')


def mode(path):
    """What may be entered or run is 0755, anything else 0644, whatever it was where it was built."""
    if path.is_dir():
        return 0o755
    with path.open('rb') as file:
        return 0o755 if file.read(4) in MACH_O else 0o644


def fill_stage(stage, build):
    for source, folder in listed():
        path = build / source[6:] if source.startswith('BUILD/') else HERE / source
        target = stage / folder / path.name
        target.parent.mkdir(parents=True, exist_ok=True)
        if path.is_dir():
            shutil.copytree(path, target, symlinks=True)
        else:
            shutil.copyfile(path, target)


def control():
    known = publication.values()
    known['CONTACT'] = f'<{known["CONTACT"]}>' if known['CONTACT'] else ''
    return publication.filled((HERE / 'control.in').read_text(), known)


def finish_stage(stage, seconds):
    for path in [stage, *stage.rglob('*')]:
        if path.is_symlink():
            sys.exit(f'{path.relative_to(stage)} is a link')
        path.chmod(mode(path))
    for path in [stage, *stage.rglob('*')]:
        os.utime(path, (seconds, seconds))


def main():
    build, out = (pathlib.Path(argument).resolve() for argument in sys.argv[1:3])
    version = publication.values()['VERSION']
    package = out / f'{IDENTIFIER}_{version}_iphoneos-arm.deb'
    with tempfile.TemporaryDirectory() as folder:
        stage = pathlib.Path(folder)
        fill_stage(stage, build)
        (stage / 'DEBIAN').mkdir()
        (stage / 'DEBIAN' / 'control').write_text(control())
        finish_stage(stage, int(os.environ['SOURCE_DATE_EPOCH']))
        # gzip is what the phones' dpkg unpacks.
        subprocess.run(['dpkg-deb', '-Zgzip', '--root-owner-group', '-b', stage, package], check=True,
                       stdout=subprocess.DEVNULL)
    print(package)


if __name__ == '__main__':
    main()
