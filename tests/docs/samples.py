#!/usr/bin/env python3
"""Runs the commands and compiles the code that documents show.

usage: samples.py BUILD DOCUMENT...

BUILD is a build folder with the library; the bci command is found in PATH. What a fenced block is follows from its
language:

  console   "$ command" lines (one that ends in a backslash goes on in the next), each with the output that
            follows; a line "..." stands for any number of lines. A status other than 0 wants output that says why.
  sh        commands that succeed
  others    text to look at

A comment in front of a block changes that:

  <!-- file: NAME -->         the block is the content of a file that commands further down use
  <!-- excerpt: FILE -->      the block's lines, "..." but for those it leaves out, stand in a file of the repository
  <!-- not run: REASON -->    the block is left alone

Code in C++ is a file or an excerpt. All blocks of a document share one folder, which looks like the root of the
repository: its build/release is BUILD, its ./bci the command of that.
"""

import os
import pathlib
import re
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
MARK = "--- end of the output, status "


class Wrong(Exception):
    pass


class Block:
    def __init__(self, line, language, order, argument):
        self.line, self.language, self.order, self.argument = line, language, order, argument
        self.lines = []


def blocks(document):
    """The fenced blocks of a document. Indented ones are an error, as nothing says what they are."""
    found = []
    block = None
    order = ("", "")
    previous = ""
    for number, line in enumerate(document.read_text().splitlines(), 1):
        if block is not None:
            if line == "```":
                found.append(block)
                block = None
            else:
                block.lines.append(line)
        elif fence := re.fullmatch(r"```(\w*)", line):
            if not fence[1]:
                raise Wrong(f"{number}: the block has no language")
            block = Block(number, fence[1], *order)
            order = ("", "")
        elif comment := re.fullmatch(r"<!-- (file|excerpt|not run): (.+) -->", line):
            order = (comment[1], comment[2])
        elif line.startswith("    ") and not previous:
            raise Wrong(f"{number}: the block has no fence")
        elif line and order[0]:
            raise Wrong(f"{number}: a block has to follow its comment")
        previous = line
    if block is not None:
        raise Wrong(f"{block.line}: the block has no end")
    return found


def commands(block):
    """(line number, command, expected lines) of a console block."""
    found = []
    goes_on = False
    for number, line in enumerate(block.lines, block.line + 1):
        if goes_on:
            found[-1][1] += "\n" + line
        elif line.startswith("$ "):
            found.append([number, line[2:], []])
        elif not found:
            raise Wrong(f"{number}: output without a command")
        else:
            found[-1][2].append(line)
            continue
        goes_on = line.endswith("\\")
    return found


def matches(expected, actual):
    """Whether lines are as expected, where "..." is any number of them."""
    if "..." not in expected:
        return expected == actual
    here = expected.index("...")
    rest = expected[here + 1:]
    return expected[:here] == actual[:here] and any(
        matches(rest, actual[there:]) for there in range(here, len(actual) + 1))


def excerpt(block):
    lines = [line.strip() for line in (ROOT / block.argument).read_text().splitlines()]
    here = 0
    for number, line in enumerate(block.lines, block.line + 1):
        if line.strip() in ("", "..."):
            continue
        try:
            here = lines.index(line.strip(), here) + 1
        except ValueError:
            raise Wrong(f"{number}: {block.argument} has no such line, or not in this place") from None


class Sandbox:
    def __init__(self, folder, build):
        self.folder = pathlib.Path(folder)
        for path in ROOT.iterdir():
            if path.name not in ("build", "dist", "bci", ".git"):
                (self.folder / path.name).symlink_to(path)
        (self.folder / "build").mkdir()
        (self.folder / "build/release").symlink_to(pathlib.Path(build).resolve())
        (self.folder / "bci").write_text('#!/bin/sh\nexec bci "$@"\n')
        (self.folder / "bci").chmod(0o755)

    def bash(self, script):
        environment = dict(os.environ, LC_ALL="C.UTF-8", TZ="UTC", NO_COLOR="1")
        done = subprocess.run(["bash", "-c", script], cwd=self.folder, env=environment, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, check=False)
        return done.returncode, done.stdout.decode(errors="backslashreplace")

    def console(self, block):
        samples = commands(block)
        mark = f"(status=$?; printf '\\n{MARK}%d\\n' $status; exit $status)"
        script = "".join(f"{command}\n{mark}\n" for _, command, _ in samples)
        output = self.bash(script)[1]
        parts = re.split(rf"\n{MARK}(\d+)\n", output)
        for i, (number, command, expected) in enumerate(samples):
            if 2 * i + 1 >= len(parts):
                raise Wrong(f"{number}: {command}\nended the shell:\n{parts[-1]}")
            actual, status = parts[2 * i].splitlines(), int(parts[2 * i + 1])
            while expected and not expected[-1]:
                expected.pop()
            while actual and not actual[-1]:
                actual.pop()
            if not matches(expected, actual) or (status != 0 and not expected):
                raise Wrong(f"{number}: {command}\nstatus {status}, output:\n" + "\n".join(actual))
        return len(samples)

    def run(self, block):
        """How many samples it was."""
        if block.order == "not run":
            return 0
        if block.order == "file":
            path = self.folder / block.argument
            path.parent.mkdir(exist_ok=True)
            path.write_text("\n".join(block.lines) + "\n")
            return 1
        if block.order == "excerpt":
            excerpt(block)
            return 1
        if block.language == "console":
            return self.console(block)
        if block.language == "sh":
            status, output = self.bash("set -euo pipefail\n" + "\n".join(block.lines))
            if status != 0:
                raise Wrong(f"{block.line}: status {status}\n{output}")
            return sum(1 for line in block.lines if line and not line.startswith("#"))
        if block.language in ("cpp", "cmake"):
            raise Wrong(f"{block.line}: code is neither a file nor an excerpt")
        return 0


def main():
    build, documents = sys.argv[1], sys.argv[2:]
    executed = left = wrong = 0
    for document in map(pathlib.Path, documents):
        try:
            found = blocks(document)
            with tempfile.TemporaryDirectory() as folder:
                sandbox = Sandbox(folder, build)
                executed += sum(sandbox.run(block) for block in found)
            left += sum(block.order == "not run" for block in found)
        except Wrong as error:
            wrong += 1
            print(f"{document}:{error}")
    print(f"{len(documents)} documents: {executed} samples executed, {left} blocks not run")
    raise SystemExit(1 if wrong or executed == 0 else 0)


main()
