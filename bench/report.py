#!/usr/bin/env python3
"""Tables and plots of what bench/run measured.

usage: bench/report.py [--markdown] [--plots DIR] [--document FILE] [FILE]

Benchmarks are named <message>/<form>/<direction>/<peer>. Every peer is compared with the library repetition by
repetition; of these ratios (the library's time by the peer's) the median and the quartiles are shown.
"""

import argparse
import collections
import contextlib
import io
import json
import statistics
import sys

sys.dont_write_bytecode = True
import plots

LIBRARY = "bci"
FORMS = ["text", "binary", "xml", "xml-reversed"]
DIRECTIONS = ["encode", "decode"]
FULL = "BciCapabilityCfmMsg-full"
SMALL = ["BciAuditCfm", "BciGenericMsg", "BciGenericRejMsg", "BciGetHwPidCfmMsg"]
BLOCK = "BciLoadLmcData-4096"
IN_NANOSECONDS = {"ns": 1, "us": 1e3, "ms": 1e6, "s": 1e9}


class Measured:
    """The times of every repetition, in nanoseconds, by message, form and direction, and peer."""

    def __init__(self, file):
        with open(file, encoding="utf-8") as stream:
            data = json.load(stream)
        self.context = data["context"]
        self.times = collections.defaultdict(dict)
        repetitions = collections.defaultdict(dict)
        for run in data["benchmarks"]:
            if run["run_type"] == "iteration":
                time = run["cpu_time"] * IN_NANOSECONDS[run["time_unit"]]
                repetitions[run["run_name"]][run["repetition_index"]] = time
        for name, times in repetitions.items():
            message, form, direction, peer = name.split("/")
            self.times[message, form, direction][peer] = [times[index] for index in sorted(times)]

    def of(self, message, form, direction, peer):
        return self.times.get((message, form, direction), {}).get(peer)

    def compare(self, message, form, direction, peer, how):
        """What comes of the library's and the peer's time in each repetition; None if one is missing."""
        own = self.of(message, form, direction, LIBRARY)
        other = self.of(message, form, direction, peer)
        return [how(a, b) for a, b in zip(own, other)] if own and other else None

    def ratios(self, message, form, direction, peer):
        return self.compare(message, form, direction, peer, lambda own, other: own / other)


def spread(values):
    """Median and quartiles."""
    if len(values) < 2:
        return values[0], values[0], values[0]
    low, middle, high = statistics.quantiles(values, n=4, method="inclusive")
    return middle, low, high


def number(value):
    return f"{value:.0f}" if abs(value) >= 100 else f"{value:.1f}" if abs(value) >= 10 else f"{value:.2f}"


def with_spread(values):
    middle, low, high = spread(values)
    return f"{number(middle)} [{number(low)}..{number(high)}]"


def print_table(title, header, rows, markdown):
    if not rows:
        return
    if markdown:
        print(f"\n### {title}\n")
        print("| " + " | ".join(header) + " |")
        print("|" + "---|" * len(header))
        for row in rows:
            print("| " + " | ".join(row) + " |")
        return
    widths = [max(len(row[i]) for row in [header, *rows]) for i in range(len(header))]
    print(f"\n{title}\n")
    for row in [header, *rows]:
        print("  ".join(cell.ljust(width) for cell, width in zip(row, widths)).rstrip())


def is_growth(message):
    return message.rpartition("-")[2].isdigit()


def print_library(measured, markdown):
    rows = []
    for message in sorted({message for message, _, _ in measured.times if not is_growth(message)}):
        row = [message]
        for form in FORMS[:3]:
            for direction in DIRECTIONS:
                times = measured.of(message, form, direction, LIBRARY)
                row.append(number(statistics.median(times)) if times else "")
        rows.append(row)
    header = ["message", *(f"{form} {direction}" for form in FORMS[:3] for direction in DIRECTIONS)]
    print_table("The library, in ns (median)", header, rows, markdown)


