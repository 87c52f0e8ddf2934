#!/usr/bin/env python3
"""shorten_addresses.py FILE.s: one instruction in place of two wherever 64-bit code makes an address.

The compiler makes an address of a page and an offset into it, and hints where the linker may do with one
instruction; but the linker leaves a nop in the other's place. Here the pair itself becomes that one
instruction. No relocation can express its operand: it is left 0, and a row of the table __SITES,__sites
says where the instruction and its target are. finish_image.py fills the operands in and drops the table.
"""
import pathlib
import re
import sys

HINT = re.compile(r'\s*\.loh (?:AdrpAdd|AdrpLdr|AdrpLdrGot|AdrpLdrGotLdr)\s+(\w+), (\w+)')
PAGE = re.compile(r'\s*adrp\s+(x\d+), (.+)@PAGE(\+\d+)?$')
ADD = re.compile(r'\s*add\s+(x\d+), (x\d+), (.+)@PAGEOFF(\+\d+)?$')
LOAD = re.compile(r'\s*(ldr|ldrsw)\s+([xwsdq]\d+), \[(x\d+), (.+)@PAGEOFF(\+\d+)?\]$')
GLOBAL_OFFSET = re.compile(r'([\w.$]+)@GOTPAGE')
TABLE = 'address_sites'


def with_own_imports(lines):
    """The linker's table of imported addresses has no names: one of our own takes its place."""
    imports = {}
    for line in lines:
        for name in GLOBAL_OFFSET.findall(line):
            imports[name] = f'imported{name}'
        yield GLOBAL_OFFSET.sub(r'imported\1@PAGE', line)
    if imports:
        yield '\t.section\t__DATA,__imports'
        yield '\t.p2align\t3'
        for name, pointer in imports.items():
            yield f'{pointer}:\n\t.quad\t{name}'


def shortened(page, offset):
    """The one instruction for both, without its operand, and its target; None if there is none."""
    first = PAGE.match(page)
    if not first:
        return None
    target = first[2] + (first[3] or '')
    if (add := ADD.match(offset)) and add.group(2, 3, 4) == first.groups():
        return f'\tadr\t{add[1]}, #0', target
    if (load := LOAD.match(offset)) and load.group(3, 4, 5) == first.groups():
        return f'\t{load[1]}\t{load[2]}, #0', target
    return None


def fixed(lines):
    lines = list(with_own_imports(lines))
    places = {line[:-1]: i + 1 for i, line in enumerate(lines) if re.match(r'Lloh\d+:$', line)}
    sites = []
    for i, line in enumerate(lines):
        if not (hint := HINT.match(line)):
            continue
        page, offset = (places[label] for label in hint.groups())
        if short := shortened(lines[page], lines[offset]):
            lines[page], lines[i] = '', ''
            lines[offset], target = short
            sites.append((hint[2], target))
    yield from lines
    if sites:
        yield f'\t.section\t__SITES,__sites,regular,no_dead_strip\n{TABLE}:'
        for site, target in sites:
            yield f'\t.long\t{site}-{TABLE}, {target}-{TABLE}'


def main():
    path = pathlib.Path(sys.argv[1])
    path.write_text('\n'.join(fixed(path.read_text().split('\n'))) + '\n')


if __name__ == '__main__':
    main()
