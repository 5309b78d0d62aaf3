#!/usr/bin/env python3
"""The scripts that hold documents against what is there notice what is wrong."""

import html
import pathlib
import re
import subprocess
import tempfile
import unittest

HERE = pathlib.Path(__file__).resolve().parent
ROOT = HERE.parent.parent


class Scripts(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)

    def write(self, name, text):
        (self.folder / name).write_text(text)

    def run_script(self, *arguments):
        done = subprocess.run(list(map(str, arguments)), capture_output=True, text=True, check=False)
        self.assertEqual(done.stderr, "")
        return done.returncode, done.stdout.replace(str(self.folder) + "/", "")

    def samples(self, text):
        self.write("document.md", text)
        return self.run_script(HERE / "samples.py", self.folder, self.folder / "document.md")

    def expect_wrong(self, text, message):
        status, output = self.samples(text)
        self.assertEqual(status, 1)
        self.assertIn(message, output)

    def test_samples_that_do_as_they_say(self):
        text = ("<!-- file: greeting -->\n```text\nhello\n```\n\n"
                "```console\n$ cat greeting\nhello\n$ seq \\\n  9\n1\n...\n9\n"
                "```\n\n<!-- not run: no reason -->\n```sh\nfalse\n```\n\n```sh\ntrue\n```\n")
        self.assertEqual(self.samples(text),
                         (0, "1 documents: 4 samples executed, 1 blocks not run\n"))

    def test_samples_with_other_output(self):
        self.expect_wrong("```console\n$ echo a\nb\n```\n", "document.md:2: echo a\nstatus 0, output:\na")
        self.expect_wrong("```console\n$ seq 9\n1\n...\n8\n```\n", "document.md:2: seq 9")
        self.expect_wrong("```console\n$ echo a\n```\n", "document.md:2: echo a")

    def test_samples_that_fail(self):
        self.expect_wrong("```console\n$ false\n```\n", "document.md:2: false\nstatus 1")
        self.expect_wrong("```console\n$ true\n$ exit 3\n```\n", "document.md:3: exit 3\nended the shell")
        self.expect_wrong("```sh\nfalse\ntrue\n```\n", "document.md:1: status 1")

    def test_samples_of_which_nobody_says_what_they_are(self):
        self.expect_wrong("Text\n\n    code\n", "document.md:3: the block has no fence")
        self.expect_wrong("```\ncode\n```\n", "document.md:1: the block has no language")
        self.expect_wrong("```cpp\ncode\n```\n", "document.md:1: code is neither a file nor an excerpt")
        self.expect_wrong("```sh\ncode\n", "document.md:1: the block has no end")
        self.expect_wrong("no samples\n", "0 samples executed")

    def test_excerpts(self):
        excerpt = "<!-- excerpt: examples/auditCfm.cpp -->\n```cpp\nint main()\n...\n{line}\n```\n"
        self.assertEqual(self.samples(excerpt.replace("{line}", "delete message;"))[0], 0)
        self.expect_wrong(excerpt.replace("{line}", '#include "bciAuditMsg.h"'),
                          "document.md:5: examples/auditCfm.cpp has no such line")

    def test_links(self):
        self.write("a.html", '<p id="here"><a href="b.html#there"></a><a href="#here"></a>'
                             '<a href="https://example.org/x"></a>')
        self.write("b.html", '<p id="there"><img src="c.svg">')
        self.write("c.svg", "<svg/>")
        check = [ROOT / "docs/checkLinks.py", self.folder]
        self.assertEqual(self.run_script(*check), (0, "2 pages, 3 links, 0 of them broken\n"))
        self.write("b.html", '<p id="elsewhere"><img src="d.svg">')
        self.assertEqual(self.run_script(*check), (1, "a.html: b.html#there leads nowhere\n"
                                                      "b.html: d.svg leads nowhere\n"
                                                      "2 pages, 3 links, 2 of them broken\n"))

    def test_code_in_pages(self):
        converted = self.run_script(ROOT / "docs/pageFilter.py", ROOT / "docs/catalogue/BCI_FAULT_IND.md")[1]
        self.assertIn("`[src/bciFaultMsg:81] additionalDataLength %%d > %%d`", converted)
        self.assertIn('<pre class="fragment">&#9;&lt;sigNo&gt;\n', converted)
        for page in [*ROOT.glob("*.md"), *ROOT.glob("docs/**/*.md"), ROOT / "examples/bulk/README.md"]:
            name = str(page.relative_to(ROOT)).removesuffix(".md").replace("/", "-")
            blocks = re.findall(r"^```\w+\n(.*?)^```$", page.read_text(), re.MULTILINE | re.DOTALL)
            pieces = re.findall("`([^`\n]+)`", page.read_text())
            self.write("index.html" if name == "README" else f"page-{name}.html",
                       "".join(f'<pre class="fragment">{html.escape(block)}</pre>' for block in blocks) +
                       "".join(f"<code>{html.escape(piece)}</code>" for piece in pieces))
        check = [ROOT / "docs/pageFilter.py", "--check", self.folder]
        status, output = self.run_script(*check)
        self.assertEqual(status, 0)
        self.assertRegex(output, r"^[1-9]\d* pieces of code, 0 of them not shown as they are\n$")
        self.write("page-docs-catalogue-BCI_AUDIT_CFM.html", "<code>sigNo</code>")
        status, output = self.run_script(*check)
        self.assertEqual(status, 1)
        self.assertIn("docs/catalogue/BCI_AUDIT_CFM.md: <mainState> is not shown so\n", output)
        self.assertIn("docs/catalogue/BCI_AUDIT_CFM.md: \t<sigNo> is not shown so\n", output)
        self.assertNotIn(": sigNo is not shown so", output)


unittest.main()
