#!/usr/bin/env python3
"""roundtrip.py DIRECTORY: sends every rendering of the golden files through the command and back.

What 'bci decode --json' prints, 'bci encode' turns into the same bytes, for each record without damages. From text
to XML, to binary and to text again, a record is the same, unless the command says that it does not survive.
"""
import json
import pathlib
import subprocess
import sys

sys.path.append(str(pathlib.Path(__file__).parents[1] / "support"))
from renderings import golden  # noqa: E402


def run(*arguments, data):
    """Returns output and messages; status 1 is a finding, and allowed."""
    result = subprocess.run(["bci", *arguments], input=data, capture_output=True, check=False)
    if result.returncode not in (0, 1):
        sys.exit(f"bci {' '.join(arguments)}: status {result.returncode}: {result.stderr.decode()}")
    return result.stdout.splitlines(), result.stderr.splitlines()


def main():
    lines = [f"- - {form} {data.hex()}".encode() for _, form, data in golden(sys.argv[1])]
    trace = b"\n".join(lines) + b"\n"

    rows, _ = run("decode", "--json", data=trace)
    if len(rows) != len(lines):
        sys.exit(f"{len(lines)} renderings are {len(rows)} rows")
    clean = [(line, row) for line, row in zip(lines, rows) if not json.loads(row)["damages"]]
    encoded, complaints = run("encode", "--to", "trace", data=b"\n".join(row for _, row in clean) + b"\n")
    if complaints:
        sys.exit(f"encode complains: {complaints[0].decode()}")
    for (line, row), back in zip(clean, encoded, strict=True):
        # Zeros of a larger buffer, and white space in text, are no part of a record.
        if not line.startswith(back) or bytes.fromhex(line[len(back):].decode()).strip(b"\0 \t\r\n"):
            sys.exit(f"{line.decode()}\n{row.decode()}\n{back.decode()}: not the same")

    texts, lost = run("convert", "--to", "trace", "--form", "text", data=b"\n".join(line for line, _ in clean) + b"\n")
    if len(texts) + len(lost) != len(clean):
        sys.exit(f"of {len(clean)} records {len(texts)} are texts, and {len(lost)} are said to be lost")
    current = texts
    for form in ("xml", "binary", "text"):
        current, lost = run("convert", "--to", "trace", "--form", form, data=b"\n".join(current) + b"\n")
        if any(b"does not survive in" not in line for line in lost):
            sys.exit(f"to {form}: {lost[0].decode()}")
        print(f"{form}: {len(current)} records, {len(lost)} that do not survive")
    remaining = iter(texts)
    for line in current:
        if not any(line == text for text in remaining):
            sys.exit(f"{line.decode()}: was none of the texts, or not in this place")
    print(f"{len(lines)} renderings, {len(clean)} without damages, {len(texts)} texts")


main()
