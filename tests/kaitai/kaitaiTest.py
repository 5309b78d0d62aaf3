#!/usr/bin/python3
"""kaitaiTest.py DIRECTORY: what a reader made of 'bci gen ksy' reads, beside 'bci decode --json'.

DIRECTORY holds the golden files. Runs where it may install packages of npm. Records are a full one of every class,
all golden renderings in the binary form that have no findings, and all signal numbers, with the first word in both
orders.
"""
import filecmp
import json
import pathlib
import py_compile
import shutil
import subprocess
import sys

import yaml

HERE = pathlib.Path(__file__).parent
sys.path.append(str(HERE.parent / "support"))
from renderings import contents, golden  # noqa: E402


def run(*arguments, data=b""):
    """Returns output; status 1 of the command is a finding, and allowed."""
    result = subprocess.run(arguments, input=data, capture_output=True, check=False)
    if result.returncode not in (0, 1) or (arguments[0] != "bci" and result.returncode != 0):
        sys.exit(f"{' '.join(arguments)}: status {result.returncode}: {result.stderr.decode()}")
    return result.stdout


def install():
    """The packages that package-lock.json names, if they are not there."""
    lock = pathlib.Path("package-lock.json")
    if lock.exists() and filecmp.cmp(lock, HERE / lock, shallow=False) and pathlib.Path("installed").exists():
        return
    for name in ("package.json", "package-lock.json"):
        shutil.copy(HERE / name, name)
    run("npm", "ci", "--ignore-scripts", "--no-audit", "--no-fund", "--no-update-notifier")
    pathlib.Path("installed").touch()


def records(directory):
    """Bytes and rows."""
    big = [data.hex() for _, form, data in golden(directory) if form == "binary"]
    texts = [text for _, text in contents()]
    for signal in json.loads(run("bci", "list", "--format", "json")):
        texts.append(run("bci", "encode", signal["name"], "clientRef=-7"))
    big += [run("bci", "convert", "--to", "binary", data=text).hex() for text in texts]
    everything = big + ["".join(reversed([one[i:i + 2] for i in range(0, 8, 2)])) + one[8:] for one in big]
    rows = run("bci", "decode", "--json", data="".join(f"- - binary {one}\n" for one in everything).encode())
    for one, line in zip(everything, rows.splitlines(), strict=True):
        row = json.loads(line)
        if not row["damages"] and not row["notes"]:
            yield one, row


def main():
    install()
    pathlib.Path("bci.ksy").write_bytes(run("bci", "gen", "ksy"))
    pathlib.Path("bci.json").write_text(json.dumps(yaml.safe_load(pathlib.Path("bci.ksy").read_text())))
    known = list(records(sys.argv[1]))
    classes = {signal["class"] for signal in json.loads(run("bci", "list", "--format", "json"))}
    missing = classes - {row["class"] for _, row in known}
    if missing:
        sys.exit(f"no record of {', '.join(sorted(missing))}")
    pathlib.Path("records.ndjson").write_text("".join(json.dumps({"hex": one, "row": row}) + "\n"
                                                      for one, row in known))
    print(run("node", str(HERE / "kaitaiTest.js"), "bci.json", "records.ndjson").decode(), end="")
    py_compile.compile("bci.py", doraise=True)  # names that are taken in another language show here


main()
