"""The ad-hoc code signature that kernels of iOS 7 to 9 read: SHA-1, pages of 4 KiB."""
# docs/decisions.md: A signature of SHA-1
import hashlib
import struct

PAGE = 4096
HASH_SIZE = 20
SUPER_BLOB, CODE_DIRECTORY = 0xfade0cc0, 0xfade0c02
REQUIREMENTS = struct.pack('>III', 0xfade0c01, 12, 0)
EMPTY_WRAPPER = struct.pack('>II', 0xfade0b01, 8)
SPECIAL_SLOTS = 2  # requirements, and Info.plist, of which there is none
DIRECTORY_HEADER = 48
AD_HOC = 2


def page_hashes(data):
    return [hashlib.sha1(data[at:at + PAGE]).digest() for at in range(0, len(data), PAGE)]


def size(code_length, identifier):
    """Bytes that the signature of so much code takes, rounded to 16."""
    pages = (code_length + PAGE - 1) // PAGE
    directory = (DIRECTORY_HEADER + len(identifier) + 1 + HASH_SIZE * (SPECIAL_SLOTS + pages))
    total = 12 + 3 * 8 + directory + len(REQUIREMENTS) + len(EMPTY_WRAPPER)
    return (total + 15) & ~15


def sign(code, identifier):
    """The signature of everything before it, padded to its size()."""
    name = identifier.encode() + b'\0'
    hashes = page_hashes(code)
    hash_offset = DIRECTORY_HEADER + len(name) + HASH_SIZE * SPECIAL_SLOTS
    length = hash_offset + HASH_SIZE * len(hashes)
    directory = struct.pack('>9I4B2I', CODE_DIRECTORY, length, 0x20100, AD_HOC, hash_offset,
                            DIRECTORY_HEADER, SPECIAL_SLOTS, len(hashes), len(code),
                            HASH_SIZE, 1, 0, 12, 0, 0)
    directory += name + hashlib.sha1(REQUIREMENTS).digest() + bytes(HASH_SIZE) + b''.join(hashes)
    blobs = [(0, directory), (2, REQUIREMENTS), (0x10000, EMPTY_WRAPPER)]
    at = 12 + 8 * len(blobs)
    index = b''
    for slot, blob in blobs:
        index += struct.pack('>II', slot, at)
        at += len(blob)
    signature = struct.pack('>III', SUPER_BLOB, at, len(blobs)) + index
    signature += b''.join(blob for _, blob in blobs)
    return signature.ljust(size(len(code), identifier), b'\0')


def problems(code, signature):
    """What is wrong with a signature of `code`, read from the signature alone."""
    magic, _, count = struct.unpack_from('>III', signature)
    if magic != SUPER_BLOB:
        return ['no signature blob']
    blobs = {}
    for i in range(count):
        slot, at = struct.unpack_from('>II', signature, 12 + 8 * i)
        length, = struct.unpack_from('>I', signature, at + 4)
        blobs[slot] = signature[at:at + length]
    directory = blobs.get(0, b'')
    if len(directory) < DIRECTORY_HEADER or \
            struct.unpack_from('>I', directory)[0] != CODE_DIRECTORY:
        return ['no code directory']
    fields = struct.unpack_from('>9I4B', directory)
    flags, hash_offset, special, pages, limit = fields[3], fields[4], fields[6], fields[7], fields[8]
    found = []
    if fields[9:11] != (HASH_SIZE, 1) or fields[12] != 12:
        found.append('hashes are not SHA-1 over 4 KiB pages')
    if flags != AD_HOC:
        found.append('not an ad-hoc signature')
    if limit != len(code):
        found.append(f'covers {limit} bytes of {len(code)}')
    wanted = page_hashes(code)
    if pages != len(wanted):
        found.append(f'{pages} page hashes for {len(wanted)} pages')
    for i, page in enumerate(wanted[:pages]):
        at = hash_offset + HASH_SIZE * i
        if directory[at:at + HASH_SIZE] != page:
            found.append(f'wrong hash of page {i}')
    for slot in range(1, special + 1):
        at = hash_offset - HASH_SIZE * slot
        want = hashlib.sha1(blobs[slot]).digest() if slot in blobs else bytes(HASH_SIZE)
        if directory[at:at + HASH_SIZE] != want:
            found.append(f'wrong hash in special slot {slot}')
    return found
