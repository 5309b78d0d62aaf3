#!/usr/bin/env python3
"""How fast the command reads a large log, beside wc and jq.

usage: bench/command.py [--bytes N] [--repetitions N] [--document FILE] [--report]

Installs what is missing, builds the command, makes a log of text signals (1 GB) and runs, one after the other and as
often as there are repetitions,

    bci decode --json LOG
    bci stats LOG
    wc -l LOG
    jq -c . ROWS        ROWS being what bci decode --json makes of the log's beginning

each to /dev/null. A rate is the log's megabytes by the seconds of processor time, of the system's too, that the
process takes: so it is that of one core. Figures are kept in build/bench/command.json; --report prints those once more.
"""

import argparse
import contextlib
import io
import json
import os
import pathlib
import subprocess
import sys
import time

sys.dont_write_bytecode = True
import report

ROOT = pathlib.Path(__file__).resolve().parent.parent
BENCH = ROOT / "build/bench"
FIGURES = BENCH / "command.json"
BIN = ROOT / "build/release/bin"
JQ_SHARE = 20  # jq gets the rows of this part of the log
DECODE, STATS, WC, JQ = "bci decode --json", "bci stats", "wc -l", "jq -c . of the rows"
PROMISES = [(DECODE, 200), (STATS, 400)]  # MB/s
BEGIN = "<!-- What follows is written by bench/command.py. -->\n"
END = "<!-- What bench/command.py writes ends here. -->\n"


def build():
    subprocess.run([ROOT / ".ci/install-packages", "build", "bench"], check=True)
    BENCH.mkdir(parents=True, exist_ok=True)
    file = BENCH / "build.log"
    with open(file, "wb") as log:
        if subprocess.run([ROOT / ".ci/build", "release", "bci_command"], stdin=subprocess.DEVNULL, stdout=log,
                          stderr=subprocess.STDOUT).returncode != 0:
            sys.exit(f"cannot build the command; see {file}")


def take(command):
    """Processor and elapsed seconds of a command."""
    begin = time.monotonic()
    with open(os.devnull, "wb") as nothing:
        process = subprocess.Popen(command, stdin=subprocess.DEVNULL, stdout=nothing)
    _, status, usage = os.wait4(process.pid, 0)
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode != 0:
        sys.exit(f"{' '.join(map(str, command))}: exit status {process.returncode}")
    return usage.ru_utime + usage.ru_stime, time.monotonic() - begin


def measure(size, repetitions):
    environment = {**os.environ, "PATH": f"{BIN}:{os.environ['PATH']}"}
    log, part, rows = BENCH / "log.txt", BENCH / "part.txt", BENCH / "rows.ndjson"
    print(f"making a log of {size} bytes", file=sys.stderr)
    with open(log, "wb") as to:
        subprocess.run([ROOT / "examples/bulk/makeLog.py", "--bytes", str(size)], stdout=to, env=environment,
                       check=True)
    with open(log, "rb") as whole, open(part, "wb") as to:
        to.write(whole.read(size // JQ_SHARE) + whole.readline())
    with open(rows, "wb") as to:
        subprocess.run([BIN / "bci", "decode", "--json", part], stdout=to, check=True)
    commands = {
        DECODE: ([BIN / "bci", "decode", "--json", log], log),
        STATS: ([BIN / "bci", "stats", log], log),
        WC: (["wc", "-l", log], log),
        JQ: (["jq", "-c", ".", rows], part),
    }
    figures = {"bytes": log.stat().st_size, "rows": rows.stat().st_size, "part": part.stat().st_size,
               "rates": {name: [] for name in commands}, "elapsed": {name: [] for name in commands}}
    for repetition in range(repetitions):
        print(f"repetition {repetition + 1} of {repetitions}", file=sys.stderr)
        for name, (command, of) in commands.items():
            processor, elapsed = take(command)
            figures["rates"][name].append(of.stat().st_size / 1e6 / processor)
            figures["elapsed"][name].append(of.stat().st_size / 1e6 / elapsed)
    for file in [log, part, rows]:
        file.unlink()
    FIGURES.write_text(json.dumps(figures, indent=1) + "\n", encoding="utf-8")


def print_tables(figures, markdown):
    rates = figures["rates"]

    def times_as_fast(name, other):
        return report.with_spread([its / own for own, its in zip(rates[name], rates[other])])

    def shown(name):
        return f"`{name}`" if markdown and name != JQ else name

    rows = []
    for name, values in rates.items():
        beside = [times_as_fast(name, WC), times_as_fast(JQ, name)] if name in (DECODE, STATS) else ["", ""]
        rows.append([shown(name), report.with_spread(values), report.with_spread(figures["elapsed"][name]), *beside])
    header = ["command", "MB of log per second of one core", "per second elapsed", "wc -l is faster by",
              "is faster than jq by"]
    title = (f"A log of {figures['bytes'] / 1e6:.0f} MB, {len(rates[DECODE])} times; its rows have "
             f"{figures['rows'] / figures['part']:.1f} times its bytes")
    report.print_table(title, header, rows, markdown)
    rows = []
    for name, bound in PROMISES:
        middle = report.spread(rates[name])[0]
        rows.append([shown(name), f"at least {bound} MB/s", report.with_spread(rates[name]),
                     "kept" if middle >= bound else "NOT KEPT"])
    report.print_table("Promises of the command", ["command", "promise", "measured", "verdict"], rows, markdown)


def write_document(figures, file):
    """Puts the tables into a document, between the lines that say so."""
    with open(file, encoding="utf-8") as stream:
        before, begin, rest = stream.read().partition(BEGIN)
    _, end, behind = rest.partition(END)
    if not begin or not end:
        sys.exit(f"{file} has no place for the tables")
    tables = io.StringIO()
    with contextlib.redirect_stdout(tables):
        print_tables(figures, True)
    with open(file, "w", encoding="utf-8") as stream:
        stream.write(before + BEGIN + tables.getvalue() + "\n" + END + behind)


def main():
    parser = argparse.ArgumentParser(description="How fast the command reads a large log, beside wc and jq.")
    parser.add_argument("--bytes", type=int, default=10**9, help="size of the log (1 GB)")
    parser.add_argument("--repetitions", type=int, default=7)
    parser.add_argument("--document", metavar="FILE", help="put the tables into a Markdown document")
    parser.add_argument("--report", action="store_true", help="measure nothing, report what was measured last")
    arguments = parser.parse_args()
    if not arguments.report:
        build()
        measure(arguments.bytes, arguments.repetitions)
    figures = json.loads(FIGURES.read_text(encoding="utf-8"))
    print_tables(figures, False)
    if arguments.document:
        write_document(figures, arguments.document)


if __name__ == "__main__":
    main()
