#!/usr/bin/env python3
"""The finished device library and the settings bundle, read with independent tools; their checks, each
seen to fail on a broken copy; and the whole way from the sources to the repository, twice."""
import os
import pathlib
import plistlib
import re
import struct
import subprocess
import sys
import tempfile
import unittest

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
sys.path.insert(0, str(ROOT / 'device' / 'tools'))
import address_sites  # noqa: E402
import check_image  # noqa: E402
import fix_armv7_assembly  # noqa: E402
import image_uuid  # noqa: E402
import macho  # noqa: E402
import shorten_addresses  # noqa: E402

WORK = tempfile.TemporaryDirectory()
OUT = pathlib.Path(WORK.name) / 'first'
LIBRARY = OUT / 'device' / 'proCorvalen.dylib'
BUNDLE = OUT / 'device' / 'CorvalenPro.bundle' / 'CorvalenPro'
EVERYWHERE = ('/System/Library/Frameworks/CoreFoundation.framework/CoreFoundation',
              '/usr/lib/libSystem.B.dylib', '/usr/lib/libobjc.A.dylib')  # in every process
SCRIPT = ROOT / 'device' / 'package.sh'


def run(*command):
    return subprocess.run(command, capture_output=True, text=True, check=True).stdout


def package(out):
    """Everything, in `out`, published by nobody; what is said of it."""
    environment = {k: v for k, v in os.environ.items() if not k.startswith('CORVALEN_')}
    return subprocess.run([SCRIPT, '--repo', out / 'repository', out], check=True, text=True,
                          capture_output=True, env=environment).stderr


def setUpModule():
    global SAID
    SAID = package(OUT)


def tearDownModule():
    WORK.cleanup()


class Image:
    """The checks of a finished image; a subclass names it."""
    image, symbols = None, None  # the file, and the name of its symbols
    folders = ()                 # of its own sources
    linked = ()
    least_rows, least_selectors = 0, 0

    def slices(self):
        return macho.slices(self.image.read_bytes())

    def test_is_as_old_loaders_and_we_want_it(self):
        self.assertEqual(list(check_image.problems(self.image)), [])

    def test_links_nothing_else(self):
        for architecture, data in self.slices():
            found = sorted(name for name, _ in macho.Image(data).linked_libraries())
            self.assertEqual(found, sorted(self.linked), architecture)

    def sources(self, *folders):
        """The text of all sources in these folders, with literals in one piece."""
        text = ''.join(p.read_text() for folder in folders
                       for p in sorted((ROOT / folder).glob('*.?pp')))
        return re.sub(r'"\s*\n\s*"', '', text)

    def test_names_in_the_binary_are_those_that_tables_and_views_declare(self):
        declared = set(re.findall(r'"((?:[^"\\\n]|\\.)*)"',
                                  self.sources('platform', 'loader', *self.folders)))
        own = self.sources(*self.folders)
        rows = set(re.findall(r'(?:method<[^,<>]+(?:<[^>]*>)?,\s*|addedMethod<&[^,]+,\s*)"([^"]+)"',
                              own))
        rows |= set(re.findall(r'\{"(\w+)", k\w+, ', own))
        self.assertGreater(len(rows), self.least_rows)
        for architecture, data in self.slices():
            found = set()
            for _, name, _, size, offset, _ in macho.Image(data).sections():
                if name in ('__const', '__cstring', '__data'):
                    found |= set(re.findall(rb'[\x20-\x7e]{2,}(?=\0)', data[offset:offset + size]))
            found = {text.decode() for text in found}
            self.assertEqual(rows - found, set(), architecture)
            selectors = {t for t in found if re.fullmatch(r'[A-Za-z_]\w*(:\w*)*:', t)}
            classes = {t for t in found if re.fullmatch(r'(NS|SB|MPU|UI|AC|SL|AL|TU|AV|SPT|MT|PS|CVP)[A-Z]\w+', t)}
            self.assertGreater(len(selectors), self.least_selectors)
            prefixed = {t for t in selectors | classes if t not in declared}
            self.assertEqual(prefixed, set(), architecture)

    def test_symbols_are_found_by_the_uuid_of_their_slice(self):
        for architecture, data in self.slices():
            symbols = OUT / 'device' / f'{self.symbols}.{architecture}.symbols'
            found = re.findall(r'UUID: (\S+)', run('llvm-dwarfdump-19', '--uuid', symbols))
            self.assertEqual([f.replace('-', '').lower() for f in found], [self.uuid(data).hex()])

    def uuid(self, data):
        return bytes(macho.Image(data).command(macho.UUID)[8:])

    def test_another_content_has_another_uuid_and_the_same_the_same(self):
        for architecture, data in self.slices():
            code = data[:struct.unpack_from('<I', macho.Image(data).command(macho.SIGNATURE), 8)[0]]
            self.assertEqual(image_uuid.of_content(image_uuid.written(code, bytes(16))),
                             self.uuid(data), architecture)
            changed = code[:-1] + bytes([code[-1] ^ 1])
            self.assertNotEqual(image_uuid.of_content(changed), self.uuid(data), architecture)


