"""The words of the language that mutants are made of, and what is asked about them."""

from clang.cindex import CursorKind as Kind
from clang.cindex import TypeKind

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


def isEnumerator(core):
    referenced = core.referenced if core.kind == Kind.DECL_REF_EXPR else None
    return referenced is not None and referenced.kind == Kind.ENUM_CONSTANT_DECL


def isDefaultMade(core):
    return core.referenced is not None and core.referenced.kind == Kind.CONSTRUCTOR
