#!/usr/bin/env python3
"""make_filler.py FILE: assembly that fills each segment of a linked file up to the page size.

To be linked in front of the same objects again, by a linker that aligns segments to less. The data's
filler comes first: behind, the linker would put its tables after it, and so on a page of their own.
"""
# docs/decisions.md: Segments of 16 KiB
import pathlib
import sys

import macho

SECTIONS = {'__TEXT': '__filler', '__DATA': '__data'}


def filler(image):
    for name, _, size, *_ in image.segments():
        missing = -size % macho.PAGE
        if name in SECTIONS and missing:
            yield f'.section {name},{SECTIONS[name]}'
            yield f'filler{name}:'
            yield f'.space {missing}'
            yield f'.no_dead_strip filler{name}'


def main():
    image = macho.Image(pathlib.Path(sys.argv[1]).read_bytes())
    print('\n'.join(filler(image)))


if __name__ == '__main__':
    main()
