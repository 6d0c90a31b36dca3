"""Mutants of expressions: operators, constants, arguments, conditions."""

from clang.cindex import CursorKind as Kind
from clang.cindex import TypeKind

from mutation.constants import Constants
from mutation.source import children, peeled, span
from mutation.words import (
    ALL,
    ARITHMETIC,
    COMPARISONS,
    FIXED,
    INTEGERS,
    LITERALS,
    LOGIC,
    STEPS,
    UNIQUE,
    bare,
    becomes,
    isDefaultMade,
    isEnumerator,
    isScalar,
    short,
    typeName,
)


class Expressions:
    """The part of a Finder that walks over expressions."""

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
