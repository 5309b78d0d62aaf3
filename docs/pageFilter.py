#!/usr/bin/env python3
"""Makes Markdown as it is in the repository into Markdown as Doxygen wants it.

usage: docs/pageFilter.py FILE      prints the file
       docs/pageFilter.py --files   prints what the pages link to and is no page
       docs/pageFilter.py --check DIRECTORY
                                    tells which pieces of code in the documents the pages there do not show as they are

Pages and headings receive the names that links to them have. A link to a file that is no page leads to its copy under
files/, where docs/build puts it. Within code, Doxygen would take away the '%' in front of a word.
"""

import html
import os
import pathlib
import re
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
CATALOGUE = "docs/catalogue/README.md"  # whose pages lie below it
LINK = re.compile(r"(!?)\[([^\]]*)\]\(([^()\s]+)\)")
CODE = re.compile(r"`([^`]+)`")


def pages():
    """Paths of all pages, from the root."""
    known = ["README.md", "CHANGELOG.md", "CONTRIBUTING.md", "examples/bulk/README.md"]
    return known + sorted(str(path.relative_to(ROOT)) for path in ROOT.glob("docs/**/*.md"))


def page_id(path):
    return "index" if path == "README.md" else "page-" + re.sub(r"\W", "-", path.removesuffix(".md"))


def heading_id(path, heading):
    """As forges name it: lower case, letters, digits and hyphens."""
    return page_id(path) + "-" + re.sub(r"[^\w -]", "", heading.lower()).replace(" ", "-")


def resolved(path, link):
    """A link's file from the root, and its heading."""
    target, _, heading = link.partition("#")
    whole = os.path.normpath(os.path.join(os.path.dirname(path), target)) if target else path
    if (ROOT / whole / "README.md").exists():
        whole = os.path.join(whole, "README.md")
    return whole, heading


def is_external(link):
    return re.match(r"[a-z]+:", link) is not None


def lines_of(path):
    """The lines of a document, each with whether it stands outside of blocks of code."""
    fenced = False
    for line in (ROOT / path).read_text().splitlines():
        if line.startswith("```"):
            fenced = not fenced
            yield line, False
        else:
            yield line, not fenced


def converted(path, known):
    def link(match):
        bang, text, target = match.groups()
        if is_external(target):
            return match[0]
        whole, heading = resolved(path, target)
        if bang:
            return f"![{text}]({os.path.basename(whole)})"
        if path == CATALOGUE and whole in known and whole not in below:
            below.add(whole)
            return f'@subpage {page_id(whole)} "{text}"'
        if whole in known:
            return f"[{text}](#{heading_id(whole, heading) if heading else page_id(whole)})"
        return f'<a href="files/{whole}">{text}</a>'

    lines = []
    below = set()
    for line, is_prose in lines_of(path):
        if is_prose and (heading := re.match(r"(#+) (.*)", line)):
            name = page_id(path) if len(heading[1]) == 1 else heading_id(path, heading[2])
            line = f"{line} {{#{'mainpage' if name == 'index' else name}}}"
        elif is_prose and not line.startswith("    "):
            line = CODE.sub(lambda code: re.sub(r"%(?=\w)", "%%", code[0]), LINK.sub(link, line))
        lines.append(line)
    return "\n".join(lines) + "\n"


def files(known):
    found = set()
    for path in known:
        for bang, _, target in LINK.findall((ROOT / path).read_text()):
            whole = resolved(path, target)[0]
            if not bang and not is_external(target) and whole not in known:
                found.add(whole)
    return sorted(found)


def check(directory, known):
    total = lost = 0
    for path in known:
        page = (directory / f"{page_id(path)}.html").read_text()
        shown = {html.unescape(re.sub("<[^>]*>", "", code)).strip() for code in re.findall("<code>(.*?)</code>", page)}
        for line, is_prose in lines_of(path):
            for code in CODE.findall(line) if is_prose and not line.startswith("    ") else []:
                total += 1
                if code.replace("\\|", "|").strip() not in shown:
                    lost += 1
                    print(f"{path}: {code} is not shown so")
    print(f"{total} pieces of code, {lost} of them not shown as they are")
    raise SystemExit(1 if lost or total == 0 else 0)


def main():
    if len(sys.argv) != (3 if sys.argv[1:2] == ["--check"] else 2):
        raise SystemExit(__doc__)
    known = pages()
    if sys.argv[1] == "--check":
        check(pathlib.Path(sys.argv[2]), known)
    elif sys.argv[1] == "--files":
        print(*files(known), sep="\n")
    else:
        sys.stdout.write(converted(os.path.relpath(sys.argv[1], ROOT), known))


main()
