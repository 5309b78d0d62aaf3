"""Tables of figures that are committed, and what is wrong when they are measured anew."""

import argparse
import os
import sys

PERCENT = 3  # what a figure may grow by


HERE = os.path.dirname(os.path.realpath(__file__))
ROOT = os.path.dirname(os.path.dirname(HERE))


def arguments(description, table):
    """The command line of a script that measures a file; its table is beside it unless another is named."""
    parser = argparse.ArgumentParser(description=description, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--renew", action="store_true", help="write the table instead of comparing")
    parser.add_argument("file")
    parser.add_argument("table", nargs="?", default=os.path.join(HERE, table))
    return parser.parse_args()


def renewal():
    """The command that renews the table, as typed at the root of the tree."""
    script, *others = [os.path.relpath(one, ROOT) for one in sys.argv]
    return " ".join([script, "--renew", *others])


def read(file):
    """The rows of a table: the words that name each, and its last number."""
    rows = {}
    with open(file, encoding="utf-8") as lines:
        for line in lines:
            if line.strip() and not line.startswith("#"):
                words = line.split()
                name = " ".join(word for word in words if not word.isdigit())
                if name in rows:
                    raise ValueError(f"{file}: {name} is there twice")
                rows[name] = int(words[-1])
    return rows


def compare(committed, measured, slack, exhaustive):
    """What is worse than committed, and what is better, a line each.

    Worse is growth by more than PERCENT and by more than `slack`. A name on one side only is new or gone; where
    the table is exhaustive both are worse."""
    worse = []
    better = []
    for name in sorted(committed.keys() | measured.keys()):
        old = committed.get(name)
        new = measured.get(name)
        if old is None and (exhaustive or new > slack):
            worse.append(f"{name}: {new}, not in the table")
        elif new is None:
            (worse if exhaustive else better).append(f"{name}: {old} in the table, not measured")
        elif old is not None:
            line = f"{name}: {old} -> {new}, {(new - old) * 100 / old if old else 100:+.1f} %"
            if (new - old) * 100 > old * PERCENT and new - old > slack:
                worse.append(line)
            elif (old - new) * 100 > old * PERCENT and old - new > slack:
                better.append(line)
    return worse, better


def verdict(committed, measured, slack, exhaustive):
    """Prints the comparison. The exit status: 1 if anything is worse."""
    worse, better = compare(committed, measured, slack, exhaustive)
    for line in worse:
        print(f"WORSE   {line}")
    for line in better:
        print(f"better  {line}")
    if worse or better:
        print(f"{'If that is meant' if worse else 'To hold on to it'}: {renewal()}")
    return 1 if worse else 0