def print_peers(measured, markdown):
    rows = []
    for message in [*SMALL, FULL, BLOCK]:
        for form in FORMS:
            for direction in DIRECTIONS:
                times = measured.times.get((message, form, direction), {})
                for peer in sorted(times, key=lambda peer: (peer != LIBRARY, statistics.median(times[peer]))):
                    ratios = measured.ratios(message, form, direction, peer)
                    ratio = "" if peer == LIBRARY or not ratios else with_spread(ratios)
                    rows.append([message, f"{form} {direction}", peer, with_spread(times[peer]), ratio])
    previous = None
    for row in rows:
        if row[:2] == previous:
            row[:2] = ["", ""]
        else:
            previous = row[:2]
    header = ["message", "form", "peer", "ns: median [quartiles]", "bci by peer"]
    print_table("The library beside others", header, rows, markdown)


# What is promised: messages, form, directions, peer, how it is counted, and the bound.
# "times" is how many times faster the library is, "ratio" its time by the peer's, "ns" the difference.
PROMISES = [
    (SMALL, "binary", DIRECTIONS, "protobuf", "times", 3),
    (SMALL, "binary", DIRECTIONS, "boost", "times", 20),
    (SMALL, "binary", DIRECTIONS, "optimum", "ns", 20),
    ([FULL], "binary", DIRECTIONS, "optimum", "ratio", 2),
    (SMALL, "text", ["encode"], "to_chars", "ratio", 0.9),
    ([FULL], "text", ["encode"], "to_chars", "ratio", 0.65),
    (SMALL, "text", ["decode"], "from_chars", "ratio", 0.6),
    ([FULL], "text", ["decode"], "from_chars", "ratio", 0.45),
    (SMALL, "xml", ["encode"], "fmt", "ratio", 0.4),
    ([FULL], "xml", ["encode"], "fmt", "ratio", 0.1),
    (SMALL, "xml", ["decode"], "pugixml", "times", 12),
    ([FULL], "xml", ["decode"], "pugixml", "times", 40),
    (SMALL, "xml-reversed", ["decode"], "pugixml", "times", 3),
    ([FULL], "xml-reversed", ["decode"], "pugixml", "times", 5),
    ([BLOCK], "binary", ["encode"], "memcpy", "ratio", 1.3),
]
COUNTED = {
    "times": (lambda own, other: other / own, "at least {} x faster"),
    "ratio": (lambda own, other: own / other, "at most {} x"),
    "ns": (lambda own, other: own - other, "at most {} ns more"),
}


def print_verdicts(measured, markdown):
    rows = []
    for messages, form, directions, peer, kind, bound in PROMISES:
        how, wording = COUNTED[kind]
        for direction in directions:
            for message in messages:
                values = measured.compare(message, form, direction, peer, how)
                if values:
                    middle = statistics.median(values)
                    kept = middle >= bound if kind == "times" else middle <= bound
                    rows.append([f"{form} {direction}", peer, wording.format(bound), message, with_spread(values),
                                 "kept" if kept else "NOT KEPT"])
    kept = sum(row[-1] == "kept" for row in rows)
    header = ["form", "beside", "promise", "message", "measured", "verdict"]
    print_table(f"Promises: {kept} of {len(rows)} kept", header, rows, markdown)


def print_tables(measured, markdown):
    print_library(measured, markdown)
    print_peers(measured, markdown)
    print_verdicts(measured, markdown)


def write_document(measured, file):
    """Puts the tables into a document, behind the line that says so."""
    with open(file, encoding="utf-8") as stream:
        text, mark, _ = stream.read().partition("<!-- What follows is written by bench/report.py. -->\n")
    if not mark:
        sys.exit(f"{file} has no place for the tables")
    tables = io.StringIO()
    with contextlib.redirect_stdout(tables):
        print_tables(measured, True)
    with open(file, "w", encoding="utf-8") as stream:
        stream.write(text + mark + tables.getvalue())


def main():
    parser = argparse.ArgumentParser(description="Tables and plots of what bench/run measured.")
    parser.add_argument("file", nargs="?", default="build/bench/bench.json")
    parser.add_argument("--markdown", action="store_true", help="print the tables as Markdown")
    parser.add_argument("--plots", metavar="DIR", help="write performance-ratios.svg and performance-growth.svg")
    parser.add_argument("--document", metavar="FILE", help="put the tables into a Markdown document")
    arguments = parser.parse_args()
    measured = Measured(arguments.file)
    print_tables(measured, arguments.markdown)
    if arguments.plots:
        plots.write(measured, arguments.plots)
    if arguments.document:
        write_document(measured, arguments.document)


if __name__ == "__main__":
    main()
