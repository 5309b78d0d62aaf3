"""Finds the places of a C++ source where one mistake can be made on purpose.

It goes by tokens, not by grammar, and leans on the layout that clang-format gives: a binary operator has a blank at
both sides, the '<' of template arguments has none. What it takes for an expression and is none does not
compile, and is not counted.

A mistake in the body of a function that runs is made at run time: the source gets all of these at once, each
in a condition that is true for one number. Any other (in a table, a constant, a function that the compiler runs)
is made in the text.
"""

import re

TOKEN = re.compile(
    r"""(?P<comment>//[^\n]*|/\*.*?\*/)
      | (?P<string>"(?:\\.|[^"\\\n])*")
      | (?P<char>'(?:\\.|[^'\\\n])')
      | (?P<number>\d[\w']*)
      | (?P<name>[A-Za-z_]\w*)
      | (?P<op><<=|>>=|\.\.\.|::|->|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|[][{}();,.<>+\-*/%&|^!~?:=\#])
      | (?P<space>(?:\s|\\\n)+)
      | (?P<other>.)""",
    re.X | re.S,
)
BRACKETS = {"(": ")", "[": "]", "{": "}"}
OPERATORS = {
    "<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "==", "&&": "||", "||": "&&",
    "+": "-", "-": "+", "*": "/", "/": "*", "%": "/", "<<": ">>", ">>": "<<", "&": "|", "|": "&", "^": "|",
    "+=": "-=", "-=": "+=", "|=": "&=", "&=": "|=", "*=": "+=", "/=": "*=", "<<=": ">>=", ">>=": "<<=",
}  # fmt: skip
ASSIGNMENTS = {"=", "+=", "-=", "|=", "&=", "*=", "/=", "<<=", ">>=", "%=", "^="}
CONSTANTS = {
    "true": "false", "false": "true", "LOG_INFO": "LOG_ERR", "LOG_ERR": "LOG_INFO",
    "Kind::u8": "Kind::u16", "Kind::u16": "Kind::s16", "Kind::s16": "Kind::u16", "Kind::u32": "Kind::s32",
    "Kind::s32": "Kind::u32", "Kind::text": "Kind::u8", "Oddity::none": "Oddity::doubledWord",
    "Oddity::doubledWord": "Oddity::none", "Oddity::quotesDocument": "Oddity::none",
    "Oddity::ownLogLine": "Oddity::none", "Oddity::bareOpening": "Oddity::none",
    "Oddity::foreignClosing": "Oddity::none", "Oddity::notReadFromXml": "Oddity::none",
    "Fault::indication": "Fault::cease", "Fault::cease": "Fault::indication",
}  # fmt: skip
DECLARING = {"const", "auto", "constexpr", "static", "unsigned", "char", "bool", "struct", "volatile", "int", "long",
             "class", "enum", "extern", "inline", "signed", "short", "void"}  # fmt: skip
ROW = re.compile(r"^ +(BCI_FIELD\(.*\)|\{.*\}|&\w+|k\w+),$")


class Token:
    def __init__(self, kind, text, start):
        self.kind, self.text, self.start, self.end = kind, text, start, start + len(text)
        self.match = None  # of a bracket: the index of the other
        self.angle = False  # begins or ends template arguments


class Mistake:
    """Replaces the text from `start` to `end`."""

    def __init__(self, start, end, text, name):
        self.start, self.end, self.text, self.name = start, end, text, name
        self.reached = False  # by a test
        self.chunk = None  # where it is made at run time; None: in the text
        self.number = 0
        self.key = None


class Chunk:
    """An expression, or statement, of which there is a variant for each mistake."""

    def __init__(self, start, end, kind):
        self.start, self.end, self.kind = start, end, kind
        self.mistakes = []
        self.children = []


def other_number(text):
    found = re.fullmatch(r"(0x[0-9A-Fa-f']+|[0-9']+)([uUlL]*)", text)
    if not found:
        return None
    digits = found[1].replace("'", "")
    number = int(digits, 0 if digits.startswith("0x") else 10) + 1
    return (hex(number) if digits.startswith("0x") else str(number)) + found[2]


def other_character(ch):
    if ch.isalnum():
        return {"z": "y", "Z": "Y", "9": "8"}.get(ch, chr(ord(ch) + 1))
    return ";" if ch != ";" else ":"


def other_char_literal(text):
    escapes = {"'\\0'": "'\\1'", "'\\1'": "'\\2'", "'\\n'": "'\\t'", "'\\t'": "'\\n'", "'\\r'": "'\\n'"}
    return escapes.get(text) or (f"'{other_character(text[1])}'" if len(text) == 3 else None)


