#!/usr/bin/env python3
"""The catalogue: a page for each signal, an index, and a picture for each class.

usage: docs/catalogue.py write|check COMMAND

COMMAND is the bci command; what a signal consists of is asked of it. The examples are those of examples/signals.txt,
the log lines of a message's own checks those of tests/golden, the oddities those of docs/quirks.md. "write" puts the
pages into docs/catalogue; "check" tells which of them are not what would be written, and fails if there are any.
"""

import difflib
import json
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
PAGES = ROOT / "docs/catalogue"
PRIORITIES = {"3": "LOG_ERR", "6": "LOG_INFO"}
FORMS = {"text": "text", "binary": "binary", "xml": "XML"}
EXAMPLES = "examples/signals.txt"


class Command:
    def __init__(self, path):
        self.path = path

    def __call__(self, *arguments, data=b""):
        done = subprocess.run([self.path, *arguments], input=data, capture_output=True, cwd=ROOT)
        if done.returncode != 0 or done.stderr:
            raise SystemExit(f"bci {' '.join(arguments)}: status {done.returncode}\n{done.stderr.decode()}")
        return done.stdout.decode()


def code(text):
    return f"`{text}`"


def table(head, rows):
    lines = ["| " + " | ".join(head) + " |", "|" + "---|" * len(head)]
    return "\n".join(lines + ["| " + " | ".join(map(str, row)) + " |" for row in rows]) + "\n"


def fenced(text):
    return f"```text\n{text.rstrip(chr(10))}\n```\n"


def blocks():
    """The signals' names by block, as the header groups them."""
    found = {}
    for line in (ROOT / "h/bciMsgRegistration.h").read_text().splitlines():
        if group := re.match(r"/// @name (.+)", line):
            found[group[1]] = []
        elif constant := re.match(r"constexpr SIGSELECT (\w+) =", line):
            list(found.values())[-1].append(constant[1])
    return found


def examples(signals):
    """A text of each class, by class."""
    classes = {signal["number"]: signal["class"] for signal in signals}
    return {classes[int(line.split(":")[0])]: line for line in (ROOT / EXAMPLES).read_text().splitlines()}


def oddities():
    """(section, oddity, effect) by class."""
    found = {}
    section = ""
    for line in (ROOT / "docs/quirks.md").read_text().splitlines():
        if line.startswith("## "):
            section = line[3:]
        elif line.startswith("| `Bci"):
            messages, oddity, effect, _ = [cell.strip() for cell in line.strip("|").split(" | ")]
            for name in re.findall("`([^`]+)`", messages):
                found.setdefault(name, []).append((section, oddity, effect))
    return found


def checks(name, known):
    """What a message's own checks log, as its golden file has it, but for the lines of missing elements."""
    rows = {}
    case = operation = ""
    for line in (ROOT / f"tests/golden/{name}.golden").read_text().splitlines():
        word, _, rest = line.partition(" ")
        if word == "case":
            case = rest
        elif word in ("writes", "reads"):
            operation = f"{word[:-1].replace('write', 'writ')}ing {FORMS[rest.split()[0]]}"
        elif word == "log":
            priority, line = re.match(r'\s*(\d) "((?:[^"\\]|\\.)*)"', rest).groups()
            if line.partition("]")[0] not in known:
                rows.setdefault(line, (PRIORITIES[priority], code(line), operation, case))
    return sorted(rows.values(), key=lambda row: int(re.search(r":(\d+)\]", row[1])[1]))


def anchor(heading):
    return re.sub(r"[^a-z0-9 -]", "", heading.lower()).replace(" ", "-")


class Fields:
    """The table of fields, the bounds and the log lines, from one walk over what describe tells."""

    def __init__(self, parts):
        self.rows, self.bounds, self.logs = [], [], []
        self.walk(parts, "", "i")

    def walk(self, parts, sign, index):
        for part in parts:
            kind = part["part"]
            if kind in ("field", "entries", "block"):
                self.element(part, sign)
            elif kind == "list":
                self.bounds.append((code(part["count"]), f"0 to {part['bound']}"))
                whole = ", all of them always there, zeros from the count on" if part["whole"] else ""
                size = part["size"] if part["whole"] else f"0 to {part['size']}"
                self.rows.append((f"{sign}{part['offset']}", size, "list",
                                  f"{code(part['count'])} elements{whole}; element {index} begins at "
                                  f"{sign}{part['offset']} + {part['stride']} {index}", "", ""))
                self.walk(part["content"], "+", "j")
            elif kind == "choice":
                values = ", ".join(str(case["value"]) for case in part["cases"])
                self.bounds.append((code(part["selector"]), values))
                self.rows.append((f"{sign}{part['offset']}", part["size"], "choice",
                                  f"by {code(part['selector'])}, zeros behind what is shorter", "", ""))
                for case in part["cases"]:
                    self.rows.append(("", case["size"], "", f"**{case['value']}: {case['member']}**", "", ""))
                    self.walk(case["content"], sign, index)
            elif kind == "limit":
                self.bounds.append((code(part["name"]), f"at most {part['bound']}"))

    def element(self, part, sign):
        kind, size, name = part["part"], part["size"], code(part["name"])
        if kind == "entries":
            name += f", as many as {code(part['count'])} says, one behind the other, each with a zero"
            self.bounds.append((name.partition(",")[0], f"{size} characters together, a zero each included"))
        elif kind == "block":
            self.bounds.append((code(part["length"]), f"0 to {part['bound']}"))
            size = f"0 to {size}"
        elif part["type"].endswith("]"):
            self.bounds.append((name, f"{size - 1} characters and a zero"))
        element = code(f"<{part['element']}>")
        if part["closing"] != part["element"]:
            element += f", closed by {code('</' + part['closing'] + '>')}"
        log = part["log"]
        self.rows.append((f"{sign}{part['offset']}", size, part["type"], name, element,
                          code(log) if log else "not looked up"))
        if log:
            self.logs.append(log)


