#!/usr/bin/env python3
"""tour.py BUILD: does what docs/architecture.md and CONTRIBUTING.md tell a newcomer to do, to the letter.

Every step of theirs is a sentence and the block below it: `New file NAME`, `In NAME, above|below|in place
of LINE`, or a block of commands. The steps are carried out in order on a copy of the sources; the commands
must succeed, and of those that play scenarios at least one must fail without the steps before it.
In place of `cmake --build` only what the steps changed is compiled, and linked with the objects of BUILD.
"""
import concurrent.futures
import dataclasses
import json
import os
import pathlib
import re
import shlex
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
DOCUMENTS = ["docs/architecture.md", "CONTRIBUTING.md"]
SKIPPED = {"build", "out", ".git", ".cache", "__pycache__"}

FENCE = re.compile(r"^( *)```(\w*)\n(.*?)^\1```$", re.M | re.S)
NEW = re.compile(r"New file `([^`]+)`:\s*$")
EDIT = re.compile(r"In `([^`]+)`, (above|below|in place of) `([^`]+)`:\s*$")
QUOTED = re.compile(r"from `([^`]+)`:\n\n((?:    .*\n)+)")


class Rotten(Exception):
    """A document says what is not so."""


@dataclasses.dataclass
class Step:
    document: str
    kind: str  # new, above, below, in place of, commands
    file: str
    line: str
    block: str


def steps_of(document):
    text = (ROOT / document).read_text()
    for fence in FENCE.finditer(text):
        indent, language, block = fence.groups()
        block = re.sub(f"^{indent}", "", block, flags=re.M)
        before = text[:fence.start()]
        if language == "sh":
            yield Step(document, "commands", "", "", block)
        elif found := NEW.search(before):
            yield Step(document, "new", found[1], "", block)
        elif found := EDIT.search(before):
            yield Step(document, found[2], found[1], found[3], block)
        else:
            raise Rotten(f"{document}: a block that no sentence places:\n{block}")


def check_quotations(document):
    """Examples of style stand in the files that they are said to be from."""
    for file, block in QUOTED.findall((ROOT / document).read_text()):
        if re.sub("^    ", "", block, flags=re.M) not in (ROOT / file).read_text():
            raise Rotten(f"{document}: what is quoted from {file} does not stand there:\n{block}")


