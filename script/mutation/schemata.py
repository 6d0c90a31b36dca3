"""Sources in which every mutation point asks at run time whether its mutant is chosen."""

import dataclasses


@dataclasses.dataclass(eq=False)
class Mutant:
    """One change of one source; `text` is the line where it begins, `change` what it does."""

    file: str
    line: int
    column: int
    text: str
    change: str
    number: int = 0
    dropped: bool = False  # it does not compile

    def place(self):
        return f"{self.file}:{self.line}"

    def key(self):
        return (self.file, self.text, self.change)


class Edit:
    """A change of the source from `start` to `end`, around what else is changed in between."""

    def __init__(self, start, end, level=0):
        self.start, self.end, self.level = start, end, level

    def mutants(self):
        raise NotImplementedError

    def live(self):
        return [mutant for mutant in self.mutants() if not mutant.dropped]

    def write(self, out, inner):
        raise NotImplementedError


class Choice(Edit):
    """An expression and what can stand in its place."""

    def __init__(self, start, end, level, now, truth):
        super().__init__(start, end, level)
        self.ask = "Mutation::isNow" if now else "Mutation::is"
        self.truth = truth  # the expression is a condition, whatever its type
        self.alternatives = []

    def mutants(self):
        return [mutant for mutant, _ in self.alternatives]

    def write(self, out, inner):
        out.put("(")
        for mutant, text in self.alternatives:
            if not mutant.dropped:
                out.put(f"{self.ask}({mutant.number}) ? ")
                out.mutated(mutant, f"({text})")
                out.put("\n: ")
        out.put("static_cast<bool>(" if self.truth else "(")
        inner()
        out.put("))")


class Guard(Edit):
    """A statement that some mutants leave out."""

    def __init__(self, start, end):
        super().__init__(start, end)
        self.without = []

    def mutants(self):
        return self.without

    def write(self, out, inner):
        asked = " && ".join(f"!Mutation::is({mutant.number})" for mutant in self.live())
        out.put(f"if ({asked}) {{ ")
        inner()
        out.put(" }")


class Insertion(Edit):
    """Statements that one mutant adds."""

    def __init__(self, place, mutant, text):
        super().__init__(place, place)
        self.mutant, self.text = mutant, text

    def mutants(self):
        return [self.mutant]

    def write(self, out, inner):
        out.mutated(self.mutant, f"\nif (Mutation::is({self.mutant.number})) {{ {self.text} }}\n")


class ConditionVariable(Edit):
    """`if (auto x = f())`: the declaration stays, and the condition is what follows it."""

    def __init__(self, place, mutant, name):
        super().__init__(place, place, 1)
        self.mutant, self.name = mutant, name

    def mutants(self):
        return [self.mutant]

    def write(self, out, inner):
        text = f"; Mutation::is({self.mutant.number}) != static_cast<bool>({self.name})"
        out.mutated(self.mutant, text)


class Constant(Edit):
    """A mention of a constant whose value a mutant changes."""

    def __init__(self, start, end, mutant, changed):
        super().__init__(start, end)
        self.mutant, self.changed = mutant, changed

    def mutants(self):
        return [self.mutant]

    def write(self, out, inner):
        out.put(f"Mutation::constant<{self.mutant.number}>(")
        inner()
        out.put(", ")
        out.mutated(self.mutant, self.changed)
        out.put(")")


class Unfrozen(Edit):
    """The word constexpr of a variable whose initial value is mutated at run time."""

    def __init__(self, start, end, word, mutants):
        super().__init__(start, end)
        self.word, self.initial = word, mutants

    def mutants(self):
        return self.initial

    def write(self, out, inner):
        out.put(self.word)


class Output:
    """The instrumented text, and for each part of it the mutants that it is there for."""

    def __init__(self):
        self.parts, self.size, self.ranges = [], 0, []

    def put(self, text):
        self.parts.append(text)
        self.size += len(text)

    def mutated(self, mutant, text):
        start = self.size
        self.put(text)
        self.ranges.append((start, self.size, [mutant]))

    def text(self):
        return "".join(self.parts)


class Instrumented:
    """A source with the edits whose mutants are not dropped."""

    def __init__(self, source, edits, before=""):
        self.source = source
        live = [edit for edit in edits if edit.live()]
        live.sort(key=lambda edit: (edit.start, edit.end != edit.start, -edit.end, -edit.level))
        self.out = Output()
        self.out.put(before)
        self.rest = live
        self.copy(0, len(source))
        self.text, self.ranges = self.out.text(), self.out.ranges
        self.lineStarts = [0]
        for index, letter in enumerate(self.text):
            if letter == "\n":
                self.lineStarts.append(index + 1)

    def copy(self, start, end):
        while self.rest and self.rest[0].start < end:
            edit = self.rest.pop(0)
            assert start <= edit.start and edit.end <= end, "edits overlap"
            self.out.put(self.source[start : edit.start])
            begun = self.out.size
            edit.write(self.out, lambda edit=edit: self.copy(edit.start, edit.end))
            self.out.ranges.append((begun, self.out.size, edit.live()))
            start = edit.end
        self.out.put(self.source[start:end])

    def mutantsAt(self, line, column):
        """Those in whose text the compiler found something wrong: the innermost."""
        if line > len(self.lineStarts):
            return []
        offset = self.lineStarts[line - 1] + max(column - 1, 0)
        around = [part for part in self.ranges if part[0] <= offset < part[1]]
        return min(around, key=lambda part: part[1] - part[0])[2] if around else []


def numbered(mutants):
    """Gives the mutants their numbers, from 1 in the order of their places."""
    ordered = sorted(mutants, key=lambda mutant: (mutant.file, mutant.line, mutant.column))
    for number, mutant in enumerate(ordered, start=1):
        mutant.number = number
    return ordered