def binary(command, text):
    """The annotated binary form, with "*" for lines that are zeros like those around them."""
    convert = [command.path, "convert", "--to", "binary"]
    form = subprocess.run(convert, input=text.encode(), capture_output=True, check=True).stdout
    lines = command("decode", "--annotate", data=form).splitlines()[1:]
    zeros = re.compile(r"[0-9a-f]{8} ( 00){16}$")
    kept = []
    for i, line in enumerate(lines):
        inside = 0 < i < len(lines) - 1 and all(zeros.match(other) for other in lines[i - 1:i + 2])
        if not inside:
            kept.append(line)
        elif kept[-1] != "*":
            kept.append("*")
    return "\n".join(kept)


def page(command, signal, block, message, example, quirks):
    text = re.sub(r"^\d+", str(signal["number"]), example)
    fields = Fields(message["content"])
    sizes = message["sizes"]

    def span(least, most):
        return most if least == most else f"{least} to {most}"

    structure = message["structure"]["name"]
    parts = [f"""# {signal['name']}

Number {signal['number']} ({signal['hex']}), of the block "{block}"; class {signal['class']}, wire structure {structure}.
[All signals](README.md)

![The bytes of the binary form]({signal['class']}.svg)

## Fields

Most significant byte first, but for the first word, which has the byte order of the host that writes it. The wire
structure has every field at the same offset.
""", table(("offset", "size", "type", "field", "XML element", "log line (LOG_INFO) where the element is missing"),
           fields.rows),
             "## An example\n\nThe text:\n", fenced(text),
             "The binary form, as the target writes it:\n", fenced(binary(command, text)),
             "The XML:\n", "```xml\n" + command("convert", "--to", "xml", data=text.encode()) + "```\n",
             "## Bounds\n", table(("what", "bound"), [
                 ("binary form", f"{span(sizes['binaryLeast'], sizes['binaryMost'])} bytes"),
                 ("text form", f"at most {sizes['textMost']} characters"),
                 ("`getMaxBinaryBufferSize()`", span(sizes["maxBinaryBufferLeast"], sizes["maxBinaryBufferMost"])),
                 ("`getMaxTextBufferSize()`", sizes["maxTextBuffer"]),
                 *fields.bounds])]
    own = checks(signal["class"], {log.partition("]")[0] for log in fields.logs})
    parts.append("## Log lines\n")
    if own:
        parts.append("Beside those of missing elements:\n")
        parts.append(table(("priority", "format", "when", "for example"), own))
    else:
        parts.append("None but those of missing elements.\n")
    parts.append("## Oddities\n")
    if quirks:
        section = quirks[0][0]
        parts.append(table(("oddity", "effect on a user"), [quirk[1:] for quirk in quirks]))
        parts.append(f"With their tests: [{section}](../quirks.md#{anchor(section)}). Then there are those of\n"
                     "[all messages](../quirks.md#all-messages).\n")
    else:
        parts.append("None but those of [all messages](../quirks.md#all-messages).\n")
    return "\n".join(parts)


def index(signals):
    by_name = {signal["name"]: signal for signal in signals}
    parts = ["# Signals\n\nEvery signal of the board control interface: what it consists of, and an example in its three "
             "forms. `docs/catalogue.py`\nwrites these pages from what the command says; a test holds them against that.\n"]

    def link(name):
        return f"[{name}]({name}.md)"

    for block, names in blocks().items():
        parts.append(f"## {block}\n")
        parts.append(table(("signal", "number", "", "class"), [
            (link(name), by_name[name]["number"], by_name[name]["hex"], by_name[name]["class"]) for name in names]))
    parts.append("## By class\n")
    classes = {}
    for signal in signals:
        classes.setdefault(signal["class"], []).append(signal["name"])
    parts.append(table(("class", "signals"),
                       [(name, ", ".join(map(link, classes[name]))) for name in sorted(classes)]))
    return "\n".join(parts)


def catalogue(command):
    """Contents by file name."""
    signals = json.loads(command("list", "--format", "json"))
    block_of = {name: block for block, names in blocks().items() for name in names}
    example_of, quirks = examples(signals), oddities()
    unknown = set(quirks) - {signal["class"] for signal in signals}
    if unknown:
        raise SystemExit(f"docs/quirks.md: no class {', '.join(sorted(unknown))}")
    messages = {}
    pages = {"README.md": index(signals)}
    for signal in signals:
        name = signal["class"]
        if name not in messages:
            messages[name] = json.loads(command("describe", name, "--format", "json"))
            pages[f"{name}.svg"] = command("describe", name, "--format", "svg")
        pages[f"{signal['name']}.md"] = page(command, signal, block_of[signal["name"]], messages[name],
                                             example_of[name], quirks.get(name, []))
    return pages


def main():
    if len(sys.argv) != 3 or sys.argv[1] not in ("write", "check"):
        raise SystemExit(__doc__)
    pages = catalogue(Command(sys.argv[2]))
    there = {path.name: path.read_text() for path in PAGES.glob("*")}
    if sys.argv[1] == "check":
        for name in sorted(set(pages) | set(there)):
            sys.stdout.writelines(difflib.unified_diff(
                there.get(name, "").splitlines(True), pages.get(name, "").splitlines(True),
                f"docs/catalogue/{name}", "generated"))
        raise SystemExit("docs/catalogue is not up to date: docs/catalogue.py write bci" if pages != there else 0)
    PAGES.mkdir(exist_ok=True)
    for name in set(there) - set(pages):
        (PAGES / name).unlink()
    for name, content in pages.items():
        (PAGES / name).write_text(content)


main()
