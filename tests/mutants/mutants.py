#!/usr/bin/env -S python3 -B
"""tests/mutants/mutants.py [FILE...] [--sample N] [--resume] [--list]: makes one mistake after another in src/ and sees
that a test fails.

Mistakes that can be made at run time are compiled into one copy of the library, and a number in the environment chooses
one. The others are made in the text of a copy, which is built anew for each. Both kinds are tried in both instances of
the engine, until one notices; where nothing does, the instructions are counted that the library then takes. Results
go to build/mutants/results.tsv.

An interrupted run is taken up where it was left, as long as nothing has changed. With --resume, what has been
found before counts as long as its line is there, but for what has survived without an explanation.
"""

import argparse
import hashlib
import os
import pathlib
import queue
import random
import re
import resource
import shutil
import subprocess
import sys
import threading
import time
import traceback

sys.path.insert(0, os.path.dirname(os.path.realpath(__file__)))
from mistakes import Source  # noqa: E402

ROOT = pathlib.Path(__file__).resolve().parents[2]
BUILD = ROOT / "build/mutants"
RESULTS = BUILD / "results.tsv"
EQUIVALENT = ROOT / "tests/mutants/equivalent.txt"
WORKERS = os.cpu_count()
SHARE = 0.03  # of all mistakes, which may be equivalent
INSTANCES = ["size", "speed"]
# The small instance also has the code for hosts without vectors.
FLAGS = {"size": "-U__SSE2__", "speed": ""}
# In the order in which they are asked. Reading in parallel is the tools' own, and slow.
PROGRAMS = {
    "public_tests": ["--gtest_fail_fast", "--gtest_filter=*"],
    "internal_tests": ["--gtest_fail_fast", "--gtest_filter=-ParallelReader.*"],
    "memory_tests": ["--gtest_fail_fast", "--gtest_filter=*"],
    "allocation_tests": ["--gtest_fail_fast", "--gtest_filter=*"],
    "static_registration": [],
    "example_auditCfm": [],
}
ALONE = "one_internal_test"
GTEST = ["lib/libgmock_main.a", "lib/libgmock.a", "lib/libgtest.a"]
EXAMPLE = b"15 characters: 23430145:1:2:3:\nmain state: 3\n"
COST = "noticed by budget.instructions, speed"
SO_FAR = "survived so far"  # not judged by its cost yet
FIRST_TESTS = 20  # of those that come by a mistake, the quickest
LONGEST = 10  # times what a program takes without a mistake


