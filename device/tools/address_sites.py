"""Fills in the operands that shorten_addresses.py left open, from the table that it has put aside."""
import struct

SEGMENT = '__SITES'
ADR, ADR_MASK = 0x10000000, 0x9f000000
LOAD, LOAD_MASK = 0x18000000, 0x3b000000  # a load relative to its own place, of any width


def instruction(word, distance):
    """The instruction with its operand: bytes from its place to its target."""
    if not -(1 << 20) <= distance < 1 << 20:
        raise SystemExit(f'{distance} bytes are out of reach of one instruction')
    if word & ADR_MASK == ADR:
        return word | (distance & 3) << 29 | (distance >> 2 & 0x7ffff) << 5
    if word & LOAD_MASK == LOAD and distance % 4 == 0:
        return word | (distance >> 2 & 0x7ffff) << 5
    raise SystemExit(f'{word:#x} cannot take {distance}')


def filled_in(image):
    """The contents of an image, with every operand in its place."""
    contents = bytearray(image.data)
    text = next(s for s in image.sections() if s[1] == '__text')
    for _, address, size, at, *_ in (s[1:] for s in image.sections() if s[0] == SEGMENT):
        for row in range(at, at + size, 8):
            site, target = struct.unpack_from('<ii', contents, row)
            place = text[4] + address + site - text[2]
            word, = struct.unpack_from('<I', contents, place)
            struct.pack_into('<I', contents, place, instruction(word, target - site))
    return bytes(contents)


def without_table(image):
    """Drops the table's segment, which is the last before __LINKEDIT, and moves that one forward."""
    commands = image.segment_commands()
    names = [name for name, *_ in image.segments()]
    if SEGMENT not in names:
        return
    if names[-2] != SEGMENT:
        raise SystemExit(f'{SEGMENT} is not last')
    table, linkedit = commands[-2:]
    linkedit[24:32], linkedit[40:48] = table[24:32], table[40:48]  # address, file offset
    image.commands = [c for c in image.commands if c is not table]
