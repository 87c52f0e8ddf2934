"""The package and the repository, made of a device library and a settings bundle that are built already,
for the tests."""
import os
import pathlib
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
PACKAGE = ROOT / 'device' / 'package'
sys.path.insert(0, str(ROOT / 'device' / 'tools'))

VERSION = (ROOT / 'VERSION').read_text().strip()
IDENTIFIER = 'com.qvethmar.corvalenpro'
FILE_NAME = f'{IDENTIFIER}_{VERSION}_iphoneos-arm.deb'
LIBRARY = pathlib.Path(os.environ['DEVICE_LIBRARY'])
BUNDLE = LIBRARY.with_name('CorvalenPro.bundle')
ENTRY = LIBRARY.with_name('CorvalenPro.plist')


def run(*command, **publisher):
    """Runs a step of the packaging, published by nobody unless told otherwise."""
    environment = {k: v for k, v in os.environ.items() if not k.startswith('CORVALEN_')}
    environment.update({'SOURCE_DATE_EPOCH': '1420070400'}, **publisher)
    return subprocess.run(command, capture_output=True, text=True, check=True, env=environment).stdout


def build(folder):
    """What the build leaves, in a new folder."""
    folder.mkdir()
    shutil.copy(LIBRARY, folder)
    shutil.copytree(BUNDLE, folder / BUNDLE.name)
    shutil.copy(ENTRY, folder)
    return folder


def make_deb(folder, **publisher):
    """The package in `folder`, of what lies in its folder `build`."""
    made = run('python3', PACKAGE / 'make_deb.py', folder / 'build', folder, **publisher)
    return pathlib.Path(made.strip())


def make_repository(package, folder, **publisher):
    run(ROOT / 'device' / 'repository' / 'make_repository.sh', package, folder, **publisher)
    return folder
