#!/usr/bin/env python3
"""make_stubs.py OUT [MORE]: link stubs for the libraries of imports.txt, and of a second such file.

NAME.tbd for the 64-bit linker, and NAME.armv7.dylib for the 32-bit one, whose reader of .tbd files
fails. Versions are 0, or a phone's loader may refuse a library that is older than its stub.
"""
import pathlib
import subprocess
import sys

HERE = pathlib.Path(__file__).parent
TARGET = '--target=armv7-apple-ios7.0'


def libraries(text):
    """(install name, functions, variables) of each library."""
    found = {}
    for line in text.splitlines():
        line = line.split('#')[0].strip()
        if not line:
            continue
        install_name, symbols = (part.strip() for part in line.split(' : '))
        functions, variables = found.setdefault(install_name, ([], []))
        for symbol in symbols.split():
            (variables if symbol.startswith('D:') else functions).append(symbol.removeprefix('D:'))
    return [(install_name, *symbols) for install_name, symbols in found.items()]


def stub_name(install_name):
    return pathlib.PurePosixPath(install_name).name.split('.')[0]


def write_tbd(path, install_name, symbols):
    path.write_text(
        '--- !tapi-tbd-v3\narchs: [ arm64 ]\nplatform: ios\n'
        f'install-name: {install_name}\ncurrent-version: 0\ncompatibility-version: 0\n'
        f'exports:\n  - archs: [ arm64 ]\n    symbols: [ {", ".join(symbols)} ]\n...\n')


def write_dylib(path, install_name, functions, variables):
    source = path.with_suffix('.s')
    code = ''.join(f'.globl {s}\n.p2align 1\n.thumb_func {s}\n.code 16\n{s}: bx lr\n'
                   for s in functions)
    data = ''.join(f'.globl {s}\n{s}: .long 0\n' for s in variables)
    source.write_text('.text\n' + code + '.data\n' + data)
    compiled = path.with_suffix('.o')
    subprocess.check_call(['clang-19', TARGET, '-c', source, '-o', compiled])
    subprocess.check_call(
        ['ld64.lld.darwinold-13', '-arch', 'armv7', '-ios_version_min', '7.0', '-dylib',
         '-flat_namespace', '-undefined', 'dynamic_lookup', '-install_name', install_name,
         compiled, '-o', path])
    source.unlink()
    compiled.unlink()


def main():
    out = pathlib.Path(sys.argv[1])
    out.mkdir(parents=True, exist_ok=True)
    files = [HERE / 'imports.txt', *sys.argv[2:]]
    text = ''.join(pathlib.Path(file).read_text() for file in files)
    for install_name, functions, variables in libraries(text):
        name = stub_name(install_name)
        write_tbd(out / f'{name}.tbd', install_name, functions + variables)
        write_dylib(out / f'{name}.armv7.dylib', install_name, functions, variables)


if __name__ == '__main__':
    main()
