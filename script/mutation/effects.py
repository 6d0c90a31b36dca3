"""What a statement does to what another one sees, as far as their text tells."""

from clang.cindex import CursorKind, TypeKind

from mutation.source import children, peeled, span

JUMPS = (
    CursorKind.RETURN_STMT,
    CursorKind.BREAK_STMT,
    CursorKind.CONTINUE_STMT,
    CursorKind.CXX_THROW_EXPR,
)
REFERENCES = (CursorKind.DECL_REF_EXPR, CursorKind.MEMBER_REF_EXPR)
# A trace statement is seen from outside, but it looks at nothing but its arguments.
TRACE = "twinlog"
# This one calls whoever listens, so it does more than change the member that it is called on.
PUBLISH = "publish"


class Effects:
    def __init__(self, source, statement):
        self.source = source
        self.reads, self.writes = set(), set()
        self.seen = False  # from outside: a call, a jump
        self.looks = False  # at more than what it names
        self.writesMember = False
        self.walk(statement)

    def walk(self, cursor):
        if cursor.kind in JUMPS:
            self.seen = True
        elif cursor.kind == CursorKind.CALL_EXPR:
            self.call(cursor)
        elif cursor.kind == CursorKind.BINARY_OPERATOR and self.isAssignment(cursor):
            self.write(children(cursor)[0])
        elif cursor.kind == CursorKind.COMPOUND_ASSIGNMENT_OPERATOR or self.isStep(cursor):
            self.write(children(cursor)[0])
        elif cursor.kind in REFERENCES and cursor.referenced is not None:
            self.reads.add(cursor.referenced.get_usr())
        for inner in children(cursor):
            self.walk(inner)

    def call(self, cursor):
        callee = cursor.referenced
        if callee is None:
            self.seen = self.looks = True
        elif callee.spelling == TRACE:
            self.seen = True
        elif callee.spelling in ("operator=", "operator++", "operator--", "operator+="):
            self.write(children(cursor)[0])
        elif callee.kind == CursorKind.CONSTRUCTOR or callee.spelling.startswith("operator"):
            pass
        elif callee.kind == CursorKind.CXX_METHOD and callee.is_const_method():
            self.looks = self.looks or isOwn(cursor)
        elif callee.spelling != PUBLISH and ownField(cursor) is not None:
            self.writes.add(ownField(cursor).get_usr())
            self.writesMember = True
        elif callee.spelling not in ("move", "forward"):
            self.seen = self.looks = True

    def write(self, target):
        target = peeled(target)
        referenced = target.referenced
        if referenced is None or target.kind not in REFERENCES:
            self.writesMember = True
            return
        self.writes.add(referenced.get_usr())
        if referenced.kind == CursorKind.FIELD_DECL or referenced.type.kind == TypeKind.LVALUEREFERENCE:
            self.writesMember = True

    def isAssignment(self, cursor):
        left, right = children(cursor)
        return "=" in self.source.words(span(left)[1], span(right)[0])

    def isStep(self, cursor):
        text = self.source.of(cursor)
        return cursor.kind == CursorKind.UNARY_OPERATOR and (
            text.startswith(("++", "--")) or text.endswith(("++", "--"))
        )


def objectOf(call):
    """What a method is called on; None if that is the object itself."""
    callee = children(call)[0] if children(call) else None
    inner = children(callee) if callee is not None else []
    return peeled(inner[0]) if inner and inner[0].kind.is_expression() else None


def isOwn(call):
    target = objectOf(call)
    return target is None or target.kind == CursorKind.CXX_THIS_EXPR


def ownField(call):
    """The member of the object itself that a method is called on, if it is no pointer."""
    target = objectOf(call)
    if target is None or target.kind != CursorKind.MEMBER_REF_EXPR or objectOf(target) is not None:
        return None
    field = target.referenced
    isValue = field is not None and field.kind == CursorKind.FIELD_DECL
    return field if isValue and field.type.get_canonical().kind == TypeKind.RECORD else None


def haveCommonEffect(one, other):
    """Whether somebody can tell in which order two neighbouring statements were executed."""
    if one.seen and other.seen:
        return True
    for writer, reader in ((one, other), (other, one)):
        if writer.writes & (reader.reads | reader.writes):
            return True
        if writer.writesMember and reader.looks:
            return True
    return False
