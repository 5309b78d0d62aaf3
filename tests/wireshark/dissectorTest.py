#!/usr/bin/env python3
"""dissectorTest.py DIRECTORY: what tshark shows by 'bci gen wireshark', beside 'bci decode'.

DIRECTORY holds the golden files. Packets are their renderings, full ones of every class and all signal numbers in
all forms, and what becomes of renderings that are cut, changed and put together. Every field, finding and byte range
has to be the same, and Lua must have nothing to complain about.
"""
import collections
import csv
import io
import json
import os
import pathlib
import random
import re
import subprocess
import sys
import tempfile
import xml.etree.ElementTree

sys.path.append(str(pathlib.Path(__file__).parents[1] / "support"))
from capture import IP, capture, datagram  # noqa: E402
from renderings import contents, golden  # noqa: E402

FINDING = ("code", "field", "position", "length", "expected", "found")


def run(*arguments, data=b""):
    """Returns output; status 1 of the command is a finding, and allowed."""
    result = subprocess.run(arguments, input=data, capture_output=True, check=False)
    if result.returncode not in (0, 1):
        sys.exit(f"{' '.join(arguments)}: status {result.returncode}: {result.stderr.decode()}")
    return result.stdout


def tshark(script, data, *options):
    """Returns output, and whether Lua complains."""
    with tempfile.TemporaryDirectory() as empty, tempfile.NamedTemporaryFile(suffix=".pcap") as file:
        file.write(data)
        file.flush()
        # A dissector that is installed is not the one that is tested.
        environment = {**os.environ, "HOME": empty, "WIRESHARK_PLUGIN_DIR": empty}
        result = subprocess.run(["tshark", "-n", "-X", f"lua_script:{script}", "-r", file.name, *options],
                                capture_output=True, check=False, env=environment)
    complains = (b"lua" in result.stderr.lower() or b"Lua Error" in result.stdout or
                 b"_ws.lua.error" in result.stdout)
    if result.returncode != 0 and not complains:
        sys.exit(f"tshark: status {result.returncode}: {result.stderr.decode()}")
    return result.stdout, complains


def changed(data, generator):
    """A rendering with something wrong in it, if not by chance with nothing."""
    at = generator.randrange(len(data))
    piece = generator.choice([b"", b":", b"\0", b"\n", b"\r\n", b"0", b"-", b"x", b" ", b"<", b"99999999999",
                              b"\xff", b"\xc3\xa4", data[at:at + generator.randrange(1, 40)],
                              bytes([generator.randrange(256)])])
    return data[:at] + piece + data[at + generator.choice([0, 1, 1, 1, len(piece)]):]


def swapped(data, generator):
    """XML with its elements, or parts of them, in another order."""
    pieces = data.split(b"\t<")
    one, other = generator.randrange(1, len(pieces)), generator.randrange(1, len(pieces))
    pieces[one], pieces[other] = pieces[other], pieces[one]
    return b"\t<".join(pieces)


def packets(directory):
    """All of them."""
    generator = random.Random(1)
    known = list(golden(directory))
    for name, text in contents():
        known.append((name, "text", text))
        known += [(name, form, run("bci", "convert", "--to", form, data=text)) for form in ("binary", "xml")]
    yield from (data for _, _, data in known)
    for signal in json.loads(run("bci", "list", "--format", "json")):
        text = run("bci", "encode", signal["name"], "clientRef=-7")
        for form in (["text"], ["binary"], ["binary", "--first-word", "little"], ["xml"]):
            yield run("bci", "convert", "--to", *form, data=text)
    longest = {}
    for name, form, data in known:
        if len(data) > len(longest.get((name, form), b"")) and len(data) < 6000 or (name, form) not in longest:
            longest[name, form] = data
    for (_, form), data in longest.items():
        cuts = range(len(data)) if len(data) < 60 else generator.sample(range(len(data)), 30)
        yield from (data[:length] for length in cuts)
        yield from (changed(data, generator) for _ in range(40))
        yield from (changed(changed(data, generator), generator) for _ in range(15))
        if form == "xml":
            yield from (swapped(data, generator) for _ in range(20))
            yield data.replace(b"\n\t", b"").replace(b"\t", b"")
        if form == "binary":
            yield from (changed(data[3::-1] + data[4:], generator) for _ in range(15))
    everything = [data for _, _, data in known if len(data) < 600]
    for _ in range(400):
        first, second = generator.choice(everything), generator.choice(everything)
        if generator.randrange(3) == 0:
            first = changed(first, generator)
        yield first + generator.choice([b"", b"", b"\n", b"\0\0\0", b" ", b"x"]) + second