class Library(Image, unittest.TestCase):
    image, symbols = LIBRARY, 'proCorvalen'
    folders = ('loader', 'springboard', 'apps', 'ui', 'welcome')
    linked = (*EVERYWHERE, check_image.SUBSTRATE)
    least_rows, least_selectors = 60, 40

    def test_imports_are_the_seam_and_what_compilers_call(self):
        seam = set(re.findall(r'PLATFORM_SYMBOL\((\w+)\)',
                              (ROOT / 'platform' / 'c_abi.hpp').read_text())) - {'name'}
        helpers = {'memcpy', 'memmove', 'memset', 'memcmp', 'strlen'}
        listed = {s.removeprefix('_') for s in check_image.exporters()} - {'dyld_stub_binder'}
        self.assertEqual(listed, seam | helpers)


class Bundle(Image, unittest.TestCase):
    image, symbols = BUNDLE, 'CorvalenPro'
    folders = ('settings',)
    linked = EVERYWHERE
    least_rows, least_selectors = 14, 30


class Yardstick(unittest.TestCase):
    def test_has_every_method_that_the_library_adds(self):
        sources = ''.join((ROOT / file).read_text() for file in
                          ('ui/block_alert.cpp', 'ui/block_timer.cpp', 'welcome/follow_handler.cpp'))
        joined = re.sub(r'"\s*\n\s*"', '', sources)
        added = re.findall(r'addedMethod<&[^,]+,\s*"([^"]+)"', joined)
        self.assertEqual(len(added), 24 + 3 + 4)
        with tempfile.TemporaryDirectory() as out:
            name = 'plain_tweak_with_metadata'
            subprocess.run([ROOT / 'device' / 'build.sh', out, name], check=True,
                           capture_output=True)
            data = (pathlib.Path(out) / f'{name}.dylib').read_bytes()
        for architecture, part in macho.slices(data):
            at, size = next((o, s) for _, n, _, s, o, _ in macho.Image(part).sections()
                            if n == '__objc_methname')
            names = part[at:at + size].decode().split('\0')
            self.assertEqual(set(added) - set(names), set(), architecture)