def other_string(text):
    """One character is another: the middle one of those that are no escape and no conversion."""
    places = [m.start() for m in re.finditer(r"\\.|%.|(?P<plain>[^\"])", text) if m["plain"]]
    if places:
        at = places[len(places) // 2]
        return text[:at] + other_character(text[at]) + text[at + 1 :]
    return '"x"' if text == '""' else None


class Source:
    def __init__(self, text, all_in_text=False):
        self.text = text
        self.in_text = all_in_text
        self.tokens = []
        self.mistakes = []
        self.roots = []  # chunks
        self.parents = [self.roots]
        self.returns_reference = False
        for start, end in self.regions():
            self.tokens = []
            self.tokenize(start, end)
            self.scope(0, len(self.tokens))
        self.rows()
        self.name_all()

    def regions(self):
        """The code, and the bodies of macros, each by itself."""
        at = 0
        code = []
        for line in re.finditer(r"^[ \t]*#(?:[^\n]*\\\n)*[^\n]*$", self.text, re.M):
            code.append((at, line.start()))
            at = line.end()
            body = re.match(r"\s*#define\s+\w+(\([^)]*\))?", line[0])
            if body:
                yield line.start() + body.end(), line.end()
        code.append((at, len(self.text)))
        self.code = code
        yield None, None

    def tokenize(self, start, end):
        for first, last in self.code if start is None else [(start, end)]:
            for found in TOKEN.finditer(self.text, first, last):
                if found.lastgroup not in ("comment", "space"):
                    self.tokens.append(Token(found.lastgroup, found[0], found.start()))
        stack = []
        for i, token in enumerate(self.tokens):
            if token.kind != "op":
                continue
            if token.text in BRACKETS:
                stack.append(i)
            elif token.text in BRACKETS.values() and stack:
                token.match = stack.pop()
                self.tokens[token.match].match = i
        for i, token in enumerate(self.tokens):
            if token.text == "<" and not token.angle and not self.is_spaced(i):
                self.match_angles(i)

    def match_angles(self, i):
        depth = 0
        for j in range(i, min(i + 60, len(self.tokens))):
            text = self.tokens[j].text
            if text in (";", "{"):
                return
            depth += {"<": 1, ">": -1, ">>": -2}.get(text, 0) if not self.is_spaced(j) or text == "<" else 0
            if depth <= 0:
                self.tokens[i].angle = self.tokens[j].angle = True
                self.tokens[i].match = j
                return

    def is_spaced(self, i):
        token = self.tokens[i]
        before, behind = self.text[token.start - 1], self.text[token.end : token.end + 1]
        return before.isspace() and behind.isspace()

    def plain(self, start, end):
        """Without comments, on one line."""
        parts = []
        for found in TOKEN.finditer(self.text, start, end):
            parts.append(" " if found.lastgroup in ("comment", "space") else found[0])
        return "".join(parts)

    # Outside of functions that run.

    def scope(self, i, j):
        """From token i to j, at file, namespace or class scope."""
        head = i
        while i < j:
            text = self.tokens[i].text
            if text == "{" and self.tokens[i].match is not None:
                names = [t.text for t in self.tokens[head:i]]
                end = self.tokens[i].match
                if "namespace" in names or "extern" in names and len(names) == 2:
                    self.scope(i + 1, end)
                elif "enum" in names:
                    pass
                elif "=" in self.top_level(head, i) or names[-1:] and names[-1] not in (
                    ")", "const", "override", "noexcept", "}") and not self.is_type(names):
                    i = self.statement_end(i, j)
                    self.everything(head, i)
                    head = i + 1
                    i += 1
                    continue
                elif self.is_type(names):
                    self.scope(i + 1, end)
                else:
                    self.function(head, i, end)
                i = end + 1
                if i < j and self.tokens[i].text == ";":
                    i += 1
                head = i
            elif text == ";":
                self.everything(head, i)
                i += 1
                head = i
            elif text == ":" and self.tokens[i - 1].text in ("public", "private", "protected"):
                i += 1
                head = i
            elif text in ("(", "[") and self.tokens[i].match is not None:
                i = self.tokens[i].match + 1
            elif self.tokens[i].angle and self.tokens[i].match is not None and text == "<":
                i = self.tokens[i].match + 1
            else:
                i += 1
        if head < j:
            self.statements(head, j)  # what a macro leaves open

    @staticmethod
    def is_type(names):
        for place, name in enumerate(names):
            if name in ("class", "struct", "union"):
                return "(" not in names[place:]
        return False

    def function(self, head, begin, end):
        names = [t.text for t in self.tokens[head:begin]]
        runs = not self.in_text and "constexpr" not in names and "consteval" not in names
        self.default_arguments(head, begin)
        saved = self.in_text
        self.in_text = not runs
        self.returns_reference = "&" in names[: names.index("(")] if "(" in names else False
        self.statements(begin + 1, end)
        self.in_text = saved

    def default_arguments(self, head, begin):
        self.everything(head, begin)

    def everything(self, i, j):
        """Constants and operators of a declaration, made in the text."""
        names = [t.text for t in self.tokens[i:j]]
        if not names or names[0] in ("using", "static_assert", "typedef", "friend"):
            return
        saved = self.in_text
        self.in_text = True
        at = i
        while at < j:
            token = self.tokens[at]
            if token.text in ("__attribute__", "alignas", "decltype", "template", "operator") or (
                token.text == "[" and at > i and self.tokens[at - 1].kind == "name"):
                if token.text == "operator":
                    at += 2
                    continue
                k = at if token.text == "[" else at + 1
                at = (self.tokens[k].match or k) + 1
                continue
            if token.text == "[" and self.tokens[at + 1].text == "[":
                at = token.match + 1
                continue
            if token.text == "static_assert":
                at = self.tokens[at + 1].match + 1
                continue
            if token.text == "0" and self.tokens[at - 1].text == "=" and self.tokens[at - 2].text in (")", "const"):
                at += 1
                continue
            if token.text == "{" and at > i and self.tokens[at - 1].text in ("]", ")") and token.match is not None:
                self.statements(at + 1, token.match)  # a function that the compiler runs
                at = token.match + 1
                continue
            self.own(at, None)
            at += 1
        self.in_text = saved

    # Functions.

    def top_level(self, i, j):
        texts = []
        while i < j:
            texts.append(self.tokens[i].text)
            i = self.behind(i)
        return texts

    def behind(self, i):
        """Of a token, or of all that is in brackets."""
        token = self.tokens[i]
        opens = token.text in BRACKETS or token.angle and token.text == "<"
        return token.match + 1 if opens and token.match is not None else i + 1

    def statement_end(self, i, j):
        while i < j and self.tokens[i].text != ";":
            i = self.behind(i)
        return i

    def statements(self, i, j):
        while i < j:
            token = self.tokens[i]
            text = token.text
            if text == "{":
                self.statements(i + 1, token.match)
                i = token.match + 1
            elif text in (";", "else", "do") or text == "default":
                i += 2 if text == "default" else 1
            elif text == "[" and self.tokens[i + 1].text == "[":
                i = token.match + 1
            elif text == "if" and self.tokens[i + 1].text == "constexpr":
                group = i + 2
                end = self.tokens[group].match
                i = end + 1
                if "big" in [t.text for t in self.tokens[group:end]]:
                    i = self.behind(i)  # runs on other hosts
                else:
                    self.as_text(group + 1, end)
            elif text in ("if", "while", "switch"):
                group = i + 1
                self.condition(group + 1, self.tokens[group].match, text)
                i = self.tokens[group].match + 1
            elif text == "for":
                self.loop(i + 2, self.tokens[i + 1].match)
                i = self.tokens[i + 1].match + 1
            elif text == "case":
                end = i
                while self.tokens[end].text != ":":
                    end += 1
                self.as_text(i + 1, end)
                i = end + 1
            elif text == "return":
                end = self.statement_end(i, j)
                if end > i + 1:
                    self.returned(i + 1, end)
                i = end + 1
            elif text in ("break", "continue"):
                self.jump(i)
                i += 2
            elif text in ("using", "static_assert", "typedef", "template"):
                i = self.statement_end(i, j) + 1
            else:
                end = self.statement_end(i, j)
                self.statement(i, end)
                i = end + 1

    def as_text(self, i, j):
        saved = self.in_text
        self.in_text = True
        for at in range(i, j):
            self.own(at, None)
        self.in_text = saved

    def is_declaration(self, i, j):
        if self.tokens[i].text in DECLARING:
            return True
        if self.tokens[i].kind != "name" or self.tokens[i].text in ("delete", "new"):
            return False
        i += 1
        while i < j and (self.tokens[i].text == "::" or self.tokens[i].angle or self.tokens[i - 1].text == "::"):
            i = self.behind(i)
        if i >= j:
            return False
        token = self.tokens[i]
        return token.kind == "name" or token.text in ("*", "&", "&&") and not self.text[token.start - 1].isspace()

    def statement(self, i, j):
        if self.is_declaration(i, j):
            top = self.top_level(i, j)
            if "constexpr" in top or top[0] == "static":
                self.as_text(i, j)
                return
            at = i
            while at < j and self.tokens[at].text != "=":
                group = self.tokens[at]
                if group.text in ("(", "{") and group.match is not None:
                    self.list(at + 1, group.match)
                at = self.behind(at)
            if at < j:
                self.expression(at + 1, j)
            return
        start, end = self.tokens[i].start, self.tokens[j - 1].end
        chunk = self.open(start, end, "statement")
        self.add(Mistake(start, end, "", "dropped"), chunk)
        self.expression(i, j)
        self.close(chunk)

    def jump(self, i):
        start, end = self.tokens[i].start, self.tokens[i + 1].end
        chunk = self.open(start, end, "jump")
        self.add(Mistake(start, end, ";", "dropped"), chunk)
        self.close(chunk)

    def returned(self, i, j):
        start, end = self.tokens[i].start, self.tokens[j - 1].end
        text = self.text[start:end]
        if text == "*this" or text[0] in "[{" and not text.startswith("{}"):
            self.expression(i, j)
            return
        if self.returns_reference or text in ("true", "false", "nullptr") or self.tokens[i].kind in ("number", "char") and j == i + 1:
            self.expression(i, j)
            return
        chunk = self.open(start, end, "expression")
        self.add(Mistake(start, end, f"bciOther({self.plain(start, end)})", "another value"), chunk)
        self.expression(i, j)
        self.close(chunk)

    def condition(self, i, j, keyword):
        if self.is_declaration(i, j) or keyword == "switch":
            self.expression(i, j)
            return
        start, end = self.tokens[i].start, self.tokens[j - 1].end
        chunk = self.open(start, end, "expression")
        if keyword == "if":
            self.add(Mistake(start, end, "true", "taken always"), chunk)
        self.add(Mistake(start, end, "false", "taken never"), chunk)
        self.expression(i, j)
        self.close(chunk)

    def loop(self, i, j):
        parts = []
        at = i
        first = i
        while at < j:
            if self.tokens[at].text == ";":
                parts.append((first, at))
                first = at + 1
            at = self.behind(at)
        parts.append((first, j))
        if len(parts) == 1:
            while self.tokens[i].text != ":":
                i += 1
            self.expression(i + 1, j)
            return
        (a, b), (c, d), (e, f) = parts
        if a < b:
            if self.is_declaration(a, b):
                while a < b and self.tokens[a].text != "=":
                    a += 1
                self.expression(a + 1, b)
            else:
                self.expression(a, b)
        if c < d:
            self.condition(c, d, "for")
        self.list(e, f)

    def list(self, i, j):
        """Expressions with commas between them."""
        first = i
        while i < j:
            if self.tokens[i].text == ",":
                self.expression(first, i)
                first = i + 1
            i = self.behind(i)
        self.expression(first, j)

    def expression(self, i, j):
        if i >= j:
            return
        if self.tokens[i].text == "." and self.tokens[i].kind == "op":  # a designator
            while i < j and self.tokens[i].text != "=":
                i += 1
            i += 1
        start, end = self.tokens[i].start, self.tokens[j - 1].end
        chunk = self.open(start, end, "expression")
        at = i
        while at < j:
            token = self.tokens[at]
            previous = self.tokens[at - 1] if at > i else None
            if token.text == "=":
                self.expression(at + 1, j)
                break
            if token.text in ASSIGNMENTS:
                self.own(at, chunk)
                self.expression(at + 1, j)
                break
            if token.text == "?":
                condition = self.text[start : token.start].rstrip()
                self.add(Mistake(start, start + len(condition), f"!({condition})", "? turned round"), chunk)
            if token.angle and token.text == "<":
                self.as_text(at + 1, token.match)
                at = token.match + 1
            elif token.text == "[" and (previous is None or previous.text in ("(", ",", "=", "{", "return", "?", ":")):
                at = self.lambda_expression(at, j)
            elif token.text in BRACKETS and token.match is not None:
                if previous is None or previous.text not in ("sizeof", "decltype", "__attribute__", "offsetof"):
                    self.list(at + 1, token.match)
                at = token.match + 1
            else:
                self.own(at, chunk)
                at += 1
        self.close(chunk)

    def lambda_expression(self, i, j):
        i = self.tokens[i].match + 1
        while i < j and self.tokens[i].text != "{":
            i = self.behind(i)
        if i < j:
            self.statements(i + 1, self.tokens[i].match)
            return self.tokens[i].match + 1
        return i

    def own(self, i, chunk):
        """What one token can be mistaken for."""
        token = self.tokens[i]
        new = None
        if token.kind == "number":
            new = other_number(token.text)
        elif token.kind == "char":
            new = other_char_literal(token.text)
        elif token.kind == "string":
            new = other_string(token.text)
        elif token.kind == "name":
            new = CONSTANTS.get(token.text)
            if i + 2 < len(self.tokens) and self.tokens[i + 1].text == "::":
                qualified = f"{token.text}::{self.tokens[i + 2].text}"
                if qualified in CONSTANTS:
                    self.add(Mistake(token.start, self.tokens[i + 2].end, CONSTANTS[qualified],
                                     f"{qualified} -> {CONSTANTS[qualified]}"), chunk)  # fmt: skip
        elif token.text == "!":
            self.add(Mistake(token.start, token.end, "", "! dropped"), chunk)
        elif token.text in ("++", "--"):
            new = {"++": "--", "--": "++"}[token.text]
        elif token.text in OPERATORS and self.is_spaced(i) and not token.angle:
            new = OPERATORS[token.text]
        if new is not None:
            self.add(Mistake(token.start, token.end, new, f"{token.text} -> {new}"), chunk)

    def rows(self):
        """Rows of tables that change places, or are missing."""
        at = 0
        before = None
        for line in self.text.splitlines(keepends=True):
            now = (at, at + len(line), line) if ROW.match(line.rstrip("\n")) else None
            if now and "->" not in line:
                if line.lstrip().startswith(("{BCI_", "k")):
                    self.mistakes.append(Mistake(now[0], now[1], "\n", "row dropped"))
                if before and before[2] != line and not line.lstrip().startswith(("{BCI_", "k")):
                    self.mistakes.append(Mistake(before[0], now[1], line + before[2], "row after the one behind it"))
            before = now
            at += len(line)

    # Chunks.

    def open(self, start, end, kind):
        chunk = Chunk(start, end, kind)
        self.parents.append(chunk.children)
        return chunk

    def close(self, chunk):
        self.parents.pop()
        if chunk.mistakes:
            self.parents[-1].append(chunk)
        else:
            self.parents[-1].extend(chunk.children)

    def add(self, mistake, chunk):
        if chunk is not None and not self.in_text:
            mistake.chunk = chunk
            chunk.mistakes.append(mistake)
        self.mistakes.append(mistake)

    def name_all(self):
        """A key names a mistake by the line that it is made in, and by its number among those alike."""
        seen = {}
        self.mistakes.sort(key=lambda m: (m.start, m.end))
        for mistake in self.mistakes:
            begin = self.text.rfind("\n", 0, mistake.start) + 1
            end = self.text.find("\n", mistake.start)
            line = " ".join(self.text[begin:end].rstrip("\\").split())
            if mistake.name == "row after the one behind it":
                line = " ".join(self.text[mistake.start : mistake.end].split("\n")[0].split())
            count = seen[line, mistake.name] = seen.get((line, mistake.name), 0) + 1
            mistake.line = self.text.count("\n", 0, mistake.start) + 1
            mistake.key = (line, mistake.name + (f" #{count}" if count > 1 else ""))

    def with_mistake(self, mistake):
        return self.text[: mistake.start] + mistake.text + self.text[mistake.end :]

    # All that are made at run time.

    def with_all(self, numbered):
        """The source with every mistake of the given set in a condition. Lines stay where they are."""
        return self.emit(0, len(self.text), self.roots, numbered)

    def emit(self, start, end, chunks, numbered):
        parts = []
        for chunk in sorted(chunks, key=lambda c: c.start):
            parts.append(self.text[start : chunk.start])
            parts.append(self.emit_chunk(chunk, numbered))
            start = chunk.end
        parts.append(self.text[start:end])
        return "".join(parts)

    def emit_chunk(self, chunk, numbered):
        inner = self.emit(chunk.start, chunk.end, chunk.children, numbered)
        mistakes = [m for m in chunk.mistakes if m in numbered]
        if not mistakes:
            return inner
        if chunk.kind == "jump":
            return f"if (!bciMistake({mistakes[0].number})) {inner}"
        if chunk.kind == "statement":
            return f"(bciMistake({mistakes[0].number}) ? void() : void({inner}))"
        variants = "".join(
            f"bciMistake({m.number}) ? ({self.plain(chunk.start, m.start)}{m.text}{self.plain(m.end, chunk.end)}) : "
            for m in mistakes
        )
        return f"({variants}({inner}))"
