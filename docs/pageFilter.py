#!/usr/bin/env python3
"""Makes Markdown as it is in the repository into Markdown as Doxygen wants it.

usage: docs/pageFilter.py FILE      prints the file
       docs/pageFilter.py --files   prints what the pages link to and is no page
       docs/pageFilter.py --check DIRECTORY
                                    tells what code in the documents the pages there do not show as it is

Pages and headings receive the names that links to them have. A link to a file that is no page leads to its copy under
files/, where docs/build puts it. Within code, Doxygen would take away the '%' in front of a word, and tabs from blocks.
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


def parts(path):
    """A document's lines, and its blocks of code as lists of lines, their fences included."""
    block = []
    for line in (ROOT / path).read_text().splitlines():
        if block or line.startswith("```"):
            block.append(line)
            if len(block) > 1 and line.startswith("```"):
                yield block
                block = []
        else:
            yield line


def as_html(block):
    text = html.escape("\n".join(block[1:-1])).replace("\t", "&#9;")
    return ["\\htmlonly[block]", f'<pre class="fragment">{text}</pre>', "\\endhtmlonly"]


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
    for part in parts(path):
        if isinstance(part, list):
            lines += as_html(part) if any("\t" in line for line in part) else part
        elif heading := re.match(r"(#+) (.*)", part):
            name = page_id(path) if len(heading[1]) == 1 else heading_id(path, heading[2])
            lines.append(f"{part} {{#{'mainpage' if name == 'index' else name}}}")
        elif part.startswith("    "):
            lines.append(part)
        else:
            lines.append(CODE.sub(lambda code: re.sub(r"%(?=\w)", "%%", code[0]), LINK.sub(link, part)))
    return "\n".join(lines) + "\n"


def files(known):
    found = set()
    for path in known:
        for bang, _, target in LINK.findall((ROOT / path).read_text()):
            whole = resolved(path, target)[0]
            if not bang and not is_external(target) and whole not in known:
                found.add(whole)
    return sorted(found)


def text_of(markup):
    return html.unescape(re.sub("<[^>]*>", "", markup))


def code_in_page(page):
    """Pieces of code, and blocks as their lines."""
    page = re.sub(r'<div class="ttc".*?</div></div>', "", page)
    for code in re.findall("<code>(.*?)</code>", page):
        yield text_of(code).strip()
    for block in re.findall('<pre class="fragment">(.*?)</pre>', page, re.DOTALL):
        yield tuple(map(str.rstrip, text_of(block).splitlines()))
    for block in re.findall('<div class="fragment">(.*?)</div><!-- fragment -->', page, re.DOTALL):
        yield tuple(text_of(line).rstrip() for line in re.findall('<div class="line">(.*?)</div>', block))


def code_in_document(path):
    """The same."""
    for part in parts(path):
        if isinstance(part, list):
            yield tuple(map(str.rstrip, part[1:-1]))
        elif not part.startswith("    "):
            yield from (code.replace("\\|", "|").strip() for code in CODE.findall(part))


def check(directory, known):
    total = lost = 0
    for path in known:
        shown = set(code_in_page((directory / f"{page_id(path)}.html").read_text()))
        for code in code_in_document(path):
            total += 1
            if code not in shown:
                lost += 1
                print(f"{path}: {code if isinstance(code, str) else code[0]} is not shown so")
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
