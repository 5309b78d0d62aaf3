#!/usr/bin/env -S python3 -B
"""stack.py LIBRARY LIMIT DOCUMENT: how deep the stack of the library's own functions becomes below any of them: from
the frames and calls that the compiler noted when the library was linked. Fails where it is deeper than the limit, or
not what the document says. What functions of the C and C++ libraries take is theirs, and not counted."""

import glob
import os
import re
import sys

# Who calls through a pointer, and whom that may reach: names as the linker has them.
INDIRECT = {
    r"BciMessageBase17instantiateBciMsgE": r"^_ZN\d+Bci\w+17instantiateBciMsgE[jm]$",
    r"(?<!de)serialize(To(Text|Binary|Xml)E|IN)": r"^_ZNK\d+Bci\w+serializeBciMsgTo(Text|Binary|Xml)E",
    r"deserialize(From(Text|Binary|Xml)E|IN)": r"^_ZN\d+Bci\w+deserializeBciMsgFrom(Text|Binary|Xml)E",
    r"BciMessageBase27instantiateBciMsgFromBinaryE": r"^_ZN\d+Bci\w+D0Ev$",
}
POINTER = "__indirect_call"
# The registry is taken down when the program ends: by a recursion, as deep as its tree is high.
AT_THE_END = "_M_erase"


# What has no frame noted is of the C or C++ library, or the C++ library's operators: not what these begin with.
OWN = r"^_Z(?!St|NK?St|nwj|nwm|dlPv)"


def plain(title):
    """Without the object file that a local function is in, what makes it local, and what tells one name of a
    constructor or destructor from the other."""
    name = re.sub(r"\.localalias|\.lto_priv\.\d+", "", re.sub(r"^.*\.o:", "", title))
    return re.sub(r"(?<=[a-z])([CD])1(?=E)", r"\g<1>2", name)


class CallGraph:
    def __init__(self, files):
        self.frames = {}
        self.callees = {}
        for file in files:
            with open(file, encoding="utf-8") as lines:
                for line in lines:
                    self.read(line)
        self.depths = {}

    def read(self, line):
        if node := re.match(r'node: { title: "([^"]*)" label: "([^"]*)"', line):
            name = plain(node[1])
            if size := re.search(r"\\n(\d+) bytes \((.*)\)", node[2]):
                if size[2] not in ("static", "dynamic,bounded"):
                    sys.exit(f"{name} has a frame that grows: {size[0]}")
                self.frames[name] = max(int(size[1]), self.frames.get(name, 0))
        elif edge := re.match(r'edge: { sourcename: "([^"]*)" targetname: "([^"]*)"', line):
            self.callees.setdefault(plain(edge[1]), set()).add(plain(edge[2]))

    def reached(self, name):
        for callee in self.callees.get(name, ()):
            if callee != POINTER:
                if AT_THE_END not in callee:
                    if callee not in self.frames and re.search(OWN, callee):
                        sys.exit(f"{name} calls {callee}, whose frame is not known")
                    yield callee
                continue
            targets = [target for caller, target in INDIRECT.items() if re.search(caller, name)]
            if len(targets) != 1:
                sys.exit(f"{name} calls through a pointer: whom?")
            found = [function for function in self.frames if re.search(targets[0], function)]
            if not found:
                sys.exit(f"{name} calls through a pointer: nobody is {targets[0]}")
            yield from found

    def deepest(self, name, callers=()):
        """The bytes, and the functions on the way."""
        if name in callers:
            sys.exit("recursion: " + " ".join((*callers, name)))
        if name not in self.depths:
            below = max((self.deepest(callee, (*callers, name)) for callee in self.reached(name)), default=(0, ()))
            self.depths[name] = (self.frames.get(name, 0) + below[0], (name, *below[1]))
        return self.depths[name]


def main():
    library, limit, document = sys.argv[1], int(sys.argv[2]), sys.argv[3]
    files = glob.glob(library + ".ltrans*.ci")
    newest = max(map(os.path.getmtime, files), default=0)
    # What is much older is left from a link that wrote more of them.
    graph = CallGraph(file for file in files if os.path.getmtime(file) > newest - 300)
    if len(graph.frames) < 500:
        sys.exit(f"{len(graph.frames)} functions in {files}: that is not the library")
    size, path = max(graph.deepest(name) for name in graph.frames if AT_THE_END not in name)
    print(f"{size} bytes of stack at most:")
    for name in path:
        print(f"{graph.frames.get(name, 0):6} {name}")
    if size > limit:
        sys.exit(f"That is more than the {limit} bytes it may take.")
    with open(document, encoding="utf-8") as text:
        if f"{size:,} bytes of stack" not in text.read():
            sys.exit(f"{document} does not say '{size:,} bytes of stack'.")


main()