class Tree:
    """A copy of the sources, built in both instances."""

    def __init__(self, name):
        self.path = BUILD / name
        self.usual = {}  # seconds that a program takes
        self.alone = []  # instances and lists of objects

    def copy(self):
        self.path.mkdir(parents=True, exist_ok=True)
        for source in copied():
            self.write(source.relative_to(ROOT), source.read_bytes())
            if os.access(source, os.X_OK):
                (self.path / source.relative_to(ROOT)).chmod(0o755)

    def write(self, name, content):
        """Leaves alone what is so already: it would be built anew."""
        path = self.path / name
        if not path.exists() or path.read_bytes() != content:
            path.parent.mkdir(parents=True, exist_ok=True)
            path.write_bytes(content)

    def configure(self, instance):
        include = self.path / "tests/mutants/mistake.h"
        subprocess.run(
            ["cmake", "-G", "Ninja", "-S", self.path, "-B", self.path / "build" / instance, "-D", "BCI_BUILD_TESTS=ON",
             "-D", f"BCI_OPTIMIZE={instance}", "-D", "CMAKE_BUILD_TYPE=Debug", "-D", "CMAKE_CXX_COMPILER=g++",
             "-D", "CMAKE_CXX_FLAGS_DEBUG=-O0", "-D", "CMAKE_EXE_LINKER_FLAGS=-fuse-ld=gold",
             "-D", f"CMAKE_CXX_FLAGS=-w -Wno-narrowing {FLAGS[instance]} -include {include}"],
            check=True, stdout=subprocess.DEVNULL)  # fmt: skip

    def configure_for_cost(self):
        subprocess.run(
            ["cmake", "-G", "Ninja", "-S", self.path, "-B", self.path / "build/cost", "-D", "BCI_BUILD_TESTS=ON",
             "-D", "BCI_OPTIMIZE=speed", "-D", "CMAKE_BUILD_TYPE=RelWithDebInfo", "-D", "CMAKE_CXX_COMPILER=g++",
             "-D", "CMAKE_CXX_FLAGS=-w"],
            check=True, stdout=subprocess.DEVNULL)  # fmt: skip
        if self.is_dearer() is not False:
            print("dearer without a mistake", file=sys.stderr)
            os._exit(1)

    def is_dearer(self):
        """None: does not compile."""
        if self.build("cost", "budget_calls"):
            return None
        command = [self.path / "tests/budget/instructions.py", self.path / "build/cost/bin/budget_calls"]
        return subprocess.run(command, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL).returncode != 0

    def build(self, instance, *targets, jobs=1):
        """Returns what the compiler says, or None if all is well."""
        done = subprocess.run(["ninja", "-C", self.path / "build" / instance, f"-j{jobs}", *targets],
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True)  # fmt: skip
        return done.stdout if done.returncode != 0 else None

    def find_alone(self, instance):
        """What each source of internal_tests takes to make a program, if it does without the tools."""
        build = self.path / "build" / instance
        ours = {"tests_support": "tests_support", "bci_catalogue": "bci_catalogue", "bci": "bci_objects"}
        for test in sorted(build.glob("tests/CMakeFiles/internal_tests.dir/**/*.o")):
            libraries = [f"lib/lib{name}.a" for name in ours]
            done = subprocess.run(["g++", "-fuse-ld=bfd", "-Wl,-M", test, *libraries, *GTEST, "-o", "bin/" + ALONE],
                                  cwd=build, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)  # fmt: skip
            if done.returncode == 0:
                members = set(re.findall(r"lib/lib(?:" + "|".join(ours) + r")\.a\((\S+\.o)\)", done.stdout))
                built = (path for target in ours.values() for path in build.glob(f"**/{target}.dir/**/*.o"))
                taken = [path for path in built if path.name in members]
                self.alone.append((instance, [str(path.relative_to(build)) for path in (test, *taken)]))

    def notices(self, instance, objects):
        """Whether public_tests, or one source of internal_tests, find something wrong. None: does not compile."""
        if objects is None:
            if self.build(instance, "bci_shared"):
                return None
            return self.passes(instance, "public_tests", mistake=-1) is None
        if self.build(instance, *objects):
            return None
        linked = subprocess.run(["g++", "-fuse-ld=gold", *objects, *GTEST, "-o", "bin/" + ALONE],
                                cwd=self.path / "build" / instance, stderr=subprocess.DEVNULL)  # fmt: skip
        if linked.returncode != 0:
            return None
        return self.passes(instance, ALONE, mistake=-1, usual=2) is None

    def passes(self, instance, program, tests=None, mistake=0, reached=None, usual=None):
        """Whether the program, or only some of its tests, find nothing wrong. Returns the seconds that it took."""
        environment = {**os.environ, "BCI_MISTAKE": str(mistake)}
        if reached:
            environment["BCI_MISTAKES_REACHED"] = str(reached)
        arguments = [f"--gtest_filter={':'.join(tests)}"] if tests else PROGRAMS.get(program, [])[-1:]
        begin = time.monotonic()
        try:
            done = subprocess.run(
                [self.path / "build" / instance / "bin" / program, *PROGRAMS.get(program, [])[:-1], *arguments],
                env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.DEVNULL,
                timeout=max(5, LONGEST * (usual or self.usual.get((instance, program), 60))), cwd=self.path,
                preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_AS, (2 << 30, 2 << 30)))  # fmt: skip
        except subprocess.TimeoutExpired:
            return None
        taken = time.monotonic() - begin
        if done.returncode != 0 or program == "example_auditCfm" and done.stdout != EXAMPLE:
            return None
        if mistake == 0 and not tests:
            self.usual[instance, program] = taken
        return taken

    def tests(self, instance, program):
        """The tests of a program that has such."""
        if not PROGRAMS[program]:
            return [None]
        listed = subprocess.run([self.path / "build" / instance / "bin" / program, *PROGRAMS[program],
                                 "--gtest_list_tests"], stdout=subprocess.PIPE, text=True, check=True)  # fmt: skip
        names = []
        for line in listed.stdout.splitlines():
            line = line.split("#")[0].rstrip()
            if line.startswith("  "):
                names.append(suite + line.strip())
            elif line.endswith("."):
                suite = line
        return names