def commanded(data):
    """What the command reads, by packets: of each record a dictionary."""
    places = collections.defaultdict(list)
    table = run("bci", "decode", "--csv", data=data).decode(errors="replace")
    for line in csv.DictReader(io.StringIO(table, newline="")):
        if line["type"] and line["position"]:
            places[int(line["record"])].append((line["field"], int(line["position"])))
    result = collections.defaultdict(list)
    for line in run("bci", "decode", "--json", data=data).splitlines():
        row = json.loads(line)
        record = {member: row[member] for member in ("form", "firstWord", "name", "class")}
        record["rest"] = row["rest"] or None
        record["places"] = places[row["record"]]
        record["numbers"] = {name: value for name, value in row["numbers"].items() if value is not None}
        record["bytes"] = {name: value for name, value in row["bytes"].items() if value is not None}
        record["bytes"] |= {name: text.encode().hex() for name, text in row["texts"].items() if text is not None}
        for kind in ("damage", "note"):
            record[kind] = [tuple(finding[part] for part in FINDING) for finding in row[kind + "s"]]
        result[row["offset"]].append(record)
    return list(result.values())


def finding_in(element, begin):
    """A finding in a tree, its place within the record."""
    if element.find("field[@name='_ws.expert']") is None:
        sys.exit(f"{element.get('showname')}: no expert info")
    parts = {part.get("name"): part.get("show") for part in element}
    return (element.get("show"), parts.get("bci.finding.field"), int(element.get("pos")) - begin,
            int(element.get("size")), parts["bci.finding.expected"], parts["bci.finding.found"])


def record_in(tree):
    """The same as the command's of what tshark shows."""
    begin = int(tree.get("pos"))
    record = {"length": int(tree.get("size")), "form": None, "firstWord": None, "name": None, "class": None,
              "rest": None, "places": [], "numbers": {}, "bytes": {}, "damage": [], "note": []}
    for element in tree.iter("field"):
        name = element.get("name")
        own = name.removeprefix("bci.")
        if own in ("form", "firstWord", "name", "class"):
            record[own] = element.get("show")
        elif own in ("damage", "note"):
            record[own].append(finding_in(element, begin))
        elif own == "rest":
            record[own] = element.get("value")
        elif name.startswith("bci.") and not own.startswith(("finding.", "expert.", "response_")):
            label = element.get("showname").replace(" [truncated]", "").split(":")[0]
            if label.split("_")[0].split("[")[0] != own.split("_")[0]:
                sys.exit(f"{label} is shown as {own}")
            record["places"].append((label, int(element.get("pos")) - begin))
            record["bytes"][label] = element.get("value", "")
            if element.get("show").lstrip("-").isdigit():
                record["numbers"][label] = int(element.get("show"))
    return record


def dissected(output):
    """Records, by packets."""
    for _, element in xml.etree.ElementTree.iterparse(io.BytesIO(output)):
        if element.tag == "packet":
            yield [record_in(tree) for tree in element.findall("proto[@name='bci']")]
            element.clear()


def difference(wanted, actual):
    """What is not the same, or None."""
    if len(wanted) != len(actual):
        return f"{len(wanted)} records, not {len(actual)}"
    for one, other in zip(wanted, actual):
        for member, value in one.items():
            found = other[member]
            if member in ("numbers", "bytes"):
                found = {name: found.get(name) for name in value}
            elif member in ("damage", "note"):
                # What stands at the end of a record has no byte to be shown at.
                value = [(*finding[:3], min(finding[3], other["length"] - finding[2]), *finding[4:])
                         for finding in value]
            if value != found:
                return f"{member}: {value}, not {found}"
    return None


def compare(script, all_packets):
    """Returns the numbers of records and of findings, by code."""
    data = capture(all_packets)
    output, complains = tshark(script, data, "-T", "pdml")
    if complains:
        sys.exit("Lua has an error")
    counts = collections.Counter()
    differences = 0
    for packet, wanted, actual in zip(all_packets, commanded(data), dissected(output), strict=True):
        text = difference(wanted, actual)
        if text is not None:
            differences += 1
            if differences <= 20:
                print(f"{packet}\n{packet.hex()}\n{text}\n")
        for record in wanted:
            counts["records"] += 1
            counts.update(finding[0] for finding in record["damage"] + record["note"])
    if differences:
        sys.exit(f"{differences} of {len(all_packets)} packets are not shown as the command reads them")
    return counts


def expect(what, wanted, actual):
    if wanted != actual:
        sys.exit(f"{what}:\n{actual}\nnot\n{wanted}")


