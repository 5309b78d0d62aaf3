#!/usr/bin/env -S python3 -B
"""The instructions that one call of each entry point takes, the C library's included, counted by callgrind and
held against the table. The file is the program that makes the calls (calls.cpp)."""

import os
import re
import subprocess
import sys
import tempfile

import budgetTable

SLACK = 3  # instructions

ENTRY_POINTS = []
for form in ("Text", "Binary", "Xml"):
    ENTRY_POINTS += [f"BciMessageBase::serializeTo{form}(char*, unsigned int&) const",
                     f"BciMessageBase::deserializeFrom{form}(char*, unsigned int&)"]

# What makes a processor with more than SSE2 have functions of its own in the C library.
FEATURES = ("AVX AVX2 AVX512F AVX512VL BMI2 ERMS SSE4_1 SSE4_2 SSSE3 AVX_Fast_Unaligned_Load Fast_Unaligned_Copy "
            "Fast_Unaligned_Load Slow_BSF")
ENVIRONMENT = {
    "PATH": os.environ["PATH"],
    "LC_ALL": "C",
    "LD_BIND_NOW": "1",
    "GLIBC_TUNABLES": "glibc.cpu.hwcaps=" + ",".join("-" + feature for feature in FEATURES.split()),
}

HEADER = """\
# Instructions of one call through the public entry points: gcc 12 -O2 on x86-64, the C library's SSE2 functions.
# What the messages hold is in tests/support/contents.h. Sorted by name.
"""


def profile(command, options):
    """What callgrind writes about a program and its arguments, a part for each call."""
    with tempfile.TemporaryDirectory() as directory:
        output = os.path.join(directory, "callgrind.out")
        valgrind = ["valgrind", "--quiet", "--tool=callgrind", "--combine-dumps=yes",
                   f"--callgrind-out-file={output}"]
        subprocess.run([*valgrind, *options, *command], env=ENVIRONMENT, check=True)
        with open(output, encoding="utf-8") as lines:
            return lines.read()


def counts(text):
    """The instructions of each call."""
    result = {}
    # What comes behind the last call is the end of the program, without a name.
    for name, count in re.findall(
            r"^desc: Trigger: Client Request: (.*)\n(?:(?!part:).*\n)*?summary: (\d+)$", text, re.MULTILINE):
        if name in result:
            raise ValueError(f"{name} is counted twice")
        if int(count) == 0:
            raise ValueError(f"{name}: no instructions")
        result[name] = int(count)
    return result


def otherFunctions(text):
    """The functions of the C library that are for some processors only."""
    return sorted(set(re.findall(r"^c?fn=\(\d+\) (__\w+_(?:avx|evex|sse4|ssse3|erms)\w*)", text, re.MULTILINE)))


def completeNames(directory):
    """What has to be counted: each class of the public headers, both ways in each form."""
    classes = set()
    for header in os.listdir(directory):
        with open(os.path.join(directory, header), encoding="utf-8") as lines:
            classes.update(re.findall(r"^class BCI_API (Bci\w+)", lines.read(), re.MULTILINE))
    classes = {name for name in classes if name not in ("BciMessageBase", "BciMsgRegistry")}
    return {f"{name} {way} {form}" for name in classes for way in ("encode", "decode")
            for form in ("binary", "text", "xml")}


def render(measured):
    lines = []
    for name, count in sorted(measured.items()):
        className, way, form = name.split()
        lines.append(f"{className:<26}{way:<7}{form:<7}{count:>6}\n")
    return HEADER + "".join(lines)


def complaint(text):
    """Why what callgrind wrote cannot be compared with any other run, or nothing."""
    others = otherFunctions(text)
    if others:
        return "The C library runs functions that not every processor has:\n" + "\n".join(others)
    difference = counts(text).keys() ^ completeNames(os.path.join(budgetTable.ROOT, "h"))
    if difference:
        return "Not the calls of all message classes:\n" + "\n".join(sorted(difference))
    return None


def main():
    arguments = budgetTable.arguments(__doc__, "instructions.txt")
    text = profile([arguments.file], [f"--toggle-collect={entryPoint}" for entryPoint in ENTRY_POINTS])
    if complaint(text):
        print(complaint(text))
        return 1
    if arguments.renew:
        with open(arguments.table, "w", encoding="utf-8") as file:
            file.write(render(counts(text)))
        return 0
    return budgetTable.verdict(budgetTable.read(arguments.table), counts(text), SLACK, exhaustive=True)


if __name__ == "__main__":
    sys.exit(main())
