#!/usr/bin/env -S python3 -B
"""tests/coverage/merge.py EXPORT...: merges what llvm-cov exported for several builds (EXPORT.text and EXPORT.lcov)
into one tracefile for gcovr.

A branch is one outcome of one condition as it stands in the source. It is taken if it is in any build and, of a
template, in any instance: the compiler, which has one for every message, decides most conditions in most of them. A
condition that it decides everywhere has no branches.

What runs in the compiler alone does not count: a constexpr function that is called nowhere at run time. Neither does a
line marked COVERAGE_EXCLUDED: REASON.
"""

import json
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
MARK = re.compile(r"COVERAGE_EXCLUDED(: (?P<reason>\S.*))?")


def read_lines(path, lines):
    """Executions, by file and line."""
    name = None
    for line in path.read_text().splitlines():
        if line.startswith("SF:"):
            name = line[3:]
        elif line.startswith("DA:"):
            number, count = line[3:].split(",")[:2]
            of_file = lines.setdefault(name, {})
            of_file[int(number)] = of_file.get(int(number), 0) + int(count)


def read_functions(path, functions, branches):
    """How often a function was called, by file, first and last line; a condition true and false, by file and place."""
    for function in json.loads(path.read_text())["data"][0]["functions"]:
        first, _, last, *_ = function["regions"][0]
        place = (function["filenames"][0], first, last)
        functions[place] = functions.get(place, 0) + function["count"]
        for line, column, _, _, true, false, file, *_ in function["branches"]:
            of_file = branches.setdefault(function["filenames"][file], {})
            before = of_file.get((line, column), (0, 0))
            of_file[line, column] = (before[0] + true, before[1] + false)


def runs_in_compiler(text, first):
    """Whether the function whose body begins in a line is declared so."""
    declaration = [text[first - 1]]
    for line in reversed(text[: first - 1]):
        if not line.strip() or line.rstrip()[-1] in ";}{:" or line.lstrip().startswith("//"):
            break
        declaration.append(line)
    return any(re.search(r"\b(constexpr|consteval)\b", line) for line in declaration)


def uncounted_lines(path, functions):
    text = path.read_text().splitlines()
    uncounted = set()
    for number, line in enumerate(text, 1):
        mark = MARK.search(line)
        if mark and not mark["reason"]:
            sys.exit(f"{path}:{number}: excluded without a reason")
        if mark or not re.search(r"[^\s{}();]", line):
            uncounted.add(number)
    for (name, first, last), calls in functions.items():
        if name == str(path) and calls == 0 and runs_in_compiler(text, first):
            uncounted.update(range(first, last + 1))
    return uncounted


def main():
    lines, functions, branches = {}, {}, {}
    for export in sys.argv[1:]:
        read_lines(pathlib.Path(export + ".lcov"), lines)
        read_functions(pathlib.Path(export + ".text"), functions, branches)
    files = []
    for name in sorted(lines):
        path = pathlib.Path(name)
        if ROOT / "src" not in path.parents:
            continue
        uncounted = uncounted_lines(path, functions)
        conditions = {}
        for (line, _), counts in sorted(branches.get(name, {}).items()):
            # Neither: decided by the compiler; a line that is not run shows by itself.
            if counts != (0, 0):
                conditions.setdefault(line, []).extend(counts)
        files.append({
            "file": str(path.relative_to(ROOT)),
            "functions": [],
            "lines": [
                {
                    "line_number": line,
                    "count": count,
                    "branches": [{"count": c, "fallthrough": False, "throw": False} for c in conditions.get(line, [])],
                    "gcovr/noncode": line in uncounted,
                    "gcovr/excluded": line in uncounted,
                }
                for line, count in sorted(lines[name].items())
            ],
        })  # fmt: skip
    json.dump({"gcovr/format_version": "0.3", "files": files}, sys.stdout)


if __name__ == "__main__":
    main()