class BrokenCopies:
    """Each check fails on a copy that is broken in its way; a subclass names the image."""
    image, place = None, None  # the file, and where it lies on a phone

    def problems(self, data):
        with tempfile.NamedTemporaryFile(suffix='.dylib') as file:
            file.write(data)
            file.flush()
            return '\n'.join(check_image.problems(file.name))

    def thin(self, architecture):
        return bytearray(dict(macho.slices(self.image.read_bytes()))[architecture])

    def with_command(self, architecture, kind, at, value):
        """A slice with a 32-bit field of one load command changed."""
        data = self.thin(architecture)
        image = macho.Image(data)
        offset = image.header_size
        for command in image.commands:
            if struct.unpack_from('<I', command)[0] == kind:
                struct.pack_into('<I', data, offset + at, value)
                return data
            offset += len(command)
        raise AssertionError('no such command')

    def section(self, architecture, wanted):
        return next(s for s in macho.Image(self.thin(architecture)).sections() if s[1] == wanted)

    def test_a_changed_byte_breaks_a_page_hash(self):
        data = bytearray(self.image.read_bytes())
        data[-0x6000] ^= 1
        self.assertIn('wrong hash of page', self.problems(data))

    def test_a_segment_on_a_page_of_4_kib(self):
        for architecture in ('arm64', 'armv7'):
            for name in ('__DATA', '__LINKEDIT'):
                data = self.thin(architecture)
                image = macho.Image(data)
                at = data.index(name.encode(), image.header_size) + 16  # the address
                data[at:at + 4] = struct.pack('<I', struct.unpack_from('<I', data, at)[0] + 0x1000)
                self.assertIn(f'{architecture}: segment {name} is not aligned to 16 KiB',
                              self.problems(data))

    def test_a_nop_and_an_address_that_was_left_open(self):
        for word, problem in ((0xd503201f, 'a nop in the code'),
                              (0x10000003, 'an address without its operand'),
                              (0x58000008, 'an address without its operand')):
            data = self.thin('arm64')
            struct.pack_into('<I', data, self.section('arm64', '__text')[4], word)
            self.assertIn(problem, self.problems(data))

    def test_no_uuid_and_a_wrong_one(self):
        for architecture in ('arm64', 'armv7'):
            data = self.with_command(architecture, macho.UUID, 0, macho.SOURCE_VERSION)
            self.assertIn(f'{architecture}: 0 load commands for the UUID', self.problems(data))
            data = self.with_command(architecture, macho.UUID, 8, 0)
            self.assertIn(f'{architecture}: the UUID is not that of the content',
                          self.problems(data))

    def test_one_slice_is_not_enough(self):
        self.assertIn('not arm64 and armv7', self.problems(self.thin('arm64')))

    def test_a_later_minimum_version(self):
        data = self.with_command('arm64', macho.MIN_VERSION, 8, 9 << 16)
        self.assertIn('minimum version is not 7.0', self.problems(data))

    def test_a_version_asked_of_a_linked_library(self):
        data = self.with_command('arm64', macho.LOAD_DYLIB, 20, 0x10000)
        self.assertIn('must not ask for a version', self.problems(data))

    def test_an_unknown_required_command(self):
        data = self.with_command('arm64', macho.MIN_VERSION, 0, 0x80000034)
        self.assertIn('unknown to old loaders', self.problems(data))

    def test_weak_binds_and_exports(self):
        self.assertIn('weak binds',
                      self.problems(self.with_command('arm64', macho.DYLD_INFO_ONLY, 28, 8)))
        self.assertIn('exported symbols',
                      self.problems(self.with_command('arm64', macho.DYLD_INFO_ONLY, 44, 8)))

    def test_an_initialiser_without_its_thumb_bit(self):
        data = self.thin('armv7')
        _, _, _, _, offset, _ = self.section('armv7', '__mod_init_func')
        data[offset] &= 0xfe
        self.assertIn('without its Thumb bit', self.problems(data))

    def test_a_function_pointer_without_its_thumb_bit(self):
        data = self.thin('armv7')
        image = macho.Image(data)
        text = next((a, a + s) for _, n, a, s, _, _ in image.sections() if n == '__text')
        _, _, _, size, offset, _ = self.section('armv7', '__const')
        for at in range(offset, offset + size - 3, 4):
            value, = struct.unpack_from('<I', data, at)
            if text[0] <= value < text[1] and value & 1:
                data[at] &= 0xfe
        self.assertIn('into code without its Thumb bit', self.problems(data))

    def test_a_slice_over_the_budget(self):
        self.assertIn('not below', self.problems(self.thin('arm64') + bytes(check_image.LARGEST)))

    def test_an_initialiser_too_many_and_none(self):
        for architecture, word in (('arm64', 8), ('armv7', 4)):
            data = self.thin(architecture)
            name = data.index(b'__mod_init_func')
            size = name + 32 + word  # behind the two names and the address
            for count in (2, 0):
                struct.pack_into('<Q' if word == 8 else '<I', data, size, count * word)
                self.assertIn(f'{architecture}: {count} initialisers', self.problems(data))

    def with_path(self, old, new):
        """A slice with another path, or another start of one, in its load commands."""
        data = self.thin('arm64')
        at = data.index(old.encode())
        data[at:at + len(old)] = new.encode().ljust(len(old), b'\0')
        return data

    def test_another_library(self):
        core = EVERYWHERE[0]
        other = core.replace('CoreFoundation', 'Preferences')
        problems = self.problems(self.with_path(core, other))
        self.assertIn(f'{other} is linked', problems)
        self.assertRegex(problems, r'_\w*CF\w+ is bound to Preferences')

    def test_an_import_that_nobody_has(self):
        data = self.thin('arm64').replace(b'_objc_getClass\0', b'_objc_getGlass\0')
        self.assertIn('_objc_getGlass is imported but not', self.problems(data))

    def test_another_place(self):
        data = self.with_path(self.place, self.place.replace('/L', '/l'))
        self.assertIn('is none of the places', self.problems(data))


