#!/usr/bin/env python3
"""The repository, served by a plain web server and read by apt itself in a root of its own.
DEVICE_LIBRARY names the library that goes into the package."""
import bz2
import functools
import gzip
import hashlib
import http.server
import pathlib
import re
import struct
import subprocess
import tempfile
import threading
import unittest
import xml.etree.ElementTree

import packed

CONTACT, URL = 'someone@somewhere.org', 'https://somewhere.org/repo/'
WORK = tempfile.TemporaryDirectory()
FOLDER = pathlib.Path(WORK.name)
REPOSITORY = FOLDER / 'repository'
PHONE = {'mobilesubstrate': '0.9.6301', 'applist': '1.5.12', 'preferenceloader': '2.2.2', 'firmware': '8.4'}


def setUpModule():
    packed.build(FOLDER / 'build')
    packed.make_repository(packed.make_deb(FOLDER), REPOSITORY)


def tearDownModule():
    WORK.cleanup()


def digest(kind, path):
    return hashlib.new(kind, path.read_bytes()).hexdigest()


class Silent(http.server.SimpleHTTPRequestHandler):
    def log_message(self, *_):
        pass


class Phone:
    """A root of apt's own, with the repository as its one source."""

    def __init__(self, root, port, installed=PHONE):
        self.root = root
        for folder in ('etc/apt/preferences.d', 'etc/apt/apt.conf.d', 'var/lib/apt/lists/partial',
                       'var/cache/apt/archives/partial', 'var/lib/dpkg', 'downloads'):
            (root / folder).mkdir(parents=True)
        (root / 'etc/apt/sources.list').write_text(f'deb [trusted=yes] http://127.0.0.1:{port}/ ./\n')
        (root / 'var/lib/dpkg/status').write_text(''.join(
            f'Package: {name}\nStatus: install ok installed\nVersion: {version}\n'
            'Architecture: iphoneos-arm\nMaintainer: nobody\nDescription: there\n\n'
            for name, version in installed.items()))
        # Nothing of the machine's own settings, architectures or hooks, whose files are read first.
        self.settings = root / 'apt.conf'
        self.settings.write_text(f'''
Dir "{root}";
Dir::State::status "{root}/var/lib/dpkg/status";
APT::Architecture "iphoneos-arm";
APT::Architectures {{ "iphoneos-arm"; }};
APT::Sandbox::User "";
APT::Update::Post-Invoke-Success "";
Acquire::Languages "none";
Acquire::http::Proxy "DIRECT";
Acquire::Retries "0";
Debug::NoLocking "true";
''')

    def ask(self, *command):
        """What apt answers, (status, output); in English."""
        done = subprocess.run(command, cwd=self.root / 'downloads', text=True, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT,
                              env={'APT_CONFIG': self.settings, 'PATH': '/usr/sbin:/usr/bin:/sbin:/bin',
                                   'LC_ALL': 'C'})
        return done.returncode, done.stdout