class Results:
    """What has been found, by file and mistake."""

    def __init__(self, digest, resume):
        self.lock = threading.Lock()
        self.known = {}
        lines = RESULTS.read_text().splitlines() if RESULTS.exists() else []
        same = lines[:1] == [digest]
        explained = read_equivalent()
        for line in lines[1:]:
            *key, found = line.split("\t")
            if same or resume and (found.startswith(("noticed", "does not")) or tuple(key) in explained):
                self.known[tuple(key)] = found
        with RESULTS.open("w") as file:
            print(digest, file=file)
            for key, found in self.known.items():
                print(*key, found, sep="\t", file=file)

    def add(self, mistake, found):
        with self.lock:
            self.known[mistake.full_key] = found
            with RESULTS.open("a") as file:
                print(*mistake.full_key, found, sep="\t", file=file)


def copied():
    """The sources: all but what is built, or hidden."""
    for name in sorted(ROOT.iterdir()):
        if name.name != "build" and not name.name.startswith("."):
            yield from [name] if name.is_file() else (path for path in sorted(name.rglob("*")) if path.is_file())


def digest():
    sums = hashlib.sha256()
    for path in copied():
        if path != EQUIVALENT:
            sums.update(path.read_bytes())
    return sums.hexdigest()


def find_mistakes(names):
    sources = {}
    for path in sorted((ROOT / "src").rglob("*")):
        if path.suffix in (".cpp", ".h") and (not names or any(name in str(path) for name in names)):
            name = str(path.relative_to(ROOT))
            sources[name] = Source(path.read_text())
            for mistake in sources[name].mistakes:
                mistake.file = name
                mistake.full_key = (name, *mistake.key)
    return sources


def build_all_at_once(tree, instance, sources, chosen):
    """Builds a tree that has all mistakes at run time, less those that do not compile so, which are returned."""
    remembered = BUILD / "in-text.tsv"
    known = {tuple(line.split("\t")) for line in remembered.read_text().splitlines()} if remembered.exists() else set()
    refused = [m for m in chosen if m.full_key in known]
    made = set(chosen) - set(refused)
    by_number = {m.number: m for m in chosen}
    while True:
        for name, source in sources.items():
            tree.write(name, source.with_all(made).encode())
        errors = tree.build(instance, "-k0", "bci_objects", "bci_catalogue", jobs=WORKERS)
        errors = errors or tree.build(instance, "-k0", *PROGRAMS, jobs=WORKERS)
        if not errors:
            remembered.write_text("".join("\t".join(key) + "\n" for key in {*known, *(m.full_key for m in refused)}))
            return refused
        wrong = {by_number[n] for n in numbers_at_fault(tree, errors)} & made
        if not wrong:
            # Not what is put in, but the condition itself.
            for pattern in r"/(src/[\w/]+\.\w+):(\d+):\d+: error", r"/(src/[\w/]+\.\w+):(\d+)[:,]":
                places = {(file, int(line)) for file, line in re.findall(pattern, errors)}
                wrong = wrong or {m for m in made if any(m.file == file and m.lines[0] <= line <= m.lines[1]
                                                         for file, line in places)}  # fmt: skip
            # Those that are wrong most often go first, and then all.
            wrong = {m for m in wrong if m.name == "another value"} or wrong
        if not wrong:
            sys.exit(f"not by a mistake:\n{errors[-5000:]}")
        print(f"{instance}: {len(wrong)} mistakes have to be made in the text", flush=True)
        refused += wrong
        made -= wrong


def numbers_at_fault(tree, errors):
    """The numbers of mistakes in whose own variant an error is."""
    numbers = set()
    lines = {}
    for name, line, column in re.findall(r"/(src/[\w/]+\.\w+):(\d+):(\d+): error", errors):
        if name not in lines:
            lines[name] = (tree.path / name).read_bytes().split(b"\n")
        before = lines[name][int(line) - 1][: int(column)].decode(errors="replace")
        for found in reversed(list(re.finditer(r"bciMistake\((\d+)\) \? \(", before))):
            depth = 1
            for ch in before[found.end() : -1]:
                depth += {"(": 1, ")": -1}.get(ch, 0)
                if depth == 0:
                    break
            if depth > 0:
                numbers.add(int(found[1]))
                break
    return numbers


