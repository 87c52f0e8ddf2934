#!/usr/bin/env python3
"""The package: what it says of itself, what is in it with which modes, and that the checks of it fail on
a broken one. DEVICE_LIBRARY names the library that goes in."""
import os
import pathlib
import plistlib
import re
import shutil
import subprocess
import tempfile
import unittest

import packed
import check_package

LIBRARIES = 'Library/MobileSubstrate/DynamicLibraries/'
PAGE = 'Library/PreferenceLoader/Preferences/CorvalenPro.plist'
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
        self.assertEqual({'Homepage', 'Depiction', 'Icon'} & set(fields), set())
        self.assertNotRegex(str(fields), r'@|\.example|://')

    def test_a_publisher_who_is_named(self):
        fields = self.fields(CORVALEN_CONTACT=CONTACT, CORVALEN_URL=URL)
        self.assertEqual((fields['Maintainer'], fields['Author']), (f'Corvalen Pro <{CONTACT}>',) * 2)
        self.assertEqual(fields['Homepage'], URL)
        self.assertEqual(fields['Depiction'], URL + 'depiction.html')
        self.assertEqual(fields['Icon'], URL + 'CydiaIcon.png')

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

    def test_holds_the_library_its_filter_and_the_page(self):
        root = self.extracted()
        files = sorted(str(p.relative_to(root)) for p in root.rglob('*') if p.is_file())
        self.assertEqual(files, [LIBRARIES + 'proCorvalen.dylib', LIBRARIES + 'proCorvalen.plist', PAGE])
        self.assertEqual((root / files[0]).read_bytes(), packed.LIBRARY.read_bytes())

    def test_the_filter_reaches_springboard_apps_and_the_accessory_daemons(self):
        data = (self.extracted() / LIBRARIES / 'proCorvalen.plist').read_bytes()
        self.assertEqual(plistlib.loads(data), {'Filter': {
            'Mode': 'Any', 'Bundles': ['com.apple.springboard', 'com.apple.UIKit'],
            'Executables': ['BTAvrcp', 'BTLEServer', 'iapd']}})

    def test_the_settings_page_writes_every_setting_and_announces_it(self):
        pane = plistlib.loads((self.extracted() / PAGE).read_bytes())
        self.assertEqual(pane['entry']['label'], 'Corvalen Pro')
        keys = {item['key']: item for item in pane['items'] if 'key' in item}
        header = (packed.ROOT / 'loader' / 'preferences.hpp').read_text()
        declared = set(re.findall(r'return "(\w+)"_ns', header))
        self.assertEqual(set(keys), declared - {'feo63OPBmERAd2000UpdRdCAND', 'hasShownWAL'})
        for item in keys.values():
            self.assertIn('bfaK8ayWXeXMQum',
                          (item.get('PostNotification'), item.get('ALChangeNotification')))


class Bundles(Packed):
    """A folder takes one line of the list, and what is in it gets its modes and its place."""

    def setUp(self):
        super().setUp()
        bundle = self.build / 'CorvalenPro.bundle'
        (bundle / 'en.lproj').mkdir(parents=True)
        shutil.copy(packed.LIBRARY, bundle / 'CorvalenPro')
        (bundle / 'Info.plist').write_bytes(plistlib.dumps({'CFBundleExecutable': 'CorvalenPro'}))
        (bundle / 'en.lproj' / 'CorvalenPro.strings').write_text('"Enabled" = "Enabled";\n')
        for path in bundle.rglob('*'):
            path.chmod(0o777 if path.suffix == '.plist' else 0o700)
        self.contents = self.folder / 'contents.txt'
        self.contents.write_text((packed.PACKAGE / 'contents.txt').read_text() +
                                 'BUILD/CorvalenPro.bundle  /Library/PreferenceBundles\n')

    def test_one_line_and_every_mode_is_right(self):
        package = packed.make_deb(self.folder, self.contents)
        members = {m.name: m for m in check_package.tree(package, '--fsys-tarfile')}
        bundle = './Library/PreferenceBundles/CorvalenPro.bundle'
        for name, mode in {'': 0o755, '/CorvalenPro': 0o755, '/Info.plist': 0o644, '/en.lproj': 0o755,
                           '/en.lproj/CorvalenPro.strings': 0o644}.items():
            member = members[bundle + name]
            self.assertEqual((member.mode, member.uid, member.gid), (mode, 0, 0), name)
        self.assertEqual(self.problems(package), '')

    def test_the_picture_of_the_page_is_that_of_the_package(self):
        (self.build / 'CorvalenPro.bundle' / 'icon@2x.png').write_bytes(b'\x89PNG')
        package = packed.make_deb(self.folder, self.contents, CORVALEN_URL=URL)
        self.assertEqual(check_package.fields(package)['Icon'],
                         'file:///Library/PreferenceBundles/CorvalenPro.bundle/icon@2x.png')
        self.assertEqual(self.problems(package), '')

    def test_a_link_is_refused(self):
        (self.build / 'CorvalenPro.bundle' / 'other').symlink_to('CorvalenPro')
        with self.assertRaises(subprocess.CalledProcessError):
            packed.make_deb(self.folder, self.contents)


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
        for name, mode in ((dylib, 0o644), (PAGE, 0o755), (PAGE, 0o600), ('Library', 0o700)):
            self.assertIn(f'{name} has mode {mode:o}',
                          self.broken(lambda root: (root / name).chmod(mode)))

    def test_owners(self):
        def give_away(root):
            if os.getuid() == 0:  # anybody else owns it already
                os.chown(root / PAGE, 501, 501)
        self.assertRegex(self.broken(give_away, '-Zgzip'), f'{PAGE} belongs to [1-9]')

    def test_compression(self):
        self.assertIn('old phones do not unpack',
                      self.broken(lambda root: None, '-Zxz', '--root-owner-group'))

    def test_scripts_and_links(self):
        def add_script(root):
            (root / 'DEBIAN' / 'postinst').write_text('#!/bin/sh\n')
            (root / 'DEBIAN' / 'postinst').chmod(0o755)
        self.assertIn('postinst', self.broken(add_script))
        self.assertIn('neither file nor folder',
                      self.broken(lambda root: (root / PAGE).with_name('link').symlink_to('/')))

    def test_what_is_the_users_or_nobodys(self):
        def add_settings(root):
            (root / 'var').mkdir()
            (root / 'var' / 'settings.plist').write_bytes(plistlib.dumps({}))
        self.assertIn('does not belong into the package', self.broken(add_settings))
        self.assertIn('is no property list', self.broken(lambda root: (root / PAGE).write_text('<a>')))

    def test_an_icon_that_is_not_there(self):
        def name_icon(root):
            with (root / 'DEBIAN' / 'control').open('a') as control:
                control.write('Icon: file:///Library/none.png\n')
        self.assertIn('none.png is not in the package', self.broken(name_icon))


if __name__ == '__main__':
    unittest.main()
