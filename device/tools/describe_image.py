#!/usr/bin/env python3
"""describe_image.py FILE: size, imports and linked libraries of each slice, as a Markdown table."""
import pathlib
import sys

import check_image
import macho


def main():
    path = sys.argv[1]
    print('| slice | bytes | imports | linked libraries |')
    print('|---|---|---|---|')
    for architecture, data in macho.slices(pathlib.Path(path).read_bytes()):
        imports = {symbol for _, _, symbol in check_image.bound(path, architecture)}
        linked = [pathlib.PurePosixPath(name).name
                  for name, _ in macho.Image(data).linked_libraries()]
        print(f'| {architecture} | {len(data):,} | {len(imports)} | {", ".join(linked)} |')


if __name__ == '__main__':
    main()
