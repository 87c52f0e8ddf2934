"""Reading and rebuilding Mach-O files, as far as the device build needs it."""
import struct

FAT_MAGIC = 0xcafebabe
PAGE = 0x4000  # of the newer kernels, for both slices; the older ones' 0x1000 divides it
SEGMENT, SYMBOLS, DYNAMIC_SYMBOLS, LOAD_DYLIB, ID_DYLIB = 0x1, 0x2, 0xb, 0xc, 0xd
SEGMENT_64, UUID, SIGNATURE, MIN_VERSION = 0x19, 0x1b, 0x1d, 0x25
FUNCTION_STARTS, DATA_IN_CODE, SOURCE_VERSION = 0x26, 0x29, 0x2a
DYLD_INFO_ONLY = 0x80000022

# Sections that the 32-bit linker knows under another name.
RENAMED = (('__objc_imageinfo', '__objc_info'), ('__objc_catlist', '__objc_cats'))


def slices(data):
    """Yields the thin files of a fat or thin one, as (architecture, bytes)."""
    if struct.unpack_from('>I', data)[0] != FAT_MAGIC:
        yield Image(data).architecture, data
        return
    for i in range(struct.unpack_from('>I', data, 4)[0]):
        _, _, offset, size, _ = struct.unpack_from('>5I', data, 8 + 20 * i)
        part = data[offset:offset + size]
        yield Image(part).architecture, part


class Image:
    """One thin file: its header, its load commands, and the fields that differ in width."""

    def __init__(self, data):
        self.data = data
        magic, self.cpu, self.subtype, self.filetype, count, _, self.flags = \
            struct.unpack_from('<7I', data)
        if magic not in (0xfeedface, 0xfeedfacf):
            raise ValueError('not a Mach-O file')
        self.wide = magic == 0xfeedfacf
        self.architecture = 'arm64' if self.wide else 'armv7'
        self.header_size = 32 if self.wide else 28
        self.symbol_size = 16 if self.wide else 12
        self.commands = []
        at = self.header_size
        for _ in range(count):
            kind, size = struct.unpack_from('<II', data, at)
            self.commands.append(bytearray(data[at:at + size]))
            at += size
        self.commands_end = at

    def kinds(self):
        return [struct.unpack_from('<I', command)[0] for command in self.commands]

    def command(self, kind):
        for command in self.commands:
            if struct.unpack_from('<I', command)[0] == kind:
                return command
        return None

    def segment_commands(self):
        return [c for c in self.commands
                if struct.unpack_from('<I', c)[0] in (SEGMENT, SEGMENT_64)]

    def segments(self):
        """(name, address, size, file offset, file size, initial protection) of each segment."""
        for command in self.segment_commands():
            name = command[8:24].rstrip(b'\0').decode()
            fields = struct.unpack_from('<4Q' if self.wide else '<4I', command, 24)
            protection, = struct.unpack_from('<I', command, 60 if self.wide else 44)
            yield (name, *fields, protection)

    def sections(self):
        """(segment, name, address, size, file offset, type) of each section."""
        first, each = (72, 80) if self.wide else (56, 68)
        for command in self.segment_commands():
            count, = struct.unpack_from('<I', command, 64 if self.wide else 48)
            for i in range(count):
                at = first + i * each
                name = command[at:at + 16].rstrip(b'\0').decode()
                segment = command[at + 16:at + 32].rstrip(b'\0').decode()
                address, size = struct.unpack_from('<QQ' if self.wide else '<II', command, at + 32)
                offset, = struct.unpack_from('<I', command, at + (48 if self.wide else 40))
                kind, = struct.unpack_from('<I', command, at + (64 if self.wide else 56))
                yield segment, name, address, size, offset, kind & 0xff

    def install_name(self):
        """Where the file says it lies on a phone; nothing if it does not say."""
        command = self.command(ID_DYLIB)
        if not command:
            return ''
        start, = struct.unpack_from('<I', command, 8)
        return bytes(command[start:]).split(b'\0')[0].decode()

    def linked_libraries(self):
        """(install name, compatibility version) of each library that is linked."""
        for command in self.commands:
            if struct.unpack_from('<I', command)[0] == LOAD_DYLIB:
                start, = struct.unpack_from('<I', command, 8)
                compatibility, = struct.unpack_from('<I', command, 20)
                yield bytes(command[start:]).split(b'\0')[0].decode(), compatibility
