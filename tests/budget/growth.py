#!/usr/bin/env -S python3 -B
"""By how much the instructions of readers, writers and streams grow with what they are given, counted by callgrind and
held against what docs/robustness.md promises. The program makes the calls (growth.cpp)."""

import sys

import instructions

MARGIN = 9 / 8
SLACK = 2000  # instructions

# What the work grows by from a size to 8 times the size, apart from what it takes whatever the size.
PROMISES = {
    "constant": 0,
    "linear": 8,
    "passes": 8,  # and no more of them than it says
    "square up to 512 tags": 64,
    "document x tag": 64,
}


def growth(counts):
    """Of three counts, of sizes that are each 8 times the one before."""
    first, second, third = counts
    return max(third - second - SLACK, 0) / max(second - first, 1)


def readCases(measured):
    """The promise, the sizes and the counts of each case."""
    cases = {}
    for name, instructionCount in measured.items():
        case, promise, size = name.split(";")
        cases.setdefault(case, (promise, [], []))
        cases[case][1].append(int(size))
        cases[case][2].append(instructionCount)
    return cases


def passes(cases, case):
    """How often the longest document is gone through, in terms of what the dearer of two passes takes."""
    return cases[case][2][-1] / max(cases[f"{case}, pass {tag}"][2][-1] for tag in ("pass", "none"))


def judge(cases):
    """Prints a line for each case. Returns those that take too much."""
    wrong = []
    print("     n  instructions      8n  instructions  growth")
    for case, (promise, sizes, counts) in cases.items():
        kind, _, most = promise.partition(": ")
        ratio = growth(counts)
        line = f"{sizes[1]:>6} {counts[1]:>13} {sizes[2]:>7} {counts[2]:>13} {ratio:>7.2f}  {case} ({promise}"
        isWrong = ratio > PROMISES[kind] * MARGIN
        if most:
            made = passes(cases, case)
            line += f", made: {made:.1f}"
            isWrong = isWrong or made > int(most)
        print(line + ")")
        if isWrong:
            wrong.append(line + ")")
    return wrong


def main():
    text = instructions.profile(sys.argv[1:], ["--collect-atstart=no"])
    wrong = judge(readCases(instructions.counts(text)))
    for line in wrong:
        print(f"TOO MUCH {line}")
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main())
