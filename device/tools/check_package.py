#!/usr/bin/env python3
"""check_package.py FILE: what the phones' dpkg demands of the package, and what we do.

Prints what is wrong; exit status 1 if anything is.
"""
import io
import plistlib
import re
import subprocess
import sys
import tarfile
import xml.parsers.expat

import verdict

MACH_O = (b'\xcf\xfa\xed\xfe', b'\xce\xfa\xed\xfe', b'\xca\xfe\xba\xbe')
PLACES = ('Library/MobileSubstrate/DynamicLibraries/', 'Library/PreferenceLoader/Preferences/',
          'Library/PreferenceBundles/')


def output(*command):
    return subprocess.run(command, capture_output=True, check=True).stdout


def tree(package, part):
    return tarfile.open(fileobj=io.BytesIO(output('dpkg-deb', part, package)))


def fields(package):
    """field -> text, of the package's control file."""
    text = output('dpkg-deb', '-f', package).decode()
    return dict(re.findall(r'^([A-Z][\w-]*): ?((?:.|\n )*)$', text, re.MULTILINE))


def member_problems(member, content):
    wanted = 0o755 if member.isdir() or content[:4] in MACH_O else 0o644
    if not member.isdir() and not member.isreg():
        yield 'is neither file nor folder'
    if member.mode != wanted:
        yield f'has mode {member.mode:o}, not {wanted:o}'
    if (member.uid, member.gid) != (0, 0):  # 0 is root, and the group wheel on a phone
        yield f'belongs to {member.uid}:{member.gid}'
    if member.name.endswith('.plist'):
        try:
            plistlib.loads(content)
        except (plistlib.InvalidFileException, ValueError, xml.parsers.expat.ExpatError):
            yield 'is no property list'


def problems(package):
    members = output('ar', 't', package).decode().split()
    if members != ['debian-binary', 'control.tar.gz', 'data.tar.gz']:
        yield f'consists of {members}, which old phones do not unpack'
        return
    scripts = [m.name for m in tree(package, '--ctrl-tarfile') if m.name not in ('.', './control')]
    if scripts:
        yield f'has {scripts} beside its control file'
    archive = tree(package, '--fsys-tarfile')
    names = set()
    for member in archive:
        name = member.name.removeprefix('./')
        names.add(name)
        file = archive.extractfile(member) if member.isreg() else None
        for problem in member_problems(member, file.read() if file else b''):
            yield f'{name} {problem}'
        if member.isreg() and not name.startswith(PLACES):
            yield f'{name} does not belong into the package'
    icon = fields(package).get('Icon', '')
    if icon.startswith('file:///') and icon.removeprefix('file:///') not in names:
        yield f'{icon} is not in the package'


if __name__ == '__main__':
    verdict.end(sys.argv[1], problems(sys.argv[1]))
