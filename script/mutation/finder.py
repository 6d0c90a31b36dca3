"""Where a source can be mutated, and how."""

from clang.cindex import CursorKind as Kind
from clang.cindex import TypeKind

from mutation.effects import Effects, haveCommonEffect
from mutation.schemata import (
    Choice,
    ConditionVariable,
    Constant,
    Guard,
    Insertion,
    Mutant,
    Unfrozen,
)
from mutation.source import TRANSPARENT, children, peeled, span

COMPARISONS = {
    "==": ["!="],
    "!=": ["=="],
    "<": ["<=", ">="],
    ">": [">=", "<="],
    "<=": ["<", ">"],
    ">=": [">", "<"],
}
LOGIC = {"&&": ["||"], "||": ["&&"]}
ARITHMETIC = {
    "+": ["-"],
    "-": ["+"],
    "*": ["/"],
    "/": ["*"],
    "%": ["*"],
    "&": ["|"],
    "|": ["&"],
    "^": ["&"],
    "<<": [">>"],
    ">>": ["<<"],
}
ASSIGNMENTS = {f"{a}=": [f"{b}=" for b in others] for a, others in ARITHMETIC.items()}
STEPS = {"++": ["--"], "--": ["++"]}
ALL = {**COMPARISONS, **LOGIC, **ARITHMETIC, **ASSIGNMENTS}

FUNCTIONS = (
    Kind.FUNCTION_DECL,
    Kind.CXX_METHOD,
    Kind.CONSTRUCTOR,
    Kind.DESTRUCTOR,
    Kind.CONVERSION_FUNCTION,
)
LOOPS = (Kind.WHILE_STMT, Kind.DO_STMT, Kind.FOR_STMT, Kind.CXX_FOR_RANGE_STMT)
LABELS = (Kind.CASE_STMT, Kind.DEFAULT_STMT)
JUMPS = (Kind.BREAK_STMT, Kind.CONTINUE_STMT)
# What is decided when the sources are compiled: nothing in it can be chosen at run time.
FIXED = (
    Kind.STATIC_ASSERT,
    Kind.ENUM_DECL,
    Kind.PARM_DECL,
    Kind.TYPE_ALIAS_DECL,
    Kind.TYPEDEF_DECL,
    Kind.TEMPLATE_NON_TYPE_PARAMETER,
    Kind.CXX_UNARY_EXPR,
)
LITERALS = (
    Kind.INTEGER_LITERAL,
    Kind.FLOATING_LITERAL,
    Kind.CHARACTER_LITERAL,
    Kind.STRING_LITERAL,
    Kind.CXX_BOOL_LITERAL_EXPR,
)
EMPTY = (Kind.CXX_NULL_PTR_LITERAL_EXPR, Kind.INIT_LIST_EXPR)
INTEGERS = (
    TypeKind.CHAR_U, TypeKind.UCHAR, TypeKind.USHORT, TypeKind.UINT, TypeKind.ULONG,
    TypeKind.ULONGLONG, TypeKind.CHAR_S, TypeKind.SCHAR, TypeKind.SHORT, TypeKind.INT,
    TypeKind.LONG, TypeKind.LONGLONG,
)


# Of this type there is one object a module, and nothing else to put in its place.
UNIQUE = "Trace::Handle"


def bare(type_):
    """A type without reference and const."""
    type_ = type_.get_canonical()
    if type_.kind in (TypeKind.LVALUEREFERENCE, TypeKind.RVALUEREFERENCE):
        type_ = type_.get_pointee().get_canonical()
    return type_


def typeName(type_):
    return bare(type_).spelling.replace("const ", "")


def becomes(now, changed):
    if changed.startswith("Mutation::Plain"):
        changed = "{}"
    return f"`{short(now)}` becomes `{short(changed)}`"


def isScalar(type_):
    return bare(type_).kind in (*INTEGERS, TypeKind.BOOL, TypeKind.ENUM)


