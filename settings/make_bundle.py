#!/usr/bin/env python3
"""make_bundle.py OUT VERSION: all of the settings bundle but its executable.

OUT/CorvalenPro.bundle gets Info.plist, the icons, and the texts of every language, as property lists;
beside it OUT/CorvalenPro.plist is the entry by which PreferenceLoader finds the page.
"""
import pathlib
import plistlib
import re
import shutil
import sys

TEXTS = pathlib.Path(__file__).parent / 'texts'
# Made once from device/repository/icon.svg, for screens of one, two and three pixels a point:
# rsvg-convert -w 29 icon.svg -o icon.png, with 58 for icon@2x.png and 87 for icon@3x.png.
ICONS = pathlib.Path(__file__).parent / 'icons'
TABLE = 'CorvalenPro.strings'  # also the name of the entry, by which its label is translated
PAGE = 'CVPSettingsController'
TITLE = 'Corvalen Pro'
# From the first release that has what is needed to the last that the library works on. The bounds are
# read as floats and the upper one is exclusive, so both lie between releases: 7.0 is 847.20, 9.2 is
# 1280.00.
VERSIONS = [847.1, 1280.1]
# Older releases know simplified Chinese by the country alone.
ALSO = {'zh-Hans': ['zh_CN']}


class WrongTexts(Exception):
    """A line that cannot be read."""


def unescaped(text):
    return text.replace('\\"', '"').replace('\\n', '\n').replace('\\\\', '\\')


def read_texts(path):
    """The pairs of a .strings file: "text" = "translation"; and /* comments */."""
    texts = {}
    for number, line in enumerate(path.read_text('utf-8').splitlines(), 1):
        line = line.strip()
        if not line or (line.startswith('/*') and line.endswith('*/')):
            continue
        pair = re.fullmatch(r'"((?:[^"\\]|\\.)*)"\s*=\s*"((?:[^"\\]|\\.)*)";', line)
        if not pair:
            raise WrongTexts(f'{path}:{number}: not "text" = "translation";')
        text, translation = map(unescaped, pair.groups())
        if text in texts:
            raise WrongTexts(f'{path}:{number}: "{text}" is there twice')
        texts[text] = translation
    return texts


def info(version):
    return {
        'CFBundleDevelopmentRegion': 'en',
        'CFBundleExecutable': 'CorvalenPro',
        'CFBundleIdentifier': 'com.qvethmar.corvalenpro.settings',
        'CFBundleInfoDictionaryVersion': '6.0',
        'CFBundlePackageType': 'BNDL',
        'CFBundleShortVersionString': version,
        'CFBundleSignature': '????',
        'CFBundleVersion': version,
        'DTPlatformName': 'iphoneos',
        'MinimumOSVersion': '7.0',
        'NSPrincipalClass': PAGE,
    }


def entry():
    # The greeting opens the page by its identifier, which no translation changes.
    return {
        'filter': {'CoreFoundationVersion': VERSIONS},
        'entry': {'cell': 'PSLinkCell', 'id': TITLE, 'label': TITLE, 'bundle': 'CorvalenPro',
                  'isController': True, 'detail': PAGE, 'overridePrincipalClass': True,
                  'icon': 'icon.png'},
    }


def write(path, contents):
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_bytes(plistlib.dumps(contents, fmt=plistlib.FMT_BINARY))


def main():
    out, version = pathlib.Path(sys.argv[1]), sys.argv[2]
    bundle = out / 'CorvalenPro.bundle'
    write(bundle / 'Info.plist', info(version))
    write(out / 'CorvalenPro.plist', entry())
    for icon in sorted(ICONS.glob('*.png')):
        shutil.copyfile(icon, bundle / icon.name)
    try:
        for path in sorted(TEXTS.glob('*.strings')):
            for language in [path.stem, *ALSO.get(path.stem, [])]:
                write(bundle / f'{language}.lproj' / TABLE, read_texts(path))
    except WrongTexts as error:
        sys.exit(str(error))


if __name__ == '__main__':
    main()
