#!/usr/bin/env -S python3 -B
"""That the budgets can be overrun: figures made up, and what is said of them."""

import contextlib
import io
import os
import tempfile
import unittest

import budgetTable
import growth
import instructions
import size

SECTIONS = """\
Section Headers:
  [Nr] Name              Type            Addr     Off    Size   ES Flg Lk Inf Al
  [ 0]                   NULL            00000000 000000 000000 00      0   0  0
  [ 3] .dynsym           DYNSYM          000015e0 0015e0 002be0 10   A  4   2  4
  [10] .text             PROGBITS        00010000 010000 000100 00  AX  0   0 16
  [12] .rodata           PROGBITS        00010100 010100 000020 00   A  0   0  4
  [22] .data.rel.ro      PROGBITS        00020000 020000 000040 00  WA  0   0  4
  [24] .bss              NOBITS          00020040 020040 000008 00  WA  0   0  4
  [25] .comment          PROGBITS        00000000 020040 00001f 01  MS  0   0  1
"""

SYMBOLS = """\
    28: 00010000    16 FUNC    LOCAL  DEFAULT   10 Message::read.localalias
    29: 00010000    16 FUNC    GLOBAL DEFAULT   10 Message::read
    30: 00010010  0x20 FUNC    LOCAL  DEFAULT   10 bci::codec::readText
    31: 00010018     8 FUNC    LOCAL  DEFAULT   10 bci::inTheMiddle
    32: 00020000    24 OBJECT  WEAK   HIDDEN    22 Message::table
    33: 00000000     0 FUNC    GLOBAL DEFAULT  UND memcpy@GLIBC_2.0 (2)
    34: 00000000     0 FILE    LOCAL  DEFAULT  ABS message.cpp
"""

DUMPS = """\
part: 1

desc: Trigger: Client Request: BciAuditCfm encode text
events: Ir
summary: 1314
fn=(1) __strlen_sse2
totals: 1314
part: 2

desc: Trigger: Client Request: BciAuditCfm decode text
events: Ir
summary: 527
totals: 527
part: 3

desc: Trigger: Program termination
events: Ir
summary: 9
"""


def said(call, *arguments, **named):
    """The result of a call, and what it prints."""
    with contextlib.redirect_stdout(io.StringIO()) as output:
        result = call(*arguments, **named)
    return result, output.getvalue()


class Comparison(unittest.TestCase):
    def compare(self, old, new, slack=3, exhaustive=True):
        return budgetTable.compare(old, new, slack, exhaustive)

    def testTheSameIsNeitherWorseNorBetter(self):
        self.assertEqual(self.compare({"a": 100}, {"a": 100}), ([], []))

    def testThreePercentMayBeGained(self):
        self.assertEqual(self.compare({"a": 1000}, {"a": 1030}), ([], []))
        self.assertEqual(self.compare({"a": 1000}, {"a": 1031}), (["a: 1000 -> 1031, +3.1 %"], []))

    def testWhatIsSmallMayGrowByTheSlack(self):
        self.assertEqual(self.compare({"a": 10}, {"a": 13}), ([], []))
        self.assertEqual(self.compare({"a": 10}, {"a": 14}), (["a: 10 -> 14, +40.0 %"], []))
        self.assertEqual(self.compare({"a": 0}, {"a": 4}), (["a: 0 -> 4, +100.0 %"], []))

    def testMoreThanThreePercentLessIsBetter(self):
        self.assertEqual(self.compare({"a": 1000}, {"a": 970}), ([], []))
        self.assertEqual(self.compare({"a": 1000}, {"a": 969}), ([], ["a: 1000 -> 969, -3.1 %"]))

    def testANameOnOneSideOnlyIsWorseInAnExhaustiveTable(self):
        self.assertEqual(self.compare({"a": 1}, {}), (["a: 1 in the table, not measured"], []))
        self.assertEqual(self.compare({}, {"a": 1}), (["a: 1, not in the table"], []))

    def testElsewhereANewNameIsGrowthAndALostOneIsNot(self):
        self.assertEqual(self.compare({"a": 1}, {}, exhaustive=False), ([], ["a: 1 in the table, not measured"]))
        self.assertEqual(self.compare({}, {"a": 4}, exhaustive=False), (["a: 4, not in the table"], []))
        self.assertEqual(self.compare({}, {"a": 3}, exhaustive=False), ([], []))

    def testWhatIsWorseFailsAndNamesTheRemedy(self):
        status, output = said(budgetTable.verdict, {"a": 100}, {"a": 200}, 3, True)
        self.assertEqual(status, 1)
        self.assertIn("WORSE   a: 100 -> 200, +100.0 %\n", output)
        self.assertIn("--renew", output)

    def testWhatIsBetterPassesAndNamesTheRemedy(self):
        status, output = said(budgetTable.verdict, {"a": 200}, {"a": 100}, 3, True)
        self.assertEqual(status, 0)
        self.assertIn("better  a: 200 -> 100, -50.0 %\n", output)
        self.assertIn("--renew", output)

    def testWhatIsTheSameIsSilent(self):
        self.assertEqual(said(budgetTable.verdict, {"a": 100}, {"a": 101}, 3, True), (0, ""))


