"""Mutants of statements: dropped, swapped, not taken, left early."""

from clang.cindex import CursorKind as Kind
from clang.cindex import TypeKind

from mutation.effects import Effects, haveCommonEffect
from mutation.schemata import ConditionVariable, Guard, Insertion
from mutation.source import children, peeled, span
from mutation.words import (
    EMPTY,
    INTEGERS,
    JUMPS,
    LABELS,
    LITERALS,
    LOOPS,
    bare,
    isDefaultMade,
    isEnumerator,
    short,
)


class Statements:
    """The part of a Finder that walks over statements."""

    def body(self, function, block):
        if block.kind == Kind.CXX_TRY_STMT:
            for inner in children(block):
                self.statement(inner)
            return
        self.earlyReturn(function, block)
        self.block(block)

    def earlyReturn(self, function, block):
        statements = children(block)
        result = function.result_type
        name = result.get_canonical().spelling
        nothing = name == "void" or function.kind in (Kind.CONSTRUCTOR, Kind.DESTRUCTOR)
        if len(statements) < 2 or (not nothing and not self.canReturnNothing(result)):
            return
        text = "return;" if nothing else "return {};"
        place = span(block)[0] + 1
        mutant = self.mutant(span(function)[0], f"`{function.spelling}` does `{text}` at once")
        self.edits.append(Insertion(place, mutant, text))

    @staticmethod
    def canReturnNothing(result):
        canonical = result.get_canonical()
        return canonical.kind not in (
            TypeKind.LVALUEREFERENCE, TypeKind.RVALUEREFERENCE, TypeKind.AUTO, TypeKind.VOID,
        ) and "auto" not in result.spelling

    def block(self, block):
        self.statements(children(block))

    def statements(self, statements):
        """A row of statements: what is in them, without each of them, neighbours swapped."""
        previous = before = None
        for statement in statements:
            while statement.kind in LABELS:
                inner = children(statement)
                if statement.kind == Kind.CASE_STMT:
                    self.skip(inner[0])
                statement, previous = inner[-1], None
            self.statement(statement)
            if not self.isMovable(statement):
                previous = None
                continue
            guard = Guard(span(statement)[0], self.endOf(statement))
            if self.isDroppable(statement):
                text = short(self.source.flat(guard.start, guard.end))
                guard.without.append(self.mutant(guard.start, f"`{text}` dropped"))
            effects = Effects(self.source, statement)
            if previous is not None and haveCommonEffect(before, effects):
                self.swap(previous, statement, guard)
            if guard.without:
                self.edits.append(guard)
            previous, before = statement, effects

    def swap(self, first, second, guard):
        line = short(self.source.flat(guard.start, guard.end))
        mutant = self.mutant(span(first)[0], f"after `{line}`")
        self.edits.append(Insertion(span(first)[0], mutant, self.source.flat(guard.start, guard.end)))
        guard.without.append(mutant)

    def isMovable(self, statement):
        """Neither a declaration nor something that the compiler wants to see at the end."""
        kind = statement.kind
        return kind.is_expression() or kind in (*LOOPS, *JUMPS, Kind.IF_STMT, Kind.SWITCH_STMT) or (
            kind == Kind.RETURN_STMT and not children(statement)
        )

    def isDroppable(self, statement):
        isNothing = self.source.of(statement).startswith("static_cast<void>")
        return not isNothing and statement.kind not in (Kind.IF_STMT, Kind.SWITCH_STMT)

    def endOf(self, statement):
        """Where a statement ends, with its semicolon."""
        _, end = span(statement)
        if self.source.text[end - 1] in ";}" and not statement.kind.is_expression():
            return end
        return self.source.text.index(";", end) + 1

    def statement(self, cursor):
        kind = cursor.kind
        if kind == Kind.COMPOUND_STMT:
            self.block(cursor)
        elif kind == Kind.DECL_STMT:
            for inner in children(cursor):
                self.declaration(inner)
        elif kind == Kind.IF_STMT:
            self.ifStatement(cursor)
        elif kind in LOOPS:
            self.loop(cursor)
        elif kind == Kind.RETURN_STMT:
            self.returnStatement(cursor)
        elif kind.is_expression():
            self.expression(cursor)
        elif kind == Kind.VAR_DECL:
            self.declaration(cursor)
        else:  # try, catch, switch, a statement with attributes
            for inner in children(cursor):
                self.statement(inner)

    def branch(self, statement):
        if statement.kind in (Kind.COMPOUND_STMT, Kind.UNEXPOSED_STMT, Kind.IF_STMT):
            self.statement(statement)
        else:
            self.statements([statement])

    def ifStatement(self, cursor):
        if "constexpr" in self.source.text[span(cursor)[0] :][:15]:
            parts = children(cursor)
            self.skip(parts[0])
            for part in parts[1:]:
                self.branch(part)
            return
        variable = None
        hasCondition = False
        for part in children(cursor):
            if part.kind == Kind.VAR_DECL:
                variable = part
                self.declaration(part)
                self.turnedVariable(part)
            elif part.kind == Kind.DECL_STMT:
                self.statement(part)
            elif part.kind.is_expression() and not hasCondition:
                hasCondition = True
                if variable is None:
                    self.expression(part, condition=True)
            else:
                self.branch(part)

    def turnedVariable(self, variable):
        end = span(variable)[1]
        mutant = self.mutant(span(variable)[0], f"`{variable.spelling}` negated")
        self.edits.append(ConditionVariable(end, mutant, variable.spelling))

    def loop(self, cursor):
        parts = children(cursor)
        block = parts[0] if cursor.kind == Kind.DO_STMT else parts[-1]
        if cursor.kind == Kind.CXX_FOR_RANGE_STMT:
            for part in parts[:-1]:
                if part.kind == Kind.VAR_DECL:
                    continue
                if self.source.of(part) and part.kind.is_expression():
                    self.expression(part)
        elif cursor.kind == Kind.FOR_STMT:
            self.forHead(parts[:-1])
        else:
            for part in parts:
                if part != block and part.kind == Kind.VAR_DECL:
                    self.declaration(part)
                elif part != block and part.kind.is_expression():
                    if not any(other.kind == Kind.VAR_DECL for other in parts):
                        self.expression(part, condition=True)
        self.branch(block)
        if block.kind == Kind.COMPOUND_STMT and cursor.kind != Kind.DO_STMT and children(block):
            mutant = self.mutant(span(cursor)[0], "only one turn of the loop")
            self.edits.append(Insertion(span(block)[1] - 1, mutant, "break;"))

    def forHead(self, parts):
        for part in parts:
            if part.kind.is_expression():
                self.expression(part, condition=bare(part.type).kind == TypeKind.BOOL)
            else:
                self.statement(part)

    def returnStatement(self, cursor):
        inner = children(cursor)
        if not inner:
            return
        value = inner[0]
        core = peeled(value)
        kind = bare(value.type).kind
        self.expression(value, condition=kind == TypeKind.BOOL)
        if self.function is None or core.kind in (*LITERALS, *EMPTY) or isEnumerator(core):
            return
        result = self.function.result_type
        if kind in INTEGERS and core.kind != Kind.BINARY_OPERATOR:
            if bare(result).kind in INTEGERS and result.get_canonical().kind != TypeKind.LVALUEREFERENCE:
                self.replace(value, f"{self.source.flat(*span(value))} + 1", level=1)
        elif kind in (TypeKind.RECORD, TypeKind.POINTER) and self.canReturnNothing(result):
            if core.kind == Kind.CALL_EXPR and self.source.of(core).endswith("()") and isDefaultMade(core):
                return
            text = short(self.source.flat(*span(value)))
            mutant = self.mutant(span(cursor)[0], f"`{text}` becomes `{{}}`")
            self.edits.append(Insertion(span(cursor)[0], mutant, "return {};"))