class Copy:
    """The sources as the steps leave them, with programs where the documents say that they are."""

    def __init__(self, folder, build):
        self.folder = folder
        self.build = build
        self.changed = set()  # since the last build
        self.objects = {}  # that take the place of BUILD's: source -> object
        shutil.copytree(ROOT, folder, ignore=lambda _, names: SKIPPED & set(names))
        self.programs = folder / "build" / "host"
        (self.programs / "tests").mkdir(parents=True)
        for name in ("corvalen-sim", "tests/corvalen_tests"):
            (self.programs / name).symlink_to(build / name)
        commands = json.loads((build / "compile_commands.json").read_text())
        self.units = {}  # (target, source) -> directory, words
        self.precompiled = None  # the same for the headers that CMake compiles once
        for command in commands:
            words = shlex.split(command["command"])
            target = re.search(r"CMakeFiles/(\w[\w-]*)\.dir", words[words.index("-o") + 1])[1]
            source = os.path.relpath(command["file"], ROOT)
            if source.endswith("cmake_pch.hxx.cxx"):
                self.precompiled = command["directory"], words
            else:
                self.units[target, source] = command["directory"], words

    # ---- Edits

    def apply(self, step):
        path = self.folder / step.file
        if step.kind == "new":
            if path.exists():
                raise Rotten(f"{step.document}: {step.file} is no new file")
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_text(step.block)
        else:
            if not path.exists():
                raise Rotten(f"{step.document}: there is no {step.file}")
            lines = path.read_text().split("\n")
            places = [number for number, line in enumerate(lines) if line == step.line]
            if len(places) != 1:
                raise Rotten(f"{step.document}: {step.file} has this line {len(places)} times: {step.line}")
            first = places[0] + (step.kind == "below")
            last = first + (step.kind == "in place of")
            lines[first:last] = step.block.rstrip("\n").split("\n") + (
                [""] if step.block.endswith("\n\n") else [])
            path.write_text("\n".join(lines))
        self.changed.add(step.file)

    # ---- What `cmake --build` would do

    def includes_changed(self, file, known):
        if file not in known:
            known[file] = file in self.changed
            path = self.folder / file
            if not known[file] and path.exists():
                inner = re.findall(r'^#include "(.+)"', path.read_text(errors="replace"), re.M)
                known[file] = any(self.includes_changed(name, known) for name in inner)
        return known[file]

    def compile(self, target, source):
        directory, words = self.units[target, source]
        out = self.programs / target / f"{source}.o"
        out.parent.mkdir(parents=True, exist_ok=True)
        words = self.of_the_copy(words)
        words[words.index("-o") + 1] = str(out)
        words[-1] = str(self.folder / source)
        done = subprocess.run(words, cwd=directory, capture_output=True, text=True, check=False)
        if done.returncode:
            raise Rotten(f"{source} does not compile:\n{done.stderr[:4000]}")
        return (target, source), out

    def of_the_copy(self, words):
        """A compiler's words with the copy in place of the sources, and without optimisation."""
        here = {f"-I{ROOT}": f"-I{self.folder}"}
        words = [here.get(word, word) for word in words]
        words = [word.replace(str(ROOT), str(self.folder)) if word.startswith("-DCORVALEN_SOURCE_DIR") else word
                 for word in words]
        for at, word in enumerate(words):
            if word.endswith("cmake_pch.hxx"):
                words[at] = str(self.programs / "precompiled.hpp")
        return [words[0], "-O0", "-g0", *(word for word in words[1:] if not re.fullmatch(r"-[Og]\w*", word))]

    def precompile(self):
        """What CMake has precompiled once is precompiled from the copy; it names its headers in full."""
        if not self.precompiled:
            return
        directory, words = self.precompiled
        header = next(word for word in words if word.endswith("cmake_pch.hxx"))
        own = self.programs / "precompiled.hpp"
        own.write_text(pathlib.Path(header).read_text().replace(f"{ROOT}/sim", f"{self.folder}/sim"))
        words = self.of_the_copy(words)
        words[words.index("-o") + 1] = f"{own}.gch"  # clang, which asks for another name, reads the text
        self.run(words, directory)

    def make(self):
        for source in sorted(self.changed):
            self.take_over_new(source)
        known = {}
        work = [unit for unit in self.units if self.is_wanted(*unit) and self.includes_changed(unit[1], known)]
        self.precompile()
        with concurrent.futures.ThreadPoolExecutor(os.cpu_count()) as pool:
            for unit, out in pool.map(lambda unit: self.compile(*unit), work):
                self.objects[unit] = out
        print(f"  compiled {len(work)} sources")
        self.link_library("proCorvalen", self.programs / "proCorvalen.so")
        bundle = self.programs / "CorvalenPro.bundle"
        self.run(["python3", "settings/make_bundle.py", str(self.programs), "1.0.0"])
        self.link_library("CorvalenPro", bundle / "CorvalenPro")
        self.link_program("corvalen-sim", self.programs / "corvalen-sim")
        self.link_program("corvalen_tests", self.programs / "tests" / "corvalen_tests")
        self.changed.clear()

    # Of the tests only those that a step is about: the others are BUILD's business.
    def is_wanted(self, target, source):
        if target == "corvalen_tests":
            return source in self.changed
        return target in ("proCorvalen", "CorvalenPro", "corvalen_sim", "corvalen-sim")

    def take_over_new(self, source):
        """A new source is compiled as the others of its folder are, as CMake's pattern would have it."""
        if not source.endswith(".cpp") or any(source == other for _, other in self.units):
            return
        for (target, other), unit in list(self.units.items()):
            if os.path.dirname(other) == os.path.dirname(source):
                self.units[target, source] = unit
                return
        raise Rotten(f"nothing else is compiled in {os.path.dirname(source)}")

    def object_of(self, target, source):
        if (target, source) in self.objects:
            return str(self.objects[target, source])
        directory, words = self.units[target, source]
        return os.path.join(directory, words[words.index("-o") + 1])

    def objects_of(self, target):
        return [self.object_of(*unit) for unit in self.units if unit[0] == target]

    def link_library(self, target, out):
        compiler = self.units[next(unit for unit in self.units if unit[0] == target)][1][0]
        self.run([compiler, "-shared", "-o", str(out), *self.objects_of(target)])

    def link_program(self, target, out):
        """BUILD's own link line, with the simulator's objects in place of its library."""
        said = subprocess.run(["ninja", "-C", str(self.build), "-t", "commands", "-s",
                               os.path.relpath(self.programs_of(target), self.build)],
                              capture_output=True, text=True, check=True).stdout
        linking = next(part for line in said.splitlines() for part in line.split(" && ") if " -o " in part)
        words = shlex.split(linking)
        result = []
        for word in words:
            if word.endswith("libcorvalen_sim.a"):
                result += self.objects_of("corvalen_sim")
            elif word.endswith(".o"):
                continue
            else:
                result.append(word)
        result[result.index("-o") + 1] = str(out)
        own = [self.object_of(*unit) for unit in self.units if unit[0] == target
               and (target != "corvalen_tests" or unit in self.objects)]
        at = result.index("-o") + 2
        out.unlink(missing_ok=True)
        self.run(result[:at] + own + result[at:], self.build)

    def programs_of(self, target):
        return self.build / ("tests/corvalen_tests" if target == "corvalen_tests" else target)

    def run(self, words, directory=None):
        done = subprocess.run(words, cwd=directory or self.folder, capture_output=True, text=True, check=False)
        if done.returncode:
            raise Rotten(f"{' '.join(words)[:300]}\n{done.stdout[-2000:]}{done.stderr[-4000:]}")

    # ---- Commands

    def carry_out(self, step):
        for command in step.block.strip().splitlines():
            if command.startswith("cmake --build"):
                self.must_fail(step)
                self.make()
                continue
            done = self.shell(command)
            print(f"  {command}: {'as written' if done.returncode == 0 else 'fails'}", flush=True)
            if done.returncode:
                raise Rotten(f"{step.document}: {command}\n{done.stdout[-3000:]}{done.stderr[-3000:]}")

    def shell(self, command):
        environment = {name: value for name, value in os.environ.items() if name != "CORVALEN_LIBRARY"}
        environment |= {"CORVALEN_LIBRARY": str(self.programs / "proCorvalen.so")}
        if not (self.programs / "proCorvalen.so").exists():
            del environment["CORVALEN_LIBRARY"]
        return subprocess.run(["bash", "-c", command], cwd=self.folder, capture_output=True, text=True,
                              env=environment, check=False)

    def must_fail(self, step):
        """What the steps are to bring about is not there before they are built."""
        runs = [command for command in step.block.splitlines() if "corvalen-sim run" in command]
        if runs and all(self.shell(command).returncode == 0 for command in runs):
            raise Rotten(f"{step.document}: all hold without the steps before them: {'; '.join(runs)}")


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    work = pathlib.Path(tempfile.mkdtemp(prefix="corvalen-tour-"))
    try:
        for document in DOCUMENTS:
            check_quotations(document)
        copy = Copy(work / "source", build)
        for document in DOCUMENTS:
            print(document, flush=True)
            for step in steps_of(document):
                if step.kind == "commands":
                    copy.carry_out(step)
                else:
                    copy.apply(step)
    except Rotten as rotten:
        print(rotten, file=sys.stderr)
        return 1
    finally:
        shutil.rmtree(work, ignore_errors=True)
    print("Every step works as it is written")
    return 0


sys.exit(main())