def find_reach(tree, instance, few):
    """Which tests come by which mistakes: by number, lists of seconds, instance, program and test."""
    reach = {}
    left = queue.SimpleQueue()
    for program in PROGRAMS:
        for test in [None] if few else tree.tests(instance, program):
            left.put((instance, program, test))

    def work():
        path = BUILD / f"reached.{threading.get_ident()}"
        while (case := take(left)) is not None:
            path.unlink(missing_ok=True)
            seconds = tree.passes(*case[:2], tests=case[2:] if case[2] else None, reached=path)
            if seconds is None:
                print(*case, "fails without a mistake", file=sys.stderr)
                os._exit(1)
            for number in set(path.read_text().split()) if path.exists() else []:
                reach.setdefault(int(number), []).append((seconds, *case))
        path.unlink(missing_ok=True)

    in_parallel([work] * WORKERS)
    return reach


def judge_at_run_time(tree, instance, mistakes, results):
    """Only tests that come by a mistake are asked, first a few quick ones. Returns what they do not notice."""
    reach = find_reach(tree, instance, len(mistakes) < 100)
    unnoticed = []
    left = queue.SimpleQueue()
    for mistake in mistakes:
        left.put(mistake)

    def judge(mistake):
        cases = sorted(reach.get(mistake.number, []), key=lambda case: case[0])
        for some in cases[:FIRST_TESTS], cases[FIRST_TESTS:]:
            programs = {}
            for seconds, instance, program, test in some:
                programs.setdefault((instance, program), []).append((seconds, test))
            for (instance, program), tests in programs.items():
                names = [test for _, test in tests if test]
                usual = sum(seconds for seconds, _ in tests)
                if tree.passes(instance, program, names, mistake.number, usual=usual) is None:
                    return f"noticed by {program}, {instance}"
        return None

    def work():
        while (mistake := take(left)) is not None:
            if found := judge(mistake):
                results.add(mistake, found)
            else:
                mistake.reached = mistake.reached or mistake.number in reach
                unnoticed.append(mistake)

    in_parallel([work] * WORKERS)
    return unnoticed


def take(things):
    try:
        return things.get_nowait()
    except queue.Empty:
        return None


def by_parts(mistakes):
    """Parts of a file each, those that take longest first."""
    files = {}
    for mistake in mistakes:
        files.setdefault(mistake.file, []).append(mistake)
    parts = queue.SimpleQueue()
    for name, those in sorted(files.items(), key=lambda item: not item[0].endswith(".h")):
        size = 20 if name.endswith(".h") else 1000
        for first in range(0, len(those), size):
            parts.put((name, those[first : first + size]))
    return parts


def judge_by_cost(trees, sources, mistakes, results):
    left = by_parts(mistakes)

    def work(tree):
        while (part := take(left)) is not None:
            name, those = part
            for mistake in those:
                tree.write(name, sources[name].with_mistake(mistake).encode())
                results.add(mistake, COST if tree.is_dearer() else "survived")
            tree.write(name, sources[name].text.encode())

    in_parallel([lambda tree=tree: work(tree) for tree in trees])


def judge_in_text(trees, sources, mistakes, results):
    left = by_parts(mistakes)

    def judge(tree, source, mistake, witnesses):
        """What a source takes is built for it alone, as all together take long."""
        tree.write(mistake.file, source.with_mistake(mistake).encode())
        for witness in list(witnesses):
            instance, objects = witness
            noticed = tree.notices(instance, objects)
            if noticed is None:
                return "does not compile"
            if noticed:
                # It is likely to notice the next one, too.
                witnesses.sort(key=lambda other: other != witness)
                return f"noticed by {'internal_tests' if objects else 'public_tests'}, {instance}"
        if tree.is_dearer():
            return COST
        for instance in INSTANCES:
            if tree.build(instance, *PROGRAMS):
                return "does not compile"
            for program in PROGRAMS:
                if program != "public_tests" and tree.passes(instance, program, mistake=-1) is None:
                    return f"noticed by {program}, {instance}"
        return "survived"

    def work(tree):
        while (part := take(left)) is not None:
            name, those = part
            public = [(instance, None) for instance in INSTANCES]  # which take the whole library
            witnesses = sorted(public + tree.alone, key=lambda witness: len(witness[1]) if witness[1] else 20)
            for mistake in those:
                results.add(mistake, judge(tree, sources[name], mistake, witnesses))
            tree.write(name, sources[name].text.encode())

    in_parallel([lambda tree=tree: work(tree) for tree in trees])


