#!/usr/bin/env python3
"""A picture of a command at work in a terminal: docs/check.svg.

usage: docs/terminal.py write|check COMMAND

COMMAND is the bci command. It runs in a terminal, so its colours are its own. "check" fails if the picture is not
what would be written.
"""

import html
import os
import pathlib
import pty
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
PICTURE = ROOT / "docs/check.svg"
ARGUMENTS = ["check", "examples/damaged.txt"]
STYLES = {"1": "font-weight:bold", "1;31": "font-weight:bold;fill:#ff7b72", "1;33": "font-weight:bold;fill:#e3b341",
          "36": "fill:#76e3ea"}
LINE, LEFT, TOP, CHARACTER = 18, 16, 30, 8.0  # in pixels


def output(command):
    """What the command prints on a terminal."""
    outer, inner = pty.openpty()
    environment = {**os.environ, "TERM": "xterm"}
    environment.pop("NO_COLOR", None)
    process = subprocess.Popen([command, *ARGUMENTS], stdin=inner, stdout=inner, stderr=inner, cwd=ROOT,
                               env=environment)
    os.close(inner)
    text = b""
    while True:
        try:
            piece = os.read(outer, 65536)
        except OSError:  # the other end is closed
            break
        if not piece:
            break
        text += piece
    os.close(outer)
    if process.wait() != 1:
        raise SystemExit(f"bci {' '.join(ARGUMENTS)}: status {process.returncode}\n{text.decode()}")
    return text.decode().replace("\r\n", "\n").splitlines()


def spans(line):
    """A line as SVG, colours and all."""
    pieces = re.split("\x1b\\[([0-9;]+)m(.*?)\x1b\\[0m", line)
    result = html.escape(pieces[0], quote=False)
    for i in range(1, len(pieces), 3):
        result += f'<tspan style="{STYLES[pieces[i]]}">{html.escape(pieces[i + 1], quote=False)}</tspan>'
        result += html.escape(pieces[i + 2], quote=False)
    return result


def picture(command):
    lines = [f"$ bci {' '.join(ARGUMENTS)}", *output(command)]
    if not any("\x1b[" in line for line in lines):
        raise SystemExit("bci prints no colours on a terminal")
    widest = max(len(re.sub("\x1b\\[[0-9;]+m", "", line)) for line in lines)
    width, height = round(2 * LEFT + widest * CHARACTER), TOP + LINE * len(lines)
    rows = [f'<text x="{LEFT}" y="{TOP + LINE * i}">{spans(line)}</text>' for i, line in enumerate(lines)]
    return "\n".join([
        '<?xml version="1.0" encoding="UTF-8"?>',
        f'<svg xmlns="http://www.w3.org/2000/svg" version="1.1" width="{width}" height="{height}" '
        f'viewBox="0 0 {width} {height}" font-family="monospace" font-size="13" fill="#e6edf3" xml:space="preserve">',
        f'<rect width="{width}" height="{height}" rx="8" fill="#0d1117"/>', *rows, "</svg>", ""])


def main():
    if len(sys.argv) != 3 or sys.argv[1] not in ("write", "check"):
        raise SystemExit(__doc__)
    svg = picture(sys.argv[2])
    if sys.argv[1] == "write":
        PICTURE.write_text(svg)
    elif PICTURE.read_text() != svg:
        raise SystemExit("docs/check.svg is not up to date: docs/terminal.py write bci")


main()
