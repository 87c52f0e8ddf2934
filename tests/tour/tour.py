#!/usr/bin/env python3
"""tour.py BUILD: does what docs/architecture.md and CONTRIBUTING.md tell a newcomer to do, to the letter.

Every step of theirs is a sentence and the block below it: `New file NAME`, `In NAME, above|below|in place
of LINE`, or a block of commands. The steps are carried out in order on a copy of the sources; the commands
must succeed, and of those that play scenarios at least one must fail without the steps before it.
What must fail first is tried with the programs of BUILD.
"""
import dataclasses
import pathlib
import re
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
    """The sources as the steps leave them, and what is built of them: of the tests those that a step is about."""

    def __init__(self, folder, build, steps):
        self.folder = folder
        self.build = build
        shutil.copytree(ROOT, folder, ignore=lambda _, names: SKIPPED & set(names))
        edited = {step.file for step in steps}
        for test in (folder / "tests").glob("**/*_test.cpp"):
            if str(test.relative_to(folder)) not in edited:
                test.unlink()

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

    # ---- Building

    def configured(self):
        return (self.folder / "build" / "host").exists()

    def configure(self):
        """As BUILD is, but without what takes long and no step is about: optimisation, the device library."""
        self.run("cmake --preset host -DCMAKE_CXX_FLAGS_RELWITHDEBINFO='-O0 -g0' -DDEVICE_CLANG=OFF")

    def run(self, command):
        done = self.shell(command)
        if done.returncode:
            raise Rotten(f"{command}\n{done.stdout[-4000:]}{done.stderr[-3000:]}")

    # ---- Commands

    def carry_out(self, step):
        for command in step.block.strip().splitlines():
            if command.startswith("cmake --build"):
                self.must_fail(step)
                if not self.configured():
                    self.configure()
            done = self.shell(command)
            print(f"  {command}: {'as written' if done.returncode == 0 else 'fails'}", flush=True)
            if done.returncode:
                raise Rotten(f"{step.document}: {command}\n{done.stdout[-4000:]}{done.stderr[-3000:]}")

    def shell(self, command):
        return subprocess.run(["bash", "-c", command], cwd=self.folder, capture_output=True, text=True, check=False)

    def must_fail(self, step):
        """What the steps are to bring about is not there before they are built."""
        runs = [command for command in step.block.splitlines() if "corvalen-sim run" in command]
        if not self.configured():
            runs = [command.replace("build/host/", f"{self.build}/") for command in runs]
        if runs and all(self.shell(command).returncode == 0 for command in runs):
            raise Rotten(f"{step.document}: all hold without the steps before them: {'; '.join(runs)}")


def main():
    build = pathlib.Path(sys.argv[1]).resolve()
    work = pathlib.Path(tempfile.mkdtemp(prefix="corvalen-tour-"))
    try:
        for document in DOCUMENTS:
            check_quotations(document)
        steps = {document: list(steps_of(document)) for document in DOCUMENTS}
        copy = Copy(work / "source", build, sum(steps.values(), []))
        for document in DOCUMENTS:
            print(document, flush=True)
            for step in steps[document]:
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
