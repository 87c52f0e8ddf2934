#!/usr/bin/env python3
"""mutants.py: tries whether the tests would notice a mistake in the library.

Every entry of tests/mutants/*.toml changes the library or the settings page in one place. Each
change is compiled and linked into a library and a bundle of its own, with which all scenarios are played and, if it lives, all tests
are run, the longest last, until one fails. What survives and is not argued about is a gap in the
tests. Exit status: 0 if there is none, 1 if there is, 2 if the data or the build is wrong.
"""

import argparse
import concurrent.futures
import dataclasses
import json
import os
import pathlib
import random
import re
import resource
import shlex
import shutil
import signal
import subprocess
import sys
import tempfile
import tomllib

ROOT = pathlib.Path(__file__).resolve().parent.parent
FIELDS = {"says", "file", "from", "to", "occurrence", "argued"}

# Tests by how long they take: the first that fails ends the trial. What tests the simulator alone
# would notice no change of the library.
SIMULATOR_ALONE = "MachO.*:Rebases.*:Binds.*:Arm*:Child.*:Search.*:Words.*:Shrinking.*:Drawing.*"
LONG = "*Rule.*:HostileSettings.*:Exploring.*"
# Name, tests, and how long they may take, as a multiple of what all scenarios may.
STAGES = [
    ("tests", f"*:-{LONG}:{SIMULATOR_ALONE}", 3),
    ("long tests", LONG, 15),
]
MEMORY = 8 << 30
# What a build makes of the sources: for each CMake target the file that is linked. The settings page
# is looked for beside the library.
LIBRARY, BUNDLE = "proCorvalen.so", "CorvalenPro.bundle"
IMAGES = {"proCorvalen": LIBRARY, "CorvalenPro": f"{BUNDLE}/CorvalenPro"}
ENTRY = "CorvalenPro.plist"


class WrongData(Exception):
    """An entry, or the build, with which no trial can be made."""


@dataclasses.dataclass
class Mutant:
    name: str
    says: str
    file: str
    before: str
    after: str
    occurrence: int
    argued: str
    entry: str  # the data file

    def wrong(self, what):
        return WrongData(f"{self.entry}: {self.name}: {what}")

    def apply(self):
        """The text of its file with the change made."""
        try:
            text = (ROOT / self.file).read_text()
        except OSError:
            raise self.wrong(f"there is no {self.file}") from None
        pieces = text.split(self.before)
        found = len(pieces) - 1
        if found == 0:
            raise self.wrong(f"its text does not occur in {self.file}")
        if self.occurrence == 0 and found > 1:
            raise self.wrong(f"its text occurs {found} times in {self.file}")
        if self.occurrence > found:
            raise self.wrong(f"its text occurs only {found} times in {self.file}")
        at = self.occurrence or 1
        return self.before.join(pieces[:at]) + self.after + self.before.join(pieces[at:])


def read_entry(file, name, entry):
    where = f"{file.name}: {name}"
    if not isinstance(entry, dict):
        raise WrongData(f"{where}: is no table")
    unknown, missing = set(entry) - FIELDS, {"says", "file", "from", "to"} - set(entry)
    if unknown or missing:
        wrong = [f"unknown {key}" for key in sorted(unknown)]
        wrong += [f"no {key}" for key in sorted(missing)]
        raise WrongData(f"{where}: {', '.join(wrong)}")
    for key, value in entry.items():
        if not isinstance(value, int if key == "occurrence" else str):
            raise WrongData(f"{where}: {key} has the wrong type")
    if not entry["from"] or entry["from"] == entry["to"]:
        raise WrongData(f"{where}: changes nothing")
    return Mutant(name, entry["says"].strip(), entry["file"], entry["from"], entry["to"],
                  entry.get("occurrence", 0), entry.get("argued", "").strip(), file.name)


def read_mutants(folder):
    mutants = {}
    for file in sorted(folder.glob("*.toml")):
        try:
            table = tomllib.loads(file.read_text())
        except tomllib.TOMLDecodeError as error:
            raise WrongData(f"{file.name}: {error}") from None
        for name, entry in table.items():
            if name in mutants:
                raise WrongData(f"{file.name}: {name}: is in {mutants[name].entry} too")
            mutants[name] = read_entry(file, name, entry)
            mutants[name].apply()
    if not mutants:
        raise WrongData(f"{folder}: no mutants")
    return list(mutants.values())


def work_folder():
    """In memory where there is room: each process that a scenario starts gets a copy of the library."""
    memory = "/dev/shm"
    room = os.access(memory, os.W_OK) and shutil.disk_usage(memory).free > 256 << 20
    in_memory = room and "TMPDIR" not in os.environ
    return pathlib.Path(tempfile.mkdtemp(prefix="corvalen-mutants-", dir=memory if in_memory else None))