class Read(unittest.TestCase):
    """By apt."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.served = self.folder / 'served'
        packed.run('cp', '-a', REPOSITORY, self.served)
        server = http.server.ThreadingHTTPServer(
            ('127.0.0.1', 0), functools.partial(Silent, directory=self.served))
        threading.Thread(target=server.serve_forever, daemon=True).start()
        self.addCleanup(server.server_close)
        self.addCleanup(server.shutdown)
        self.port = server.server_port
        self.phone = Phone(self.folder / 'phone', self.port)

    def ask(self, *command):
        status, output = self.phone.ask(*command)
        self.assertEqual(status, 0, output)
        return output

    def change(self, path):
        data = bytearray(path.read_bytes())
        data[len(data) // 2] ^= 1
        path.write_bytes(data)

    def test_finds_the_package_and_downloads_it(self):
        self.assertNotRegex(self.ask('apt-get', 'update'), r'(?m)^(W|E|Err)\b')
        shown = self.ask('apt-cache', 'show', packed.IDENTIFIER)
        self.assertIn('Depends: mobilesubstrate (>= 0.9.5000), ', shown)
        self.assertIn('Tag: purpose::extension', shown)
        self.ask('apt-get', 'download', packed.IDENTIFIER)
        file, = (self.phone.root / 'downloads').iterdir()
        for field, kind in (('MD5sum', 'md5'), ('SHA1', 'sha1'), ('SHA256', 'sha256')):
            self.assertEqual(re.search(rf'^{field}: (\w+)$', shown, re.MULTILINE)[1], digest(kind, file))
        self.assertEqual(file.read_bytes(), (FOLDER / packed.FILE_NAME).read_bytes())

    def test_refuses_an_index_with_a_changed_byte(self):
        for index in self.served.glob('Packages*'):
            self.change(index)
        status, output = self.phone.ask('apt-get', 'update')
        self.assertNotEqual(status, 0)
        self.assertIn('Hash Sum mismatch', output)

    def test_refuses_a_package_with_a_changed_byte(self):
        self.change(self.served / 'debs' / packed.FILE_NAME)
        self.ask('apt-get', 'update')
        status, output = self.phone.ask('apt-get', 'download', packed.IDENTIFIER)
        self.assertNotEqual(status, 0)
        self.assertIn('Hash Sum mismatch', output)

    def test_sees_a_later_version_beside_the_older_one(self):
        self.ask('apt-get', 'update')
        later = FOLDER / f'{packed.IDENTIFIER}_99.0_iphoneos-arm.deb'
        root = self.folder / 'later'
        packed.run('dpkg-deb', '-R', FOLDER / packed.FILE_NAME, root)
        control = root / 'DEBIAN' / 'control'
        control.write_text(control.read_text().replace(f'Version: {packed.VERSION}', 'Version: 99.0'))
        packed.run('dpkg-deb', '-Zgzip', '--root-owner-group', '-b', root, later)
        packed.make_repository(later, self.served)
        self.ask('apt-get', 'update')
        versions = self.ask('apt-cache', 'madison', packed.IDENTIFIER)
        self.assertEqual(re.findall(r'\| *(\S+) *\|', versions), ['99.0', packed.VERSION])

    def test_installs_it_where_it_works_and_nowhere_else(self):
        for changed, wanted in (
                ({'firmware': '6.1.4'}, False), ({'firmware': '7.0'}, True), ({'firmware': '8.4.1'}, True),
                ({'firmware': '9.2.1'}, True), ({'firmware': '9.3'}, False), ({'firmware': '10.0'}, False),
                ({'mobilesubstrate': '0.9.4999'}, False), ({'applist': '1.5.11'}, False),
                ({'preferenceloader': '2.2.1'}, False)):
            with self.subTest(changed), tempfile.TemporaryDirectory() as root:
                phone = Phone(pathlib.Path(root), self.port, PHONE | changed)
                self.assertEqual(phone.ask('apt-get', 'update')[0], 0)
                status, output = phone.ask('apt-get', 'install', '-s', packed.IDENTIFIER)
                if wanted:
                    self.assertIn(f'Inst {packed.IDENTIFIER} ', output)
                else:
                    self.assertIn('unmet dependencies', output)
                self.assertEqual(status == 0, wanted, output)


class Files(unittest.TestCase):
    def test_release_has_three_sums_of_every_form_of_the_index(self):
        text = (REPOSITORY / 'Release').read_text()
        listed = re.findall(r'^(MD5Sum|SHA1|SHA256|SHA512):\n((?: .*\n?)+)', text, re.MULTILINE)
        self.assertEqual([kind for kind, _ in listed], ['MD5Sum', 'SHA1', 'SHA256'])
        for kind, lines in listed:
            found = [line.split() for line in lines.splitlines()]
            self.assertEqual([name for _, _, name in found], ['Packages', 'Packages.bz2', 'Packages.gz'])
            for value, size, name in found:
                path = REPOSITORY / name
                self.assertEqual((value, int(size)),
                                 (digest(kind.lower().removesuffix('sum'), path), path.stat().st_size))

    def test_all_forms_of_the_index_say_the_same(self):
        plain = (REPOSITORY / 'Packages').read_bytes()
        self.assertEqual(gzip.decompress((REPOSITORY / 'Packages.gz').read_bytes()), plain)
        self.assertEqual(bz2.decompress((REPOSITORY / 'Packages.bz2').read_bytes()), plain)

    def test_no_time_is_that_of_the_build(self):
        self.assertIn('Date: Thu, 01 Jan 2015 00:00:00 +0000\n', (REPOSITORY / 'Release').read_text())
        flags, seconds = struct.unpack_from('<BI', (REPOSITORY / 'Packages.gz').read_bytes(), 3)
        self.assertEqual((flags, seconds), (0, 0))

    def test_release_tells_cydia_whose_it_is(self):
        text = (REPOSITORY / 'Release').read_text()
        for field in ('Origin: Corvalen Pro', 'Label: Corvalen Pro', 'Suite: stable', 'Codename: ios',
                      'Architectures: iphoneos-arm', 'Components: main'):
            self.assertIn(field + '\n', text)
        self.assertRegex(text, r'(?m)^(Version|Description): .')

    def test_the_icon_is_a_square_picture(self):
        data = (REPOSITORY / 'CydiaIcon.png').read_bytes()
        self.assertEqual(data[:8], b'\x89PNG\r\n\x1a\n')
        self.assertEqual(struct.unpack('>II', data[16:24]), (120, 120))

    def test_nothing_else_is_in_it_and_everybody_may_read_it(self):
        paths = [p for p in REPOSITORY.rglob('*') if p.is_file()]
        self.assertEqual(sorted(str(p.relative_to(REPOSITORY)) for p in paths), [
            'CydiaIcon.png', 'Packages', 'Packages.bz2', 'Packages.gz', 'Release', 'changelog.html',
            f'debs/{packed.FILE_NAME}', 'depiction.html', 'index.html'])
        for path in paths:
            self.assertEqual(path.stat().st_mode & 0o777, 0o644, path.name)

    def test_the_same_input_gives_the_same_bytes(self):
        with tempfile.TemporaryDirectory() as folder:
            second = packed.make_repository(packed.make_deb(FOLDER), pathlib.Path(folder) / 'second')
            for path in REPOSITORY.rglob('*'):
                if path.is_file():
                    other = second / path.relative_to(REPOSITORY)
                    self.assertEqual(path.read_bytes(), other.read_bytes(), path.name)


class Pages(unittest.TestCase):
    def page(self, name, folder=REPOSITORY):
        return xml.etree.ElementTree.fromstring((folder / name).read_text())

    def elements(self, root):
        return [(element.tag.rpartition('}')[2], element) for element in root.iter()]

    def test_load_nothing_and_lead_to_each_other(self):
        for name in ('index.html', 'depiction.html', 'changelog.html'):
            for tag, element in self.elements(self.page(name)):
                self.assertNotIn(tag, ('script', 'img', 'link', 'iframe', 'object', 'embed', 'base'), name)
                self.assertEqual({'src', 'srcset', 'data', 'style', 'onload'} & set(element.attrib), set())
                if tag == 'a':
                    self.assertTrue((REPOSITORY / element.get('href')).is_file(), element.get('href'))
            self.assertNotRegex((REPOSITORY / name).read_text(), r'url\(|@import')

    def test_suit_narrow_screens_and_dark_ones(self):
        for name in ('index.html', 'depiction.html', 'changelog.html'):
            text = (REPOSITORY / name).read_text()
            self.assertIn('content="width=device-width, initial-scale=1"', text)
            self.assertIn('prefers-color-scheme: dark', text)
            self.assertNotRegex(text, r'[^-]width: *\d{3,}px')

    def test_the_changelog_is_the_whole_changelog(self):
        text = (packed.ROOT / 'CHANGELOG.md').read_text()
        found = self.elements(self.page('changelog.html'))
        for mark, tag in (('# ', 'h1'), ('## ', 'h2'), ('### ', 'h3'), ('- ', 'li')):
            self.assertEqual(sum(t == tag for t, _ in found),
                             sum(line.startswith(mark) for line in text.splitlines()), tag)

    def test_the_publisher_is_named_where_known_and_not_made_up_where_not(self):
        for name in ('index.html', 'depiction.html'):
            # (Names of languages, not places on the web.)
            text = (REPOSITORY / name).read_text().replace('http://www.w3.org/', '')
            self.assertNotRegex(text, r'@[A-Z]+@|\.example|https?://|mailto|Questions')
        with tempfile.TemporaryDirectory() as folder:
            named = packed.make_repository(FOLDER / packed.FILE_NAME, pathlib.Path(folder) / 'named',
                                           CORVALEN_CONTACT=CONTACT, CORVALEN_URL=URL)
            text = ''.join(self.page('index.html', named).itertext())
            self.assertIn(URL, text)
            self.assertIn(CONTACT, text)
            self.assertIn(packed.VERSION, ''.join(self.page('depiction.html', named).itertext()))


if __name__ == '__main__':
    unittest.main()