class Table(unittest.TestCase):
    def read(self, text):
        with tempfile.TemporaryDirectory() as directory:
            file = os.path.join(directory, "table")
            with open(file, "w", encoding="utf-8") as lines:
                lines.write(text)
            return budgetTable.read(file)

    def testIsReadAsWritten(self):
        counts = {"BciAuditCfm encode text": 1314, "BciAuditCfm decode text": 527}
        self.assertEqual(self.read(instructions.render(counts)), counts)
        kinds = {"text": 1, "rodata": 20, "data": 300}
        sizes = {"bci::codec": kinds, "total": kinds}
        self.assertEqual(self.read(size.render(sizes)), {"bci::codec": 321, "total": 321})

    def testNamesNothingTwice(self):
        with self.assertRaises(ValueError):
            self.read("a 1\na 2\n")


class Instructions(unittest.TestCase):
    def testAreThoseOfEachDump(self):
        self.assertEqual(instructions.counts(DUMPS),
                         {"BciAuditCfm encode text": 1314, "BciAuditCfm decode text": 527})

    def testOfNothingAreAnError(self):
        with self.assertRaises(ValueError):
            instructions.counts(DUMPS.replace("527", "0"))

    def testOfOneCallAreCountedOnce(self):
        with self.assertRaises(ValueError):
            instructions.counts(DUMPS.replace("decode", "encode"))

    def testTellTheFunctionsOfOtherProcessors(self):
        self.assertEqual(instructions.otherFunctions(DUMPS), [])
        for function in ("__strlen_avx2", "__memcpy_avx_unaligned_erms", "__memcpy_ssse3", "__strchr_evex"):
            self.assertEqual(instructions.otherFunctions(DUMPS.replace("__strlen_sse2", function)), [function])
            self.assertIn(function, instructions.complaint(DUMPS.replace("__strlen_sse2", function)))

    def testAreWantedOfEveryClass(self):
        names = instructions.completeNames(os.path.join(budgetTable.ROOT, "h"))
        self.assertEqual(len(names), 27 * 6)
        self.assertIn("BciAuditCfm decode xml", names)
        complaint = instructions.complaint(DUMPS)
        self.assertIn("BciAuditCfm decode xml\n", complaint)
        self.assertNotIn("BciAuditCfm decode text\n", complaint)

    def testOfTheTableAreOfEveryClass(self):
        table = budgetTable.read(os.path.join(budgetTable.HERE, "instructions.txt"))
        self.assertEqual(table.keys(), instructions.completeNames(os.path.join(budgetTable.ROOT, "h")))


