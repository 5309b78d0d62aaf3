#!/usr/bin/env python3
"""docs/checkLinks.py DIRECTORY: every link and picture within a folder of HTML pages leads somewhere."""

import html.parser
import pathlib
import sys
import urllib.parse


class Page(html.parser.HTMLParser):
    def __init__(self, path):
        super().__init__()
        self.names, self.links = set(), []
        self.feed(path.read_text())

    def handle_starttag(self, tag, attributes):
        for name, value in attributes:
            if name in ("id", "name"):
                self.names.add(value)
            elif name in ("href", "src", "data") and value:
                self.links.append(value)


def main():
    directory = pathlib.Path(sys.argv[1]).resolve()
    pages = {path: Page(path) for path in directory.rglob("*.html")}
    links = broken = 0
    for path, page in sorted(pages.items()):
        for link in page.links:
            parts = urllib.parse.urlsplit(link)
            if parts.scheme or parts.netloc:
                continue
            links += 1
            target = (path.parent / urllib.parse.unquote(parts.path)).resolve() if parts.path else path
            fragment = urllib.parse.unquote(parts.fragment)
            if not target.is_file() or (fragment and target in pages and fragment not in pages[target].names):
                broken += 1
                print(f"{path.relative_to(directory)}: {link} leads nowhere")
    print(f"{len(pages)} pages, {links} links, {broken} of them broken")
    raise SystemExit(1 if broken or links == 0 else 0)


main()