def check_exchanges(script):
    """Requests and responses find each other by the client's reference, in any form."""
    lines = ["23430144:5:1:", "23430144:6:1:", "23430145:6:1:0:", "23430146:5:1:2:0:reason:0:", "23430145:6:1:0:",
             "23429130:-1:0:", "23429131:-1:0:", "23430144:7:1:23430145:7:1:x:"]
    forms = ["text", "binary", "xml", "text", "text", "text", "xml", "text"]
    everything = [run("bci", "convert", "--to", form, data=line.encode()) if "x" not in line else line.encode()
                  for line, form in zip(lines, forms)]
    fields = ["frame.number", "_ws.col.Protocol", "_ws.col.Info", "bci.response_in", "bci.response_to",
              "bci.response_time"]
    options = ["-2", "-T", "fields", *(part for field in fields for part in ("-e", field))]
    output, complains = tshark(script, capture(everything, 0.25), *options)
    expect("exchanges", """\
1	BCI	BCI_AUDIT_REQ clientRef=5 serverRef=1	4
2	BCI	BCI_AUDIT_REQ clientRef=6 serverRef=1	3
3	BCI	BCI_AUDIT_CFM clientRef=6 serverRef=1		2	0.250000000
4	BCI	BCI_AUDIT_REJ clientRef=5 serverRef=1		1	0.750000000
5	BCI	BCI_AUDIT_CFM clientRef=6 serverRef=1
6	BCI	BCI_BASIC_0A_REQ clientRef=-1 serverRef=0	7
7	BCI	BCI_BASIC_0B_CFM clientRef=-1 serverRef=0		6	0.250000000
8	BCI	BCI_AUDIT_REQ clientRef=7 serverRef=1 | BCI_AUDIT_CFM clientRef=7 serverRef=1 [not-a-number]	8	8	0.000000000
""", "".join(line.rstrip("\t") + "\n" for line in output.decode().splitlines()))
    for condition, wanted in (('bci.clientRef == 6 && bci.form == "binary"', "2"), ("bci.sigNo == 23430146", "4"),
                              ('bci.damage == "not-a-number"', "8"), ("bci.expert.not_a_number", "8"),
                              ('bci.errorDescription contains "eas"', "4"), ("bci.response_time > 0.5", "4")):
        options = ["-Y", condition, "-T", "fields", "-e", "frame.number"]
        output, _ = tshark(script, capture(everything, 0.25), *options)
        expect(condition, wanted, output.decode().strip())
    if complains:
        sys.exit("Lua has an error")


def check_addresses(script):
    """With addresses, a response is that to its receiver."""
    request, response = b"23430144:5:1:", b"23430145:5:1:3:"
    packets_of_ip = [datagram(1, 9, request), datagram(2, 9, request), datagram(9, 1, response),
                     datagram(3, 1, response), datagram(9, 2, response)]
    output, complains = tshark(script, capture(packets_of_ip, link_type=IP), "-d", "udp.port==4711,bci", "-T",
                               "fields", "-e", "frame.number", "-e", "_ws.col.Protocol", "-e", "bci.response_to")
    expect("addresses", "1\tBCI\t\n2\tBCI\t\n3\tBCI\t1\n4\tBCI\t\n5\tBCI\t2\n", output.decode())
    if complains:
        sys.exit("Lua has an error")


def check_that_errors_are_seen(text):
    """That this test would notice an error of the script."""
    for number, broken in enumerate((text + b"\nnothing()\n",
                                     text.replace(b"function protocol.dissector(tvb, pinfo, root)",
                                                  b"function protocol.dissector(tvb, pinfo, root) nothing()"))):
        with tempfile.NamedTemporaryFile(suffix=".lua") as file:
            file.write(broken)
            file.flush()
            if not tshark(file.name, capture([b"23430144:5:1:"]), "-T", "pdml")[1]:
                sys.exit(f"error {number} was not noticed")


def main():
    text = run("bci", "gen", "wireshark")
    with tempfile.NamedTemporaryFile(suffix=".lua") as file:
        file.write(text)
        file.flush()
        check_that_errors_are_seen(text)
        check_exchanges(file.name)
        check_addresses(file.name)
        counts = compare(file.name, list(packets(sys.argv[1])))
    print(", ".join(f"{count} {name}" for name, count in counts.most_common()))
    # What only the library or another carrier can say.
    explanations = run("bci", "check", "--explain", "all").decode()
    codes = re.findall(r"^([a-z-]+) \((?:damage|note)\)$", explanations, re.MULTILINE)
    missing = set(codes) - set(counts) - {"bad-encoding", "library-refuses", "library-differs"}
    if missing:
        sys.exit(f"no packet has {', '.join(sorted(missing))}")


main()
