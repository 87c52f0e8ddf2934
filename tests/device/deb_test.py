#!/usr/bin/env python3
"""The package: what it says of itself, what is in it with which modes, and that the checks of it fail on
a broken one. DEVICE_LIBRARY names the library that goes in; the settings bundle lies beside it."""
import os
import pathlib
import plistlib
import re
import shutil
import struct
import subprocess
import tempfile
import unittest

import packed
import check_package

LIBRARIES = 'Library/MobileSubstrate/DynamicLibraries/'
ENTRY = 'Library/PreferenceLoader/Preferences/CorvalenPro.plist'
BUNDLE = 'Library/PreferenceBundles/CorvalenPro.bundle/'
ICONS = {'icon.png': 29, 'icon@2x.png': 58, 'icon@3x.png': 87}  # pixels
LANGUAGES = ('de', 'en', 'es', 'fr', 'it', 'ja', 'zh-Hans', 'zh_CN')
CONTACT, URL = 'someone@somewhere.org', 'https://somewhere.org/repo/'


class Packed(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.build = packed.build(self.folder / 'build')

    def problems(self, package):
        return '\n'.join(check_package.problems(package))


class Fields(Packed):
    def fields(self, **publisher):
        return check_package.fields(packed.make_deb(self.folder, **publisher))

    def test_what_cydia_and_dpkg_read(self):
        fields = self.fields()
        self.assertEqual(fields['Package'], packed.IDENTIFIER)
        self.assertEqual(fields['Name'], 'Corvalen Pro')
        self.assertEqual(fields['Version'], packed.VERSION)
        self.assertEqual(fields['Architecture'], 'iphoneos-arm')
        self.assertEqual(fields['Section'], 'Tweaks')
        self.assertEqual(fields['Icon'], f'file:///{BUNDLE}icon@2x.png')
        self.assertEqual(fields['Tag'], 'purpose::extension')
        self.assertEqual(
            fields['Depends'],
            'mobilesubstrate (>= 0.9.5000), applist (>= 1.5.12), preferenceloader (>= 2.2.2), '
            'firmware (>= 7.0), firmware (<< 9.3)')

    def test_the_supported_versions_are_those_between_the_bounds(self):
        bounds = re.findall(r'firmware \((\S+) (\S+)\)', self.fields()['Depends'])

        def holds(firmware, relation, bound):
            return subprocess.run(['dpkg', '--compare-versions', firmware, relation, bound]).returncode == 0
        for firmware, supported in {'6.1.4': False, '7.0': True, '7.0.1': True, '8.4.1': True,
                                    '9.2': True, '9.2.1': True, '9.3': False, '9.3.5': False,
                                    '10.0': False}.items():
            self.assertEqual(all(holds(firmware, *bound) for bound in bounds), supported, firmware)

    def test_a_publisher_who_is_not_named_is_not_made_up(self):
        fields = self.fields()
        self.assertEqual((fields['Maintainer'], fields['Author']), ('Corvalen Pro',) * 2)
        self.assertEqual({'Homepage', 'Depiction'} & set(fields), set())
        fields.pop('Icon')
        self.assertNotRegex(str(fields), r'@|\.example|://')

    def test_a_publisher_who_is_named(self):
        fields = self.fields(CORVALEN_CONTACT=CONTACT, CORVALEN_URL=URL)
        self.assertEqual((fields['Maintainer'], fields['Author']), (f'Corvalen Pro <{CONTACT}>',) * 2)
        self.assertEqual(fields['Homepage'], URL)
        self.assertEqual(fields['Depiction'], URL + 'depiction.html')

    def test_a_contact_or_an_address_that_is_none_ends_the_build(self):
        for publisher in ({'CORVALEN_CONTACT': 'someone'}, {'CORVALEN_CONTACT': 'a@b'},
                          {'CORVALEN_CONTACT': 'a@b.org>\nDepends: x'}, {'CORVALEN_URL': 'somewhere.org'},
                          {'CORVALEN_URL': 'https://a b'}):
            with self.assertRaises(subprocess.CalledProcessError) as raised:
                packed.make_deb(self.folder, **publisher)
            self.assertIn('must be', raised.exception.stderr)


class Contents(Packed):
    def extracted(self):
        packed.run('dpkg-deb', '-x', packed.make_deb(self.folder), self.folder / 'root')
        return self.folder / 'root'

    def test_is_as_old_phones_and_we_want_it(self):
        self.assertEqual(self.problems(packed.make_deb(self.folder)), '')

    def test_belongs_to_root_whoever_builds_it(self):
        stage = self.folder / 'stage'
        stage.mkdir()
        if os.getuid() == 0:  # then at least the group is another
            os.chown(stage, 0, 501)
            stage.chmod(0o2755)
        self.assertEqual(self.problems(packed.make_deb(self.folder, TMPDIR=str(stage))), '')

    def test_holds_the_library_its_filter_the_bundle_and_its_entry(self):
        root = self.extracted()
        files = {str(p.relative_to(root)) for p in root.rglob('*') if p.is_file()}
        texts = {f'{BUNDLE}{language}.lproj/CorvalenPro.strings' for language in LANGUAGES}
        icons = {BUNDLE + icon for icon in ICONS}
        self.assertEqual(files, {LIBRARIES + 'proCorvalen.dylib', LIBRARIES + 'proCorvalen.plist', ENTRY,
                                 BUNDLE + 'CorvalenPro', BUNDLE + 'Info.plist', *texts, *icons})
        for file, built in ((LIBRARIES + 'proCorvalen.dylib', packed.LIBRARY),
                            (BUNDLE + 'CorvalenPro', packed.BUNDLE / 'CorvalenPro')):
            self.assertEqual((root / file).read_bytes(), built.read_bytes())
            self.assertEqual((root / file).stat().st_mode & 0o777, 0o755)

    def test_the_filter_reaches_springboard_apps_and_the_accessory_daemons(self):
        data = (self.extracted() / LIBRARIES / 'proCorvalen.plist').read_bytes()
        self.assertEqual(plistlib.loads(data), {'Filter': {
            'Mode': 'Any', 'Bundles': ['com.apple.springboard', 'com.apple.UIKit'],
            'Executables': ['BTAvrcp', 'BTLEServer', 'iapd']}})


class Bundle(Packed):
    """The settings bundle and its entry, as the package brings them to the Settings app."""

    def setUp(self):
        super().setUp()
        self.root = self.folder / 'root'
        packed.run('dpkg-deb', '-x', packed.make_deb(self.folder), self.root)
        self.entry = plistlib.loads((self.root / ENTRY).read_bytes())
        self.info = plistlib.loads((self.root / BUNDLE / 'Info.plist').read_bytes())

    def test_names_what_is_in_it(self):
        self.assertEqual(self.info['CFBundleIdentifier'], f'{packed.IDENTIFIER}.settings')
        self.assertEqual(self.info['CFBundleExecutable'], 'CorvalenPro')
        self.assertEqual(self.info['CFBundlePackageType'], 'BNDL')
        for version in ('CFBundleShortVersionString', 'CFBundleVersion'):
            self.assertEqual(self.info[version], packed.VERSION)
        executable = (self.root / BUNDLE / 'CorvalenPro').read_bytes()
        self.assertIn(self.info['NSPrincipalClass'].encode() + b'\0', executable)

    def test_sets_every_setting_and_no_marker_and_announces_it(self):
        executable = (self.root / BUNDLE / 'CorvalenPro').read_bytes()
        header = (packed.ROOT / 'loader' / 'settings_file.hpp').read_text()
        declared = {name: f'\0{key}\0'.encode() for name, key in
                    re.findall(r'inline NSString (\w+)\(\) \{ return "(\w+)"_ns', header)}
        self.assertEqual({name for name, key in declared.items() if key not in executable},
                         {'greeted', 'welcomeAnswered'})
        self.assertIn(b'\0bfaK8ayWXeXMQum\0', executable)

    def test_the_entry_leads_to_it(self):
        entry = self.entry['entry']
        self.assertEqual(entry['bundle'], 'CorvalenPro')
        self.assertEqual(entry['cell'], 'PSLinkCell')
        self.assertIs(entry['isController'], True)
        self.assertIs(entry['overridePrincipalClass'], True)
        self.assertEqual(entry['detail'], self.info['NSPrincipalClass'])
        self.assertIn(entry['icon'], ICONS)
        # The greeting opens the page by its identifier; the label is translated.
        self.assertEqual((entry['id'], entry['label']), ('Corvalen Pro',) * 2)

    def test_the_entry_is_there_on_the_supported_versions_only(self):
        def as_float(number):
            return struct.unpack('f', struct.pack('f', number))[0]
        bounds = self.entry['filter']['CoreFoundationVersion']
        self.assertEqual(len(bounds), 2)
        lower, upper = map(as_float, bounds)
        for version, supported in {793.0: False, 847.2: True, 847.21: True, 1129.15: True, 1141.14: True,
                                   1240.1: True, 1241.14: True, 1280.0: True, 1280.3: False}.items():
            for read in (version, as_float(version)):
                self.assertEqual(lower <= read < upper, supported, version)

    def test_icons_are_of_their_sizes(self):
        for icon, pixels in ICONS.items():
            data = (self.root / BUNDLE / icon).read_bytes()
            self.assertEqual(data[:8], b'\x89PNG\r\n\x1a\n')
            self.assertEqual(struct.unpack('>II', data[16:24]), (pixels, pixels), icon)

    def test_every_language_has_every_text(self):
        tables = {language: plistlib.loads(
            (self.root / BUNDLE / f'{language}.lproj' / 'CorvalenPro.strings').read_bytes())
            for language in LANGUAGES}
        self.assertIn('Enabled', tables['en'])
        for language, table in tables.items():
            self.assertEqual(set(table), set(tables['en']), language)
        self.assertEqual(tables['zh_CN'], tables['zh-Hans'])


class Modes(Packed):
    """Whatever the build left, files and folders get their modes and their owner."""

    def setUp(self):
        super().setUp()
        for path in (self.build / 'CorvalenPro.bundle').rglob('*'):
            path.chmod(0o777 if path.suffix == '.plist' else 0o700)

    def test_every_mode_is_right(self):
        package = packed.make_deb(self.folder)
        members = {m.name: m for m in check_package.tree(package, '--fsys-tarfile')}
        for name, mode in {'': 0o755, 'CorvalenPro': 0o755, 'Info.plist': 0o644, 'en.lproj': 0o755,
                           'icon.png': 0o644, 'en.lproj/CorvalenPro.strings': 0o644}.items():
            member = members[f'./{BUNDLE}{name}'.rstrip('/')]
            self.assertEqual((member.mode, member.uid, member.gid), (mode, 0, 0), name)
        self.assertEqual(self.problems(package), '')

    def test_a_link_is_refused(self):
        (self.build / 'CorvalenPro.bundle' / 'other').symlink_to('CorvalenPro')
        with self.assertRaises(subprocess.CalledProcessError):
            packed.make_deb(self.folder)


class BrokenPackages(Packed):
    """Each check fails on a package that is broken in its way."""

    def broken(self, change, *options):
        """What is wrong with the package after `change` to its unpacked root."""
        package = packed.make_deb(self.folder)
        root = self.folder / 'root'
        packed.run('dpkg-deb', '-R', package, root)
        change(root)
        packed.run('dpkg-deb', *(options or ('-Zgzip', '--root-owner-group')), '-b', root, package)
        shutil.rmtree(root)
        return self.problems(package)

    def test_modes(self):
        dylib = LIBRARIES + 'proCorvalen.dylib'
        bundle = BUNDLE + 'CorvalenPro'
        for name, mode in ((dylib, 0o644), (bundle, 0o644), (ENTRY, 0o755), (ENTRY, 0o600), ('Library', 0o700)):
            self.assertIn(f'{name} has mode {mode:o}',
                          self.broken(lambda root: (root / name).chmod(mode)))

    def test_owners(self):
        def give_away(root):
            if os.getuid() == 0:  # anybody else owns it already
                os.chown(root / ENTRY, 501, 501)
        self.assertRegex(self.broken(give_away, '-Zgzip'), f'{ENTRY} belongs to [1-9]')

    def test_compression(self):
        self.assertIn('old phones do not unpack',
                      self.broken(lambda root: None, '-Zxz', '--root-owner-group'))

    def test_scripts_and_links(self):
        def add_script(root):
            (root / 'DEBIAN' / 'postinst').write_text('#!/bin/sh\n')
            (root / 'DEBIAN' / 'postinst').chmod(0o755)
        self.assertIn('postinst', self.broken(add_script))
        self.assertIn('neither file nor folder',
                      self.broken(lambda root: (root / ENTRY).with_name('link').symlink_to('/')))

    def test_what_is_the_users_or_nobodys(self):
        def add_settings(root):
            (root / 'var').mkdir()
            (root / 'var' / 'settings.plist').write_bytes(plistlib.dumps({}))
        self.assertIn('does not belong into the package', self.broken(add_settings))
        self.assertIn('is no property list', self.broken(lambda root: (root / ENTRY).write_text('<a>')))

    def test_an_icon_that_is_not_there(self):
        self.assertIn('icon@2x.png is not in the package',
                      self.broken(lambda root: (root / BUNDLE / 'icon@2x.png').unlink()))


if __name__ == '__main__':
    unittest.main()
