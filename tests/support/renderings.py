"""Renderings for tests that send them through other programs."""
import pathlib
import re

ESCAPES = {"t": "\t", "n": "\n", "r": "\r", "0": "\0", '"': '"', "\\": "\\"}


def unquoted(line):
    """The bytes of a run of quoted strings."""
    result = b""
    for piece in re.findall(r'"((?:[^"\\]|\\.)*)"', line):
        text = re.sub(r"\\(x[0-9A-Fa-f]{2}|.)",
                      lambda m: chr(int(m[1][1:], 16)) if m[1][0] == "x" else ESCAPES[m[1]], piece)
        result += text.encode("latin-1")
    return result


def renumbered(form, data, number):
    """A rendering whose signal number is an extreme one, with a number of its class."""
    extreme = rb"(2147483647|4294967295)"
    if form == "binary":
        is_extreme = data[:4] in (b"\x7f\xff\xff\xff", b"\xff" * 4)
        return int(number).to_bytes(4, "big") + data[4:] if is_extreme else data
    if form == "text":
        return re.sub(rb"\A" + extreme + b":", number.encode() + b":", data)
    return re.sub(rb"(<sigNo>\s*)" + extreme, rb"\g<1>" + number.encode(), data)


def golden(directory):
    """All renderings of the golden files: class, form, bytes."""
    for path in sorted(pathlib.Path(directory).glob("*.golden")):
        text = path.read_text(encoding="latin-1").replace("\n ", " ")
        number = re.search(r'"(234\d{5}):', text)[1]
        for line in text.splitlines():
            match = re.match(r"(?:writes +|reads +)?(text|binary|xml) +(.*)", line)
            if match:
                form, data = match.groups()
                content = renumbered(form, bytes.fromhex(re.sub(r"[^0-9a-f]", "", data.lower()))
                                     if form == "binary" else unquoted(data), number)
                if content:
                    yield path.stem, form, content


def contents():
    """A rendering of every class, in text, in which no list is empty: class, bytes."""
    header = (pathlib.Path(__file__).parent / "contents.h").read_text()
    for name, text in re.findall(r'\{"(Bci\w+)",((?:\s*"[^"]*")+)\}', header):
        yield name, unquoted(text)
