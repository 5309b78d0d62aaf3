#!/usr/bin/env -S python3 -B
"""The bytes of code and data in the shared library, which is the file: held against a limit and, for each class or
namespace, against the table.

It goes by symbols, not by object files as the linker's map has them: these are one, or have made-up names, if the
library is compiled as a whole or optimised at link time, and classes are still classes then. What no symbol names,
such as literals, padding, and what comes from the compiler's start-up code, is counted by section: no byte is left
out."""

import bisect
import collections
import re
import subprocess
import sys

import budgetTable

LIMIT = 40960  # bytes, all in all
SLACK = 32

# What serves the dynamic linker alone.
UNCOUNTED = {"DYNAMIC", "DYNSYM", "GNU_HASH", "HASH", "NOTE", "REL", "RELA", "RELR", "STRTAB", "VERDEF", "VERNEED",
             "VERSYM"}

HEADER = """\
# Bytes in the powerpc library: code, constants, and data (what the dynamic linker writes to included), by class or
# namespace; in brackets what no symbol names. Sorted by name.
"""

Section = collections.namedtuple("Section", "name start end kind")
Symbol = collections.namedtuple("Symbol", "start size isLocal name")
KINDS = ("text", "rodata", "data")


def sectionsOf(readelf):
    """The sections that are loaded and counted."""
    sections = []
    for name, contents, start, size, flags in re.findall(
            r"^ +\[ *\d+\] (\S+) +(\S+) +([0-9a-f]+) [0-9a-f]+ ([0-9a-f]+) [0-9a-f]+ +([A-Zop]*) +\d+ +\d+ +\d+$",
            readelf, re.MULTILINE):
        if "A" in flags and contents not in UNCOUNTED:
            start = int(start, 16)
            kind = "data" if "W" in flags else "text" if "X" in flags else "rodata"
            sections.append(Section(name, start, start + int(size, 16), kind))
    return sections


def symbolsOf(readelf):
    """Without the linker's names for its ways to other libraries."""
    return [Symbol(int(start, 16), int(size, 0), bind == "LOCAL", name) for start, size, bind, name in re.findall(
        r"^ +\d+: ([0-9a-f]+) +(\w+) (?:FUNC|OBJECT|NOTYPE) +(\w+) +\w+ .*? \d+ (\S+)$", readelf, re.MULTILINE)
        if ".plt_" not in name]


def owner(name):
    """The class, or else the namespace, of what a demangled name without parameters names."""
    name = name.replace("(anonymous namespace)", "{anonymous}")
    table = re.match(r"(?:construction vtable|vtable|VTT|typeinfo|typeinfo name) for (?:.*-in-)?(.*)", name)
    if table:
        name = table[1] + "::table"
    name = re.sub(r"^(?:(?:non-)?virtual thunk to|guard variable for) ", "", name)
    name = re.sub(r"operator\W+", "operator", name)
    while "<" in name:
        stripped = re.sub(r"<[^<>]*>", "", name)
        if stripped == name:
            raise ValueError(f"{name}: what is it in?")
        name = stripped
    name = re.split(r"[(]|::\{lambda| \[clone", name)[0]  # of what is within a function, the function
    if name.startswith("std::"):
        return "std"
    return "::".join(name.split("::")[:-1]) or "{global}"


def measure(sections, symbols):
    """Bytes by owner and kind. Every byte of the sections is counted once."""
    starts = [section.start for section in sections]
    sizes = collections.defaultdict(lambda: dict.fromkeys(KINDS, 0))
    left = {section: section.end - section.start for section in sections}
    covered = 0
    # Of two names for one thing, the one that others see.
    for symbol in sorted(symbols, key=lambda one: (one.start, -one.size, one.isLocal, one.name)):
        index = bisect.bisect_right(starts, symbol.start) - 1
        end = symbol.start + symbol.size
        if index < 0 or end > sections[index].end or end <= covered:
            continue
        size = end - max(symbol.start, covered)
        covered = end
        sizes[owner(symbol.name)][sections[index].kind] += size
        left[sections[index]] -= size
    for section, size in left.items():
        if size != 0:
            sizes[f"[{section.name}]"][section.kind] += size
    for kind in KINDS:
        sizes["total"][kind] = sum(section.end - section.start for section in sections if section.kind == kind)
    return sizes


def run(*command, text=None):
    return subprocess.run(command, check=True, input=text, stdout=subprocess.PIPE, text=True).stdout


def measureLibrary(library):
    sections = sectionsOf(run("readelf", "--section-headers", "--wide", library))
    symbols = symbolsOf(run("readelf", "--symbols", "--wide", library))
    names = run("c++filt", "--no-params", text="\n".join(symbol.name for symbol in symbols)).splitlines()
    return measure(sections, [symbol._replace(name=name) for symbol, name in zip(symbols, names, strict=True)])


def render(sizes):
    lines = [f"{'# owner':<40}" + "".join(f"{kind:>8}" for kind in (*KINDS, "sum")) + "\n"]
    for name in sorted(sizes, key=lambda one: (one == "total", one)):
        figures = [sizes[name][kind] for kind in KINDS]
        lines.append(f"{name:<40}" + "".join(f"{figure:>8}" for figure in (*figures, sum(figures))) + "\n")
    return HEADER + "".join(lines)


def verdict(committed, sizes, limit=LIMIT):
    sums = {name: sum(figures.values()) for name, figures in sizes.items()}
    status = budgetTable.verdict(committed, sums, SLACK, exhaustive=False)
    total = sums["total"]
    if total > limit:
        print(f"The library has {total} bytes, {total - limit} more than the {limit} that it may have.")
        return 1
    return status


def main():
    arguments = budgetTable.arguments(__doc__, "size.txt")
    sizes = measureLibrary(arguments.file)
    if arguments.renew:
        with open(arguments.table, "w", encoding="utf-8") as file:
            file.write(render(sizes))
        return 0
    return verdict(budgetTable.read(arguments.table), sizes)


if __name__ == "__main__":
    sys.exit(main())