class BrokenLibraries(BrokenCopies, unittest.TestCase):
    image, place = LIBRARY, '/Library/MobileSubstrate/'


class BrokenBundles(BrokenCopies, unittest.TestCase):
    image, place = BUNDLE, '/Library/PreferenceBundles/'

    def test_substrate(self):
        data = self.with_path(EVERYWHERE[0], check_image.SUBSTRATE)
        self.assertIn(f'{check_image.SUBSTRATE} is linked', self.problems(data))


class Assembly(unittest.TestCase):
    """What the build's own tools refuse, or leave as it is."""

    def test_an_address_out_of_reach_is_refused(self):
        self.assertEqual(address_sites.instruction(0x10000003, -7), 0x10000003 | 1 << 29 | 0x7fffe << 5)
        for word, distance in ((0x10000003, 1 << 20), (0x58000008, -(1 << 20) - 4), (0x58000008, 6),
                               (0xd503201f, 8)):
            with self.assertRaises(SystemExit):
                address_sites.instruction(word, distance)

    def test_pairs_that_are_no_pairs_stay(self):
        page, hint = 'Lloh0:\n\tadrp\tx8, _a@PAGE\nLloh1:', '\t.loh AdrpAdd\tLloh0, Lloh1'
        for second in ('\tadd\tx8, x9, _a@PAGEOFF', '\tadd\tx8, x8, _b@PAGEOFF',
                       '\tadd\tx8, x8, _a@PAGEOFF+8', '\tldrb\tw8, [x8, _a@PAGEOFF]'):
            lines = f'{page}\n{second}\n{hint}'.split('\n')
            self.assertEqual(list(shorten_addresses.fixed(lines)), lines)
        lines = f'{page}\n\tldr\td0, [x8, _a@PAGEOFF]\n{hint}'.split('\n')
        self.assertIn('\tldr\td0, #0', list(shorten_addresses.fixed(lines)))

    def test_weak_definitions_are_refused_before_linking(self):
        with self.assertRaises(SystemExit):
            list(fix_armv7_assembly.fixed(['\t.weak_definition _f']))


class Everything(unittest.TestCase):
    def test_two_builds_in_two_folders_give_the_same_bytes(self):
        with tempfile.TemporaryDirectory() as folder:
            second = pathlib.Path(folder) / 'second'
            package(second)
            files = [p.relative_to(OUT) for p in OUT.rglob('*') if p.is_file()]
            self.assertGreater(len(files), 15)
            for file in files:
                self.assertEqual((OUT / file).read_bytes(), (second / file).read_bytes(), file)

    def test_says_which_facts_of_the_publisher_are_missing(self):
        for variable in ('CORVALEN_CONTACT', 'CORVALEN_URL'):
            self.assertIn(f'{variable} is not set', SAID)

    def test_refuses_what_it_does_not_know(self):
        for arguments in (['--rep', 'x'], ['--repo'], ['a', 'b']):
            done = subprocess.run([SCRIPT, *arguments], capture_output=True, text=True, cwd=WORK.name)
            self.assertNotEqual(done.returncode, 0, arguments)
            self.assertNotIn('Building', done.stdout)


if __name__ == '__main__':
    os.chdir(ROOT)
    unittest.main()
