#!/usr/bin/env python3
"""seeds.py GOLDEN_DIRECTORY SEEDS_DIRECTORY: inputs for every harness, from the renderings of the golden files."""
import base64
import codecs
import hashlib
import pathlib
import re
import sys

golden, seeds = map(pathlib.Path, sys.argv[1:])


def add(harness, *parts):
    content = b"".join(parts)
    directory = seeds / harness
    directory.mkdir(parents=True, exist_ok=True)
    file = directory / hashlib.sha1(content).hexdigest()[:16]
    if not file.exists():
        file.write_bytes(content)


def renderings(file):
    """Form and bytes of every rendering in a golden file."""
    lines = re.sub(r"\n ", " ", file.read_text(encoding="latin-1")).splitlines()
    for line in lines:
        form, data = re.match(r"(?:(?:writes|reads) +)?(text|binary|xml) +(.*)|()", line).groups()[:2]
        if form == "binary":
            yield form, bytes.fromhex(re.sub(r"[^0-9a-fA-F]", "", data))
        elif form:
            quoted = "".join(re.findall(r'"((?:[^"\\]|\\.)*)"', data))
            yield form, codecs.decode(quoted, "unicode_escape").encode("latin-1")


def number(value, size):
    return value.to_bytes(size, "big")


def dump(data):
    return "".join(f"{at:08x}: {data[at:at + 16].hex()}  \n" for at in range(0, len(data), 16)).encode()


for which, file in enumerate(sorted(golden.glob("*.golden"), key=lambda file: file.stem)):
    for count, (form, data) in enumerate(renderings(file)):
        name = form.capitalize()
        add(f"instantiate{name}", data)
        for before in (0, 0xA5):
            add(f"deserialize{name}", number(which, 1), number(before, 1), data)
        if form == "binary":
            for how in range(3):
                add("serialize", number(which, 1), number(how, 1), number((count * 37 + how) % 1000, 2), data)
            add("streams", b"\3\x80", data[:128], bytes([21, 5, 13, 9, 17, 9, 25, 30]))
        if form == "text":
            script = b"".join(bytes([29, 5, 21, 1, 13, 3]) for _ in range(8))
            add("streams", b"\2", number(min(len(data), 255), 1), data[:255], script)
        if form == "xml":
            tags = re.findall(rb"<(\w+)>", data)
            for tag in tags[:1] + tags[-1:]:
                add("tagContents", number(len(tag), 1), number(100, 2), tag, data)
        if len(data) > 1000:
            continue
        packed = [
            data + b"\n",
            data.hex().encode() + b"\n",
            base64.b64encode(data) + b"\n",
            dump(data),
            b"2026-11-20T12:00:00Z rx %s %s\n" % (form.encode(), data.hex().encode()),
            bytes.fromhex("a1b23c4d 0002 0004 00000000 00000000 00010000 00000093 65000000 00000000")
            + 2 * number(len(data), 4) + data,
        ]
        for content in (packed[0], packed[count % len(packed)]):
            add("records", b"\0\7", content)
            add("verdicts", b"\0", content)
    for line in re.sub(r"\n ", " ", file.read_text(encoding="latin-1")).splitlines():
        if line.startswith("fields ") and len(line) < 2000:
            members = re.findall(r'(\w+)=(-?\d+|"(?:[^"\\]|\\.)*")', line)
            row = ",".join(f'"{name}":' + re.sub(r"\\x(..)", r"\\u00\1", value) for name, value in members)
            row = ('{"class":"%s",%s}\n' % (file.stem, row)).encode("latin-1")
            add("rows", row)
            add("records", b"\0\7", row)

# Beyond what the readers look at at once: 8 KB and 512 tags of XML, 64 KB of an input.
small = b"<sigNo>23430145</sigNo>\n\t<clientRef>1</clientRef>\n\t<serverRef>2</serverRef>\n\t<mainState>3</mainState>\n"
names = sorted(file.stem for file in golden.glob("*.golden"))
for content in (b"<other></other>" * 600 + small, small.replace(b"\n", b"\n" + 8180 * b" ", 2)):
    add("instantiateXml", content)
    add("deserializeXml", number(names.index("BciAuditCfm"), 1), b"\0", content)
for content in (b"23430145:1:2:3:\n" + 65530 * b" " + b"\n23430145:4:5:6:\n", b"?" * 65536 + b"\n23430145:1:2:3:\n"):
    add("records", b"\0\7", content)
    add("verdicts", b"\0", content)

starred = [
    b"00000000: 3233 3433 3031 3434 3a31 3a32 3a0a 2020  23430144:1:2:.  \n*\n00000040: 3a  :\n",
    b"00000000  32 33 34 33 30 31 34 34  3a 31 3a 32 3a 0a 20 20  |23430144:1:2:.  |\n*\n00000040\n",
    b"0000000 3332 3334 3130 3434 313a 323a 0a3a 2020\n*\n0000040\n",
]
for content in starred:
    add("records", b"\0\7", content)
    add("verdicts", b"\0", content)
for packing in range(10):
    add("records", number(packing, 1), b"\0", b"23430145:1:2:3:\n")
    add("verdicts", number(packing, 1), b"23430145:1:2:3:\n")
for how in range(2):
    for at in range(13, 32):
        add("streams", number(how, 1), b"\x30", *(bytes([at, kind, 0xFE, kind]) * 2 for kind in range(10)))
add("streams", b"\4", number(2**64 - 2, 8), b"\1")