class Growth(unittest.TestCase):
    def wrong(self, promise, *counts, passes=(0, 0)):
        cases = growth.readCases({f"a;{promise};{size}": count for size, count in zip((10, 80, 640), counts)})
        for tag, count in zip(("pass", "none"), passes):
            cases[f"a, pass {tag}"] = ("linear", [10, 80, 640], [count, count, count])
        return said(growth.judge, cases)[0]

    def testIsThatOfTheSize(self):
        self.assertEqual(self.wrong("linear", 101000, 180000, 820000), [])
        self.assertEqual(len(self.wrong("linear", 101000, 180000, 910000)), 1)
        self.assertEqual(len(self.wrong("linear", 101000, 180000, 5220000)), 1)

    def testIsThatOfTheSquareWhereItMayBe(self):
        self.assertEqual(self.wrong("document x tag", 101000, 180000, 5220000), [])
        self.assertEqual(len(self.wrong("document x tag", 101000, 180000, 6000000)), 1)

    def testIsNoneWhereNothingIsToBeRead(self):
        self.assertEqual(self.wrong("constant", 5000, 5000, 7000), [])
        self.assertEqual(len(self.wrong("constant", 5000, 5000, 7001)), 1)

    def testStaysWithinThePasses(self):
        self.assertEqual(self.wrong("passes: 9", 101000, 180000, 820000, passes=(100000, 50000)), [])
        self.assertEqual(len(self.wrong("passes: 8", 101000, 180000, 820000, passes=(100000, 50000))), 1)


class Size(unittest.TestCase):
    def measured(self):
        return size.measure(size.sectionsOf(SECTIONS), size.symbolsOf(SYMBOLS))

    def testCountsEveryByteOnce(self):
        sizes = {name: sum(kinds.values()) for name, kinds in self.measured().items()}
        self.assertEqual(sizes, {"Message": 16 + 24, "bci::codec": 32, "[.text]": 256 - 48, "[.rodata]": 32,
                                 "[.data.rel.ro]": 64 - 24, "[.bss]": 8, "total": 256 + 32 + 64 + 8})

    def testTellsCodeConstantsAndData(self):
        self.assertEqual(self.measured()["total"], {"text": 256, "rodata": 32, "data": 72})
        self.assertEqual(self.measured()["Message"], {"text": 16, "rodata": 0, "data": 24})

    def testGoesByClassesAndNamespaces(self):
        for name, owner in {
            "BciAuditCfm::getSigNo": "BciAuditCfm",
            "BciAuditCfm::getSigNo [clone .localalias]": "BciAuditCfm",
            "vtable for BciAuditCfm": "BciAuditCfm",
            "vtable for commonStream::streambase": "commonStream::streambase",
            "construction vtable for commonStream::ostreambase-in-commonStream::ostream_text":
                "commonStream::ostream_text",
            "virtual thunk to commonStream::ostream_text::~ostream_text()": "commonStream::ostream_text",
            "commonStream::istream_text::operator>>": "commonStream::istream_text",
            "(anonymous namespace)::kRows [clone .lto_priv.0]": "{anonymous}",
            "bci::(anonymous namespace)::put<std::pair<int, int> >": "bci::{anonymous}",
            "BciAuditCfm::find(int)::{lambda(char*)#1}::operator()": "BciAuditCfm",
            "guard variable for BciAuditCfm::find(int)::table": "BciAuditCfm",
            "std::map<int, bci::X>::~map": "std",
            "getTagContents": "{global}",
        }.items():
            self.assertEqual(size.owner(name), owner, name)

    def testAboveTheLimitFails(self):
        sizes = self.measured()
        committed = {name: sum(kinds.values()) for name, kinds in sizes.items()}
        self.assertEqual(said(size.verdict, committed, sizes, 360), (0, ""))
        self.assertEqual(said(size.verdict, committed, sizes, 359),
                         (1, "The library has 360 bytes, 1 more than the 359 that it may have.\n"))

    def testOfOneClassMoreThanCommittedFails(self):
        sizes = self.measured()
        committed = {name: sum(kinds.values()) for name, kinds in sizes.items()}
        committed["[.text]"] -= 33
        status, output = said(size.verdict, committed, sizes)
        self.assertEqual(status, 1)
        self.assertIn("WORSE   [.text]: 175 -> 208, +18.9 %\n", output)


if __name__ == "__main__":
    unittest.main()