def limit_memory():
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def play(command, library, folder, seconds):
    """Runs a program with that library. Its exit status (None: it hung) and all that it said."""
    environment = os.environ | {"CORVALEN_LIBRARY": str(library), "TMPDIR": str(folder)}
    process = subprocess.Popen(command, cwd=ROOT, env=environment, stdout=subprocess.PIPE,
                               stderr=subprocess.STDOUT, text=True, errors="replace",
                               start_new_session=True, preexec_fn=limit_memory)
    try:
        said, _ = process.communicate(timeout=seconds)
        return process.returncode, said
    except subprocess.TimeoutExpired:
        os.killpg(process.pid, signal.SIGKILL)
        said, _ = process.communicate()
        return None, said


class Build:
    """The host build whose objects and programs the trials use."""

    def __init__(self, folder, seconds):
        self.folder = folder
        self.seconds = seconds
        self.simulator = folder / "corvalen-sim"
        self.tests = folder / "tests" / "corvalen_tests"
        try:
            commands = json.loads((folder / "compile_commands.json").read_text())
        except OSError:
            raise WrongData(f"{folder} is not built") from None
        self.units = {image: {} for image in IMAGES}  # by source
        for command in commands:
            for image, units in self.units.items():
                if f"-D{image}_EXPORTS " in command["command"]:
                    source = os.path.relpath(command["file"], ROOT)
                    units[source] = (command["directory"], shlex.split(command["command"]))
        objects = [self.object_of(unit) for units in self.units.values() for unit in units.values()]
        for needed in (self.simulator, self.tests, self.folder / ENTRY, *objects):
            if not needed.exists():
                raise WrongData(f"{needed} is not built")
        self.launcher = shlex.split(os.environ.get("CMAKE_CXX_COMPILER_LAUNCHER", ""))
        self.scenarios = sorted(str(file.relative_to(ROOT))
                                for file in (ROOT / "scenarios").rglob("*.txt"))

    @staticmethod
    def object_of(unit):
        directory, words = unit
        return pathlib.Path(directory) / words[words.index("-o") + 1]

    @staticmethod
    def affected(units, changed):
        """Those of an image's sources that are that file or include it, however indirectly."""
        known = {}

        def includes(file):
            if file == changed:
                return True
            if file not in known:
                known[file] = False
                inner = re.findall(r'^#include "(.+)"', (ROOT / file).read_text(), re.M)
                known[file] = any(includes(name) for name in inner)
            return known[file]

        return [source for source in units if includes(source)]

    def compile(self, mutant, folder):
        """Builds the mutant's library and bundle in `folder`: there lies the changed file, and is
        found before the original one."""
        overlay = folder / "source"
        target = overlay / mutant.file
        target.parent.mkdir(parents=True)
        target.write_text(mutant.apply())
        (folder / ENTRY).symlink_to(self.folder / ENTRY)
        (folder / BUNDLE).mkdir()
        for part in (self.folder / BUNDLE).iterdir():
            if part != self.folder / IMAGES["CorvalenPro"]:
                (folder / BUNDLE / part.name).symlink_to(part)
        built = [self.compile_image(mutant, folder, image, overlay) for image in IMAGES]
        if not any(built):
            raise mutant.wrong(f"{mutant.file} is no part of the library, nor of the settings page")
        return folder / LIBRARY

    def compile_image(self, mutant, folder, image, overlay):
        """Builds one of them, or takes the unchanged one. Whether it was built."""
        units = self.units[image]
        affected = self.affected(units, mutant.file)
        if not affected:
            (folder / IMAGES[image]).symlink_to(self.folder / IMAGES[image])
            return False
        objects = {source: self.object_of(unit) for source, unit in units.items()}
        for number, source in enumerate(affected):
            directory, words = units[source]
            objects[source] = folder / f"{image}.{number}.o"
            words = list(words)
            words[words.index("-o") + 1] = str(objects[source])
            if source == mutant.file:
                words[-1] = str(overlay / source)
            # No optimisation and no warnings: what is no longer used may stay.
            words[1:1] = ["-I", str(overlay)]
            self.must_succeed(mutant, self.launcher + words + ["-O0", "-g0", "-w"], directory)
        compiler = units[affected[0]][1][0]
        self.must_succeed(mutant, [compiler, "-shared", "-o", str(folder / IMAGES[image]),
                                   *map(str, objects.values())], folder)
        return True

    @staticmethod
    def must_succeed(mutant, command, directory):
        done = subprocess.run(command, cwd=directory, capture_output=True, text=True, check=False)
        if done.returncode != 0:
            raise mutant.wrong("does not compile:\n" + done.stderr[:2000])

    def killer(self, library, folder, stages):
        """The first scenario or test that fails with that library; None if none does."""
        return self.failed_scenario(library, folder) or next(
            filter(None, (self.failed_test(library, folder, *stage) for stage in stages)), None)

    def failed_scenario(self, library, folder):
        run = [str(self.simulator), "run", "--leaks", "--fail-fast"]
        status, said = play([*run, *self.scenarios], library, folder, self.seconds)
        if status == 0:
            return None
        named = re.search(r"^(scenarios/\S+?\.txt):", said, re.M)
        if named:
            return named[1]
        for scenario in self.scenarios:
            status, _ = play([*run, scenario], library, folder, self.seconds / 4)
            if status != 0:
                return self.how(status) + scenario
        return "all scenarios together"

    def failed_test(self, library, folder, stage, tests, patience):
        command = [str(self.tests), "--gtest_fail_fast", f"--gtest_filter={tests}"]
        status, said = play(command, library, folder, patience * self.seconds)
        if status == 0:
            return None
        failed = re.search(r"^\[  FAILED  \] (\S+?),? ", said, re.M)
        if failed:
            return failed[1]
        begun = re.findall(r"^\[ RUN      \] (\S+)", said, re.M)
        return self.how(status) + (begun[-1] if begun else stage)

    @staticmethod
    def how(status):
        if status is None:
            return "hangs in "
        return "ends the program in " if status < 0 else ""


