"""Where a source can be mutated, and how."""

from clang.cindex import CursorKind as Kind
from clang.cindex import TypeKind

from mutation.constants import Constants
from mutation.expressions import Expressions
from mutation.schemata import Choice, Mutant, Unfrozen
from mutation.source import children, peeled, span
from mutation.statements import Statements
from mutation.words import EMPTY, FIXED, FUNCTIONS, LITERALS, bare, becomes, isScalar


class Finder(Statements, Expressions):
    """Finds the mutants of one source; `edits` bring them about, `skipped` counts what is fixed."""

    def __init__(self, source, constants):
        self.source, self.constants = source, constants
        self.mutants, self.edits, self.skipped = [], [], 0
        self.choices = {}
        self.now = False  # inside an initial value, which is asked for at run time only
        self.function = None
        for cursor in source.top():
            self.declaration(cursor)
        self.edits += self.choices.values()

    # ---- What the mutants are made with

    def mutant(self, offset, change):
        line, column, text = self.source.place(offset)
        made = Mutant(self.source.name, line, column, text, change)
        self.mutants.append(made)
        return made

    def replace(self, cursor, text, change=None, level=0, truth=False, extent=None):
        """The expression, or `text` in its place."""
        start, end = extent or span(cursor)
        now = self.source.flat(start, end)
        key = (start, end, level)
        if key not in self.choices:
            self.choices[key] = Choice(start, end, level, self.now, truth)
        change = change or becomes(now, text)
        self.choices[key].alternatives.append((self.mutant(start, change), text))

    # ---- Declarations

    def declaration(self, cursor):
        kind = cursor.kind
        if kind == Kind.FUNCTION_TEMPLATE or kind in FUNCTIONS:
            self.functionDefinition(cursor)
        elif kind == Kind.VAR_DECL:
            self.variable(cursor)
        elif kind == Kind.FIELD_DECL:
            self.initialValue(cursor)
        elif kind in FIXED:
            self.skip(cursor)
        else:
            for inner in children(cursor):
                self.declaration(inner)

    def skip(self, cursor):
        """Counts what could be mutated if it were not fixed when the source is compiled."""
        self.skipped += sum(
            inner.kind in (*LITERALS, Kind.BINARY_OPERATOR) for inner in cursor.walk_preorder()
        )

    def words(self, cursor):
        """The words before a declaration's name."""
        start, end = cursor.extent.start.offset, cursor.location.offset
        return {self.source.text[a:b]: (a, b) for a, b in self.source.tokensIn(start, end)}

    def functionDefinition(self, cursor):
        words = self.words(cursor)
        if "consteval" in words:
            self.skip(cursor)
            return
        outer, self.function = self.function, cursor
        member = None
        for inner in children(cursor):
            if inner.kind == Kind.MEMBER_REF:
                member = inner
            elif inner.kind in (Kind.COMPOUND_STMT, Kind.CXX_TRY_STMT):
                if self.source.of(inner)[:1] in "{t":
                    self.body(cursor, inner)
            elif inner.kind.is_expression() and cursor.kind == Kind.CONSTRUCTOR:
                if self.source.of(inner) and span(inner)[0] >= cursor.location.offset:
                    self.memberInitializer(member, inner)
                member = None
        self.function = outer

    def memberInitializer(self, member, value):
        start, end = span(value)
        if member is None or start == span(member)[0]:
            # `name(arguments)`: the name is no part of an expression.
            arguments = self.argumentsOf(value) if value.kind == Kind.CALL_EXPR else []
        else:
            arguments = [value]
        if len(arguments) == 1 and member is not None:
            self.plainMember(member, arguments[0])
        for argument in arguments:
            self.expression(argument)

    def plainMember(self, member, argument):
        core = peeled(argument)
        if core.kind in (*LITERALS, *EMPTY, Kind.LAMBDA_EXPR):
            return
        name = self.source.of(member)
        start, end = span(argument)
        if start < end:
            self.replace(argument, f"Mutation::Plain<decltype({name})>()", level=2)

    def variable(self, cursor):
        words = self.words(cursor)
        if "constexpr" not in words and "constinit" not in words:
            constant = cursor.type.is_const_qualified()
            self.initialValue(cursor, now=constant or self.function is None or "static" in words)
            return
        if isScalar(cursor.type):
            self.scalarConstant(cursor)
            return
        before = len(self.mutants)
        self.initialValue(cursor, now=True)
        found = self.mutants[before:]
        if found and "constexpr" in words:
            isMember = cursor.semantic_parent.kind in (Kind.CLASS_DECL, Kind.STRUCT_DECL, Kind.CLASS_TEMPLATE)
            start, end = words["constexpr"]
            self.edits.append(Unfrozen(start, end, "inline const" if isMember else "const", found))

    def valueOf(self, cursor):
        """The expression that a variable or member begins with, or none."""
        inner = children(cursor)
        if not inner or not inner[-1].kind.is_expression():
            return None
        name = cursor.location.offset + len(cursor.spelling)
        start, end = span(inner[-1])
        if end <= name or self.source.text[start - 1 : start] == "[":
            return None
        return inner[-1]

    def initialValue(self, cursor, now=False):
        value = self.valueOf(cursor)
        if value is None:
            return
        outer, self.now = self.now, self.now or now
        start, _ = span(value)
        if start == cursor.location.offset:
            for argument in children(value):  # `name(arguments)`
                if span(argument)[0] > start:
                    self.expression(argument)
        else:
            self.expression(value, condition=bare(cursor.type).kind == TypeKind.BOOL)
        self.now = outer

    def scalarConstant(self, cursor):
        value = self.valueOf(cursor)
        if value is None:
            return
        core = peeled(value)
        kind = bare(cursor.type).kind
        if kind == TypeKind.BOOL:
            changed = "!\0"
        elif kind == TypeKind.ENUM:
            changed = self.nextEnumerator(core)
            if changed is None:
                return
        else:
            changed = "\0 + 1"
        text = self.source.flat(*span(value))
        mutant = self.mutant(span(value)[0], becomes(text, changed.replace("\0", text)))
        self.constants.declared[Constants.key(cursor)] = (mutant, changed)