def in_parallel(functions):
    def run(function):
        try:
            function()
        except BaseException:
            traceback.print_exc()
            os._exit(1)

    threads = [threading.Thread(target=run, args=[function]) for function in functions]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()


def read_equivalent():
    """Reasons, by file, line and mistake, which stand below them with tabs between."""
    reasons = {}
    reason = ""
    for line in EQUIVALENT.read_text().splitlines() if EQUIVALENT.exists() else []:
        if line.startswith("# "):
            reason = line[2:]
        elif line and not line.startswith("#"):
            reasons[tuple(line.split("\t"))] = reason
    return reasons


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("files", metavar="FILE", nargs="*", help="part of the name of a source")
    parser.add_argument("--sample", metavar="N", type=int, help="so many of the mistakes, the same ones every time")
    parser.add_argument("--resume", action="store_true", help="believe what has been found before a change")
    parser.add_argument("--list", action="store_true", help="show the mistakes")
    options = parser.parse_args()

    sources = find_mistakes(options.files)
    mistakes = [m for source in sources.values() for m in source.mistakes]
    if options.sample:
        mistakes = random.Random(1).sample(mistakes, min(options.sample, len(mistakes)))
    if options.list:
        for mistake in mistakes:
            print(*mistake.full_key, "at run time" if mistake.chunk else "in the text", sep="\t")
        return 0

    BUILD.mkdir(parents=True, exist_ok=True)
    results = Results(digest(), options.resume)
    left = [m for m in mistakes if m.full_key not in results.known]
    print(f"{len(mistakes)} mistakes, {len(left)} of them not judged yet", flush=True)
    at_run_time = [m for m in left if m.chunk]
    in_text = [m for m in left if not m.chunk]
    for number, mistake in enumerate(at_run_time):
        mistake.number = number + 1
        text = sources[mistake.file].text
        mistake.lines = (text.count("\n", 0, mistake.chunk.start) + 1, text.count("\n", 0, mistake.chunk.end) + 1)

    trees = [Tree(str(number + 1)) for number in range(WORKERS)]
    if at_run_time:
        tree = trees[0]
        tree.copy()
        for instance in INSTANCES:
            tree.configure(instance)
            refused = set(build_all_at_once(tree, instance, sources, at_run_time))
            in_text += refused
            at_run_time = [m for m in at_run_time if m not in refused]
            at_run_time = judge_at_run_time(tree, instance, at_run_time, results)
        for mistake in at_run_time:
            results.add(mistake, SO_FAR if mistake.reached else "not reached")
    dear = [m for m in mistakes if results.known.get(m.full_key) == SO_FAR]
    if dear or in_text:

        def prepare(tree):
            tree.copy()
            tree.configure_for_cost()
            for instance in INSTANCES if in_text else []:
                tree.configure(instance)
                errors = tree.build(instance, *PROGRAMS)
                if errors or None in [tree.passes(instance, program) for program in PROGRAMS]:
                    print(f"{instance} fails without a mistake", errors or "", file=sys.stderr)
                    os._exit(1)
                tree.find_alone(instance)

        in_parallel([lambda tree=tree: prepare(tree) for tree in trees])
        judge_by_cost(trees, sources, dear, results)
        judge_in_text(trees, sources, in_text, results)

    return report(mistakes, results.known, complete=not options.files and not options.sample)


def report(mistakes, known, complete):
    reasons = read_equivalent()
    counted = [m for m in mistakes if known[m.full_key] != "does not compile"]
    survived = [m for m in counted if not known[m.full_key].startswith("noticed")]
    unexplained = [m for m in survived if m.full_key not in reasons]
    for mistake in unexplained:
        print(f"{mistake.file}:{mistake.line}: {known[mistake.full_key]}:", "\t".join(mistake.full_key))
    stale = reasons.keys() - {m.full_key for m in survived} if complete else []
    for key in sorted(stale):
        print("listed as equivalent, but does not survive:", "\t".join(key))
    explained = len(survived) - len(unexplained)
    many = complete and explained > SHARE * len(counted)
    if many:
        print(f"more than {SHARE:.0%} are listed as equivalent")
    print(f"{len(counted) - len(survived)} of {len(counted)} mistakes noticed, {explained} explained"
          + (f", {len(unexplained)} NOT NOTICED" if unexplained else ""))  # fmt: skip
    return 1 if unexplained or stale or many else 0


if __name__ == "__main__":
    sys.exit(main())
