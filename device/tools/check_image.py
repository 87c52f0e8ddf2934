#!/usr/bin/env python3
"""check_image.py FILE: what the loaders of iOS 7 to 9 demand of an image, and what we do. The image is
the library or, by its install name, the settings bundle's executable.

Reads the file by itself and with LLVM's tools. Prints what is wrong; exit status 1 if anything is.
"""
import pathlib
import re
import struct
import subprocess
import sys

import code_signature
import image_uuid
import macho
import verdict

STUBS = pathlib.Path(__file__).parent.parent / 'stubs' / 'imports.txt'
# Where images lie, and what they must not link there, though the build has it.
SUBSTRATE = '/Library/Frameworks/CydiaSubstrate.framework/CydiaSubstrate'
NOT_LINKED = {'/Library/MobileSubstrate/DynamicLibraries/': set(),
              '/Library/PreferenceBundles/': {SUBSTRATE}}
LARGEST = 64 * 1024  # bytes a slice
INITIALISERS, ZERO_FILL = 9, 1
WEAK_FLAGS = 0x18000
KNOWN_REQUIRED = {macho.DYLD_INFO_ONLY}
IOS_7 = 7 << 16
NOP, REGISTER = 0xd503201f, 31
OPEN_OPERANDS = {0x10000000, 0x58000000, 0x18000000, 0x98000000, 0x1c000000, 0x5c000000, 0x9c000000}


def exporters():
    """symbol -> short name of the library that has it."""
    found = {}
    for line in STUBS.read_text().splitlines():
        line = line.split('#')[0].strip()
        if line:
            install_name, symbols = line.split(' : ')
            for symbol in symbols.split():
                found[symbol.removeprefix('D:')] = install_name.strip()
    return found


def layout_problems(image):
    segments = list(image.segments())
    for name, address, size, offset, file_size, protection in segments:
        if address % macho.PAGE or offset % macho.PAGE:
            yield f'segment {name} is not aligned to 16 KiB'
        if size < file_size:
            yield f'segment {name} is larger in the file than in memory'
        if offset == 0 and (protection != 5 or file_size < image.commands_end):
            yield 'load commands are not in an executable segment'
    for i, (name, address, size, *_) in enumerate(segments):
        for other, start, length, *_ in segments[i + 1:]:
            if address < start + length and start < address + size:
                yield f'segments {name} and {other} overlap'
    if segments[-1][0] != '__LINKEDIT' or max(s[3] for s in segments) != segments[-1][3]:
        yield '__LINKEDIT is not last'
    for segment, name, _, _, offset, kind in image.sections():
        if kind == ZERO_FILL and offset:
            yield f'zero-fill section {name} has a file offset'
        if name == '__nl_symbol_ptr':
            yield 'imported variables in __nl_symbol_ptr would not be bound'


def command_problems(image):
    kinds = image.kinds()
    for kind in kinds:
        if kind & 0x80000000 and kind not in KNOWN_REQUIRED:
            yield f'load command {kind:#x} is unknown to old loaders'
    for kind, name in ((macho.MIN_VERSION, 'minimum version'), (macho.SIGNATURE, 'signature'),
                       (macho.DYLD_INFO_ONLY, 'fix-ups'), (macho.ID_DYLIB, 'install name'),
                       (macho.UUID, 'UUID')):
        if kinds.count(kind) != 1:
            yield f'{kinds.count(kind)} load commands for the {name}'
    version = image.command(macho.MIN_VERSION)
    if version and struct.unpack_from('<I', version, 8)[0] != IOS_7:
        yield 'the minimum version is not 7.0'
    info = image.command(macho.DYLD_INFO_ONLY)
    if info and struct.unpack_from('<I', info, 28)[0]:
        yield 'weak binds'
    if info and struct.unpack_from('<I', info, 44)[0]:
        yield 'exported symbols'
    if image.flags & WEAK_FLAGS:
        yield 'weak definitions or uses'
    for name, compatibility in image.linked_libraries():
        if compatibility:
            yield f'{name} must not ask for a version'


def initialiser_problems(image):
    word, code = (8, '<Q') if image.wide else (4, '<I')
    pointers = [struct.unpack_from(code, image.data, offset + at)[0]
                for _, _, _, size, offset, kind in image.sections() if kind == INITIALISERS
                for at in range(0, size, word)]
    if len(pointers) != 1:
        yield f'{len(pointers)} initialisers'
    if not image.wide and any(not pointer & 1 for pointer in pointers):
        yield 'an initialiser without its Thumb bit'