def short(text):
    text = " ".join(text.split())
    return text if len(text) <= 90 else text[:60] + " ... " + text[-25:]


class Constants:
    """Constants that can only be mutated where they are mentioned, in whatever file that is."""

    def __init__(self):
        self.declared, self.mentions = {}, []

    @staticmethod
    def key(cursor):
        return (str(cursor.location.file), cursor.location.offset)

    def edits(self):
        """(file, edit) for each mention of a constant that was declared in a mutated source."""
        for name, now, start, end, key in self.mentions:
            if key in self.declared:
                mutant, changed = self.declared[key]
                text = changed.replace("\0", now)
                yield name, Constant(start, end, mutant, text)


class Finder:
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

    # ---- Statements

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

    # ---- Expressions

    def expression(self, cursor, condition=False):
        """All mutants inside an expression; of a condition, its negation as well."""
        core = peeled(cursor)
        kind = core.kind
        if kind in FIXED:
            self.skip(core)
            return
        if condition and self.isLeaf(core):
            self.replace(core, f"!({self.source.flat(*span(core))})", level=1, truth=True)
        if kind == Kind.BINARY_OPERATOR or kind == Kind.COMPOUND_ASSIGNMENT_OPERATOR:
            self.binary(core)
        elif kind == Kind.UNARY_OPERATOR:
            self.unary(core, condition)
        elif kind == Kind.CONDITIONAL_OPERATOR:
            test, yes, no = children(core)
            self.expression(test, condition=True)
            self.expression(yes)
            self.expression(no)
        elif kind == Kind.CALL_EXPR:
            self.call(core)
        elif kind in LITERALS:
            for text in self.otherLiterals(core):
                self.replace(core, text)
                break
        elif isEnumerator(core):
            other = self.nextEnumerator(core)
            if other is not None:
                self.replace(core, other)
        elif kind in (Kind.DECL_REF_EXPR, Kind.MEMBER_REF_EXPR):
            self.reference(core)
        elif kind == Kind.LAMBDA_EXPR:
            for inner in children(core):
                if inner.kind == Kind.COMPOUND_STMT:
                    outer, self.function = self.function, None
                    self.block(inner)
                    self.function = outer
        elif kind == Kind.CXX_NEW_EXPR:
            for inner in children(core):
                self.arguments(inner) if inner.kind == Kind.CALL_EXPR else self.expression(inner)
        else:
            for inner in children(core):
                if inner.kind.is_expression():
                    self.expression(inner)

    def isLeaf(self, core):
        """A condition that no other mutant negates."""
        if core.kind == Kind.CXX_BOOL_LITERAL_EXPR:
            return False
        if core.kind == Kind.UNARY_OPERATOR:
            return not self.source.of(core).startswith(("!", "=="))
        return self.operatorOf(core) not in COMPARISONS

    def operands(self, core):
        """The operands of something with two of them, in the order of the text."""
        parts = [part for part in children(core) if part.kind.is_expression() and self.source.of(part)]
        if core.kind == Kind.CALL_EXPR:
            if not core.spelling.startswith("operator"):
                return None
            parts = [part for part in parts if not peeled(part).spelling.startswith("operator")
                     or self.source.of(part) not in ALL]
        parts.sort(key=lambda part: span(part))
        return parts if len(parts) == 2 else None

    def operatorOf(self, core):
        return self.operatorPlace(core)[0]

    def operatorPlace(self, core):
        if core.kind not in (Kind.BINARY_OPERATOR, Kind.COMPOUND_ASSIGNMENT_OPERATOR, Kind.CALL_EXPR):
            return None, None, None
        parts = self.operands(core)
        if parts is None:
            return None, None, None
        between = self.source.tokensIn(span(parts[0])[1], span(parts[1])[0])
        for start, end in between:
            if self.source.text[start:end] in ALL:
                return self.source.text[start:end], start, end
        return None, None, None

    def binary(self, core):
        parts = self.operands(core)
        operator, start, end = self.operatorPlace(core)
        if operator in ARITHMETIC and core.kind == Kind.CALL_EXPR:
            operator = None  # texts are joined, not added; streams are written to
        if operator is not None:
            whole = span(core)
            for other in ALL[operator]:
                text = self.source.flat(*whole, [(start, end, other)])
                now = self.source.flat(*whole)
                change = f"`{operator}` becomes `{other}` in `{short(now)}`"
                self.replace(core, text, change)
        isLogic = operator in LOGIC
        for part in parts or children(core):
            isAssigned = operator is None and parts is not None and part == parts[-1]
            isTruth = isAssigned and bare(part.type).kind == TypeKind.BOOL
            self.expression(part, condition=isLogic or isTruth)

    def unary(self, core, condition):
        inner = children(core)[0]
        text = self.source.of(core)
        if text.startswith("!=") or text.startswith("=="):
            self.expression(inner, condition)  # a comparison that the compiler has rewritten
            return
        if text.startswith("!"):
            self.replace(core, f"!({self.source.flat(*span(core))})", level=1, truth=True)
        elif text[:2] in STEPS or text[-2:] in STEPS:
            before = text[:2] in STEPS
            operator = text[:2] if before else text[-2:]
            operand = self.source.flat(*span(inner))
            for other in STEPS[operator]:
                self.replace(core, f"{other}{operand}" if before else f"{operand}{other}")
        elif text[0] in "-~":
            self.replace(core, self.source.flat(*span(inner)))
        self.expression(inner)

    def reference(self, core):
        referenced = core.referenced
        if core.kind == Kind.DECL_REF_EXPR and referenced is not None and referenced.kind == Kind.VAR_DECL:
            if isScalar(referenced.type) and referenced.type.is_const_qualified():
                start, end = span(core)
                text, key = self.source.flat(start, end), Constants.key(referenced)
                self.constants.mentions.append((self.source.name, text, start, end, key))
        elif core.kind == Kind.MEMBER_REF_EXPR:
            for inner in children(core):
                if inner.kind.is_expression():
                    self.expression(inner)

    # ---- Calls

    def call(self, core):
        if self.operatorOf(core) in ALL:
            self.binary(core)
            return
        arguments = self.argumentsOf(core)
        spans = [span(argument) for argument in arguments]
        isCall = self.isCall(core)
        if isCall:
            self.changedArguments(core, arguments)
        for part in children(core):
            if not part.kind.is_expression():
                continue
            if isCall and span(part) in spans and self.isChanged(peeled(part)):
                continue
            self.expression(part)

    def arguments(self, call):
        for argument in self.argumentsOf(call):
            self.expression(argument)

    def argumentsOf(self, call):
        start, end = span(call)
        return [
            argument
            for argument in call.get_arguments()
            if argument is not None and start < span(argument)[0] < span(argument)[1] <= end
        ]

    def isCall(self, core):
        """Whether its text is an expression of the form `callee(arguments)`."""
        text = self.source.of(core)
        return text.endswith(")") and text[0] not in "({[" and not core.spelling.startswith("operator")

    def isChanged(self, core):
        """Whether the call as a whole takes care of the argument."""
        return core.kind in LITERALS or isEnumerator(core)

    def changedArguments(self, core, arguments):
        given = [*core.get_arguments()]
        for argument in arguments:
            if not self.isGivenBack(core, given.index(argument)):
                for text in self.otherArguments(argument):
                    self.callWith(core, [(*span(argument), text)])
        for one, other in zip(arguments, arguments[1:]):
            texts = [self.source.flat(*span(argument)) for argument in (one, other)]
            if typeName(one.type) == typeName(other.type) and texts[0] != texts[1]:
                self.callWith(core, [(*span(one), texts[1]), (*span(other), texts[0])])

    def isGivenBack(self, core, index):
        """Whether the call writes to the argument, so that it must be an object."""
        parameters = [*core.referenced.get_arguments()] if core.referenced is not None else []
        if index >= len(parameters):
            return False
        type_ = parameters[index].type.get_canonical()
        return type_.kind == TypeKind.LVALUEREFERENCE and not type_.get_pointee().is_const_qualified()

    def callWith(self, core, changes):
        start, end = changes[0][0], changes[-1][1]
        now = self.source.flat(start, end)
        changed = self.source.flat(start, end, changes)
        whole = self.source.flat(*span(core))
        change = f"{becomes(now, changed)} in `{short(whole)}`"
        self.replace(core, self.source.flat(*span(core), changes), change)

    def otherArguments(self, argument):
        core = peeled(argument)
        text = self.source.flat(*span(argument))
        kind = bare(core.type).kind
        if core.kind in LITERALS:
            return self.otherLiterals(core)
        if isEnumerator(core):
            return [other for other in [self.nextEnumerator(core)] if other is not None]
        if core.kind in (
            Kind.CXX_NULL_PTR_LITERAL_EXPR, Kind.CXX_THIS_EXPR, Kind.LAMBDA_EXPR, Kind.INIT_LIST_EXPR,
            Kind.CONDITIONAL_OPERATOR, Kind.CXX_UNARY_EXPR,
        ) or self.isConstant(core) or typeName(core.type) == UNIQUE:
            return []
        if kind == TypeKind.BOOL:
            return [f"!({text})"] if self.isLeaf(core) and not text.startswith("!") else []
        if kind in INTEGERS:
            return [f"{text} + 1"] if core.kind != Kind.BINARY_OPERATOR else []
        if kind == TypeKind.POINTER and text.startswith("&"):
            return []
        if kind in (TypeKind.RECORD, TypeKind.POINTER) and not text.endswith("{}"):
            if text.endswith("()") and core.kind == Kind.CALL_EXPR and isDefaultMade(core):
                return []
            return [f"Mutation::Plain<decltype({text})>()"]
        return []

    # ---- Values

    def isConstant(self, core):
        """Whether it is mutated at its declaration."""
        referenced = core.referenced if core.kind == Kind.DECL_REF_EXPR else None
        if referenced is None or referenced.kind != Kind.VAR_DECL or not isScalar(referenced.type):
            return False
        text = self.source.text if str(referenced.location.file) == self.source.unit.spelling else None
        if text is None:
            return referenced.type.is_const_qualified()
        return "constexpr" in text[referenced.extent.start.offset : referenced.location.offset]

    def otherLiterals(self, core):
        text = self.source.flat(*span(core))
        if core.kind == Kind.CXX_BOOL_LITERAL_EXPR:
            return ["false" if text == "true" else "true"]
        if core.kind == Kind.STRING_LITERAL:
            return [f'"!" {text}'] if text.startswith('"') else []
        if core.kind == Kind.CHARACTER_LITERAL:
            return [f"static_cast<char>({text} + 1)"]
        if not text.isdigit():
            return [f"{text} + 1", f"{text} - 1"]
        return [str(int(text) + 1)] + ([str(int(text) - 1)] if int(text) > 0 else [])

    def nextEnumerator(self, core):
        if not isEnumerator(core):
            return None
        names = [inner.spelling for inner in children(core.referenced.semantic_parent)
                 if inner.kind == Kind.ENUM_CONSTANT_DECL]
        text = self.source.flat(*span(core))
        place = names.index(core.referenced.spelling)
        if len(names) == 1:
            return f"static_cast<decltype({text})>({text} + 1)"
        other = names[(place + 1) % len(names)]
        return text[: len(text) - len(names[place])] + other


def isEnumerator(core):
    referenced = core.referenced if core.kind == Kind.DECL_REF_EXPR else None
    return referenced is not None and referenced.kind == Kind.ENUM_CONSTANT_DECL


def isDefaultMade(core):
    return core.referenced is not None and core.referenced.kind == Kind.CONSTRUCTOR