def trial(build, mutant, work, stages):
    """What became of it: ("killed" | "survived" | "argued" | "wrong", a line that says so)."""
    folder = work / mutant.name
    shutil.rmtree(folder, ignore_errors=True)
    try:
        library = build.compile(mutant, folder)
        killer = build.killer(library, folder, stages)
    except WrongData as error:
        return "wrong", str(error)
    finally:
        shutil.rmtree(folder, ignore_errors=True)
    if killer and mutant.argued:
        return "wrong", f"{mutant.entry}: {mutant.name}: argued, but killed: {killer}"
    if killer:
        return "killed", f"killed    {mutant.name}: {killer}"
    if mutant.argued:
        return "argued", f"argued    {mutant.name}: {mutant.argued}"
    return "survived", f"SURVIVED  {mutant.name}: {mutant.says}"


def chosen(mutants, options):
    if options.only:
        mutants = [mutant for mutant in mutants if re.search(options.only, mutant.name)]
        if not mutants:
            raise WrongData(f"no mutant is called {options.only}")
    if options.count:
        # Those that survive are run through all tests: a share leaves the argued ones out.
        mutants = [mutant for mutant in mutants if not mutant.argued]
        picked = random.Random(options.seed).sample(mutants, min(options.count, len(mutants)))
        mutants = [mutant for mutant in mutants if mutant in picked]
    return mutants


def try_all(options):
    mutants = read_mutants(options.data)
    if options.check:
        argued = sum(bool(mutant.argued) for mutant in mutants)
        print(f"{len(mutants)} mutants, {argued} of them argued, each with its place in the library")
        return 0
    mutants = chosen(mutants, options)
    build = Build(options.build.resolve(), options.timeout)
    work = work_folder()
    stages = STAGES[:1] if options.quick else STAGES
    one = lambda mutant: trial(build, mutant, work, stages)
    counts = dict.fromkeys(("killed", "survived", "argued", "wrong"), 0)
    try:
        if not build.failed_scenario(work / "no library", work):
            raise WrongData(f"{build.simulator} does not play with the library it is given")
        killer = build.killer(build.folder / LIBRARY, work, STAGES[:1])
        if killer:
            raise WrongData(f"the unchanged library fails {killer}")
        with concurrent.futures.ThreadPoolExecutor(options.jobs) as pool:
            for what, line in pool.map(one, mutants):
                counts[what] += 1
                print(line, file=sys.stderr if what == "wrong" else sys.stdout, flush=True)
    finally:
        shutil.rmtree(work, ignore_errors=True)
    print(f"{len(mutants)} mutants: {counts['killed']} killed, {counts['argued']} survived as argued, "
          f"{counts['survived'] + counts['wrong']} findings")
    if counts["wrong"]:
        return 2
    return 1 if counts["survived"] else 0


def main():
    parser = argparse.ArgumentParser(prog="corvalen mutants", description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--count", type=int, help="try only so many, drawn from those not argued")
    parser.add_argument("--seed", type=int, default=1, help="of that draw")
    parser.add_argument("--jobs", type=int, default=os.cpu_count(), help="how many at a time")
    parser.add_argument("--only", metavar="REGEX", help="only those whose name matches")
    parser.add_argument("--quick", action="store_true", help="leave the longest tests out")
    parser.add_argument("--timeout", type=float, default=120, metavar="SECONDS",
                        help="how long all scenarios may take; tests get more in proportion")
    parser.add_argument("--check", action="store_true", help="only see that the data is right")
    parser.add_argument("--build", type=pathlib.Path, default=ROOT / "build" / "host",
                        help="the host build to use")
    parser.add_argument("--data", type=pathlib.Path, default=ROOT / "tests" / "mutants",
                        help="the folder of the mutants")
    try:
        return try_all(parser.parse_args())
    except WrongData as error:
        print(f"mutants: {error}", file=sys.stderr)
        return 2


if __name__ == "__main__":
    sys.exit(main())
