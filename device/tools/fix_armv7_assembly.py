#!/usr/bin/env python3
"""fix_armv7_assembly.py FILE.s: rewrites what the 32-bit linker gets wrong.

1. Entries of the non-lazy pointer section get no bind, and references to their private labels lose
   their offset: each entry becomes an ordinary pointer with an ordinary local label.
2. A pointer to a weak Thumb function would get the Thumb bit twice. There is no way to write it
   right, so weak definitions are refused: the sources must be merged into one module before.
3. It crashes on two of Objective-C's sections and drops that of selectors: the former have another
   name until the file is finished, the latter gets an ordinary type. The library has none of them,
   but what it is measured against has.
"""
import pathlib
import re
import sys

import macho

WEAK = re.compile(r'\s*\.weak_def')
PRIVATE_POINTER = re.compile(r'\bL(_[\w.$]+)\$non_lazy_ptr')
INDIRECT = re.compile(r'(\s*)\.indirect_symbol\s+(\S+)')
ZERO = re.compile(r'\s*\.long\s+0\s*$')


def fixed(lines):
    drop_zero = False
    for line in lines:
        if WEAK.match(line):
            raise SystemExit(f'weak definition left: {line.strip()}')
        line = PRIVATE_POINTER.sub(r'import\1', line)
        line = line.replace('__DATA,__nl_symbol_ptr,non_lazy_symbol_pointers', '__DATA,__imports')
        for name, other in macho.RENAMED:
            line = line.replace(f'__DATA,{name}', f'__DATA,{other}')
        line = line.replace('__objc_selrefs,literal_pointers', '__objc_selrefs,regular')
        if drop_zero and ZERO.match(line):
            drop_zero = False
            continue
        drop_zero = False
        if match := INDIRECT.match(line):
            line = f'{match[1]}.long\t{match[2]}'
            drop_zero = True
        yield line


def main():
    path = pathlib.Path(sys.argv[1])
    path.write_text('\n'.join(fixed(path.read_text().split('\n'))))


if __name__ == '__main__':
    main()