def rebased(path, architecture):
    """(section, address) of each pointer that moves with the image."""
    out = subprocess.run(['llvm-objdump-19', '--macho', f'--arch={architecture}', '--rebase', path],
                         capture_output=True, text=True, check=True).stdout
    for match in re.finditer(r'^__\w+\s+(\S+)\s+0x(\w+)\s+pointer', out, re.M):
        yield match[1], int(match[2], 16)


def thumb_problems(path, image):
    """Every pointer of the 32-bit slice into its code carries the Thumb bit."""
    if image.wide:
        return
    text = next((a, a + s) for _, n, a, s, _, _ in image.sections() if n == '__text')
    for name, address in rebased(path, image.architecture):
        offset = next(o + address - a for _, _, a, s, o, _ in image.sections()
                      if a <= address < a + s)
        value, = struct.unpack_from('<I', image.data, offset)
        if text[0] <= value < text[1] and not value & 1:
            yield f'a pointer {value:#x} into code without its Thumb bit in {name}'


def bound(path, architecture):
    """(segment, library, symbol) of each bind, as LLVM's tools read them."""
    out = subprocess.run(['llvm-objdump-19', '--macho', f'--arch={architecture}', '--bind',
                          '--lazy-bind', path], capture_output=True, text=True, check=True).stdout
    for match in re.finditer(r'^(__\w+)\s+\S+\s+0x\S+\s+(?:pointer\s+\d+\s+)?(\S+)\s+(\S+)$', out,
                             re.M):
        yield match.groups()


def import_problems(path, image):
    have = exporters()
    libraries = {pathlib.PurePosixPath(n).name.split('.')[0]: n for n in set(have.values())}
    binds = list(bound(path, image.architecture))
    for segment, library, symbol in binds:
        if segment != '__DATA':
            yield f'a fix-up in {segment}'
        if symbol not in have:
            yield f'{symbol} is imported but not one of the platform\'s'
        elif libraries.get(library.split('.')[0]) != have[symbol]:
            yield f'{symbol} is bound to {library}'
    names = {symbol for _, _, symbol in binds}
    undefined = subprocess.run(['llvm-nm-19', f'--arch={image.architecture}', '-u', '-j', path],
                               capture_output=True, text=True, check=True).stdout.split()
    for symbol in undefined:
        if symbol.startswith('_') and symbol not in names:
            yield f'{symbol} is undefined and not bound'


def link_problems(image):
    place = next((p for p in NOT_LINKED if image.install_name().startswith(p)), None)
    if not place:
        yield f'"{image.install_name()}" is none of the places of images'
        return
    allowed = set(exporters().values()) - NOT_LINKED[place]
    for name, _ in image.linked_libraries():
        if name not in allowed:
            yield f'{name} is linked'


def code_problems(image):
    """Instructions of the 64-bit slice that the build should have made one with another."""
    if not image.wide:
        return
    at, size = next((o, s) for _, n, _, s, o, _ in image.sections() if n == '__text')
    words = struct.unpack_from(f'<{size // 4}I', image.data, at)
    if NOP in words:
        yield 'a nop in the code'
    if any(word & ~REGISTER in OPEN_OPERANDS for word in words):
        yield 'an address without its operand'


def signature_problems(image):
    command = image.command(macho.SIGNATURE)
    if not command:
        return
    offset, size = struct.unpack_from('<II', command, 8)
    if offset + size != len(image.data):
        yield 'the signature does not end the file'
    yield from code_signature.problems(image.data[:offset], image.data[offset:offset + size])


def uuid_problems(image):
    signature, uuid = image.command(macho.SIGNATURE), image.command(macho.UUID)
    if not signature or not uuid:
        return
    end, = struct.unpack_from('<I', signature, 8)
    if bytes(uuid[8:]) != image_uuid.of_content(image.data[:end]):
        yield 'the UUID is not that of the content'


def slice_problems(path, image):
    yield from layout_problems(image)
    yield from command_problems(image)
    yield from initialiser_problems(image)
    yield from code_problems(image)
    yield from link_problems(image)
    yield from signature_problems(image)
    yield from uuid_problems(image)
    try:
        yield from thumb_problems(path, image)
        yield from import_problems(path, image)
    except subprocess.CalledProcessError as error:
        yield f'{error.cmd[0]} refuses the file: {error.stderr.strip()}'


def problems(path):
    data = pathlib.Path(path).read_bytes()
    seen = []
    for architecture, part in macho.slices(data):
        seen.append(architecture)
        for problem in slice_problems(path, macho.Image(part)):
            yield f'{architecture}: {problem}'
        if len(part) >= LARGEST:
            yield f'{architecture}: {len(part)} bytes, not below {LARGEST}'
    if sorted(seen) != ['arm64', 'armv7']:
        yield f'slices {seen}, not arm64 and armv7'


if __name__ == '__main__':
    verdict.end(sys.argv[1], problems(sys.argv[1]))
