"""One source as the finder sees it: its text, its tokens and the tree that libclang makes of it."""

import bisect

import clang.cindex
from clang.cindex import CursorKind, TokenKind

TRANSPARENT = (CursorKind.UNEXPOSED_EXPR, CursorKind.PAREN_EXPR)


class Source:
    """`name` is the path from `root`. Offsets are in bytes, so the text is read as Latin-1."""

    def __init__(self, root, name):
        self.name = name
        path = root / name
        self.text = path.read_text(encoding="latin-1")
        self.lines = self.text.split("\n")
        arguments = ["-x", "c++", "-std=c++20", "-w", f"-I{root / 'platform'}", f"-I{root}"]
        self.unit = clang.cindex.Index.create().parse(str(path), arguments)
        wrong = [str(said) for said in self.unit.diagnostics if said.severity >= 3]
        if wrong:
            raise SystemExit(f"{name} cannot be read: {wrong[0]}")
        everything = self.unit.get_tokens(extent=self.unit.cursor.extent)
        self.tokens = [
            (token.extent.start.offset, token.extent.end.offset)
            for token in everything
            if token.kind != TokenKind.COMMENT
        ]

    def top(self):
        """The declarations that stand in this very file."""
        here = self.unit.spelling
        for cursor in self.unit.cursor.get_children():
            place = cursor.location.file
            if place and place.name == here:
                yield cursor

    def of(self, cursor):
        start, end = span(cursor)
        return self.text[start:end]

    def flat(self, start, end, changes=()):
        """The text on one line, without comments; `changes` are (start, end, text), in order."""
        parts, last, pending = [], start, list(changes)
        for begun, ended in self.tokensIn(start, end):
            if begun < last:
                continue
            parts.append(" " if begun > last else "")
            if pending and pending[0][0] == begun:
                _, last, text = pending.pop(0)
                parts.append(text)
            else:
                parts.append(self.text[begun:ended])
                last = ended
        return "".join(parts)

    def tokensIn(self, start, end):
        first = bisect.bisect_left(self.tokens, (start, start))
        last = bisect.bisect_left(self.tokens, (end, end), first)
        return [token for token in self.tokens[first:last] if token[1] <= end]

    def words(self, start, end):
        return [self.text[begun:ended] for begun, ended in self.tokensIn(start, end)]

    def place(self, offset):
        line = self.text.count("\n", 0, offset)
        return line + 1, offset - self.text.rfind("\n", 0, offset), self.lines[line].strip()


def span(cursor):
    return cursor.extent.start.offset, cursor.extent.end.offset


def children(cursor):
    return list(cursor.get_children())


def peeled(cursor):
    """Without what the compiler adds around an expression: conversions, temporaries, brackets."""
    while True:
        inner = children(cursor)
        if cursor.kind in TRANSPARENT and len(inner) == 1:
            cursor = inner[0]
        elif cursor.kind == CursorKind.CALL_EXPR and len(inner) == 1 and span(inner[0]) == span(cursor):
            cursor = inner[0]  # a conversion
        else:
            return cursor
