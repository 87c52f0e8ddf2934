"""The UUID by which a crash log finds the symbols of a slice: a hash of everything that is signed."""
import hashlib
import struct
import uuid

import macho

EMPTY_COMMAND = struct.pack('<II16x', macho.UUID, 24)


def place(data):
    """The file offset of the UUID, None if there is none."""
    image = macho.Image(data)
    at = image.header_size
    for kind, command in zip(image.kinds(), image.commands):
        if kind == macho.UUID:
            return at + 8
        at += len(command)
    return None


def of_content(code):
    """The UUID of everything before the signature, whatever UUID stands in it."""
    at = place(code)
    without = code[:at] + bytes(16) + code[at + 16:]
    return uuid.UUID(bytes=hashlib.sha1(without).digest()[:16], version=5).bytes


def written(data, value):
    """The file with that UUID in its place."""
    at = place(data)
    return data[:at] + value + data[at + 16:]
