#!/usr/bin/env python3
"""describe_image.py FILE…: size, imports and linked libraries of each slice, as a Markdown table."""
import pathlib
import sys

import check_image
import macho


def rows(path):
    for architecture, data in macho.slices(path.read_bytes()):
        imports = {symbol for _, _, symbol in check_image.bound(path, architecture)}
        linked = [pathlib.PurePosixPath(name).name
                  for name, _ in macho.Image(data).linked_libraries()]
        yield (f'| {path.name} | {architecture} | {len(data):,} | {len(imports)} '
               f'| {", ".join(linked)} |')


def main():
    print('| file | slice | bytes | imports | linked libraries |')
    print('|---|---|---|---|---|')
    for path in sys.argv[1:]:
        print('\n'.join(rows(pathlib.Path(path))))


if __name__ == '__main__':
    main()
