"""Makes small mistakes in a line of C++. Each mistake is another version of the line.

They are the usual ones: another comparison, a negated condition, another arithmetic or logical
operator, a constant that is off by one, a statement that is missing, a result that is the opposite.
The layout of clang-format distinguishes operators from other signs: binary operators have spaces on
both sides, the signs of templates, references and pointers do not.
"""

import re
from typing import Iterator, NamedTuple


class Mutation(NamedTuple):
    """One mistake; what it is called, and the whole line with it."""

    name: str
    line: str


OPERATORS = {
    "==": ["!="],
    "!=": ["=="],
    "<": ["<=", ">="],
    "<=": ["<", ">"],
    ">": [">=", "<="],
    ">=": [">", "<"],
    "&&": ["||"],
    "||": ["&&"],
    "+": ["-"],
    "-": ["+"],
    "*": ["/"],
    "/": ["*"],
    "%": ["*"],
    "&": ["|"],
    "|": ["&"],
    "<<": [">>"],
    ">>": ["<<"],
    "+=": ["-="],
    "-=": ["+="],
    "|=": ["&="],
    "&=": ["|="],
}
BINARY = re.compile(r"(?<= )(%s)(?= |$)" % "|".join(re.escape(sign) for sign in OPERATORS))
STEP = re.compile(r"\+\+|--(?!>)")
TRUTH = re.compile(r"\b(true|false)\b")
NUMBER = re.compile(r"(?<![\w.])(0[xX][0-9a-fA-F]+|\d+)(?![\w.'])")
CONDITION = re.compile(r"\b(?:if|while) \(")
RETURN = re.compile(r"^(\s*return )(?!\{\})(.+);$")
CALL = re.compile(r"^\s*(?!return\b|throw\b|delete\b)[A-Za-z_][\w:]*(?:(?:\.|->|\(\)|::)[\w:]*)*\(.*\);$")
# Lines that are not statements: directives, declarations of types and names, and checks that always
# hold.
PASSED_OVER = re.compile(
    r"^\s*(#|//|\*|using\b|namespace\b|static_assert\b|template\b|class\b|struct\b|enum\b|friend\b"
    r"|public:|private:|protected:|signals:|default:|Q_[A-Z_]+\b|QUILLMAP_[A-Z_]+\b)"
)


def blank(line: str) -> str:
    """The line with spaces for its comment and an x for each character inside quotes."""
    quoted = re.sub(
        r"""(")((?:[^"\\]|\\.)*)"|(')((?:[^'\\]|\\.)*)'""",
        lambda found: found[0][0] + "x" * (len(found[0]) - 2) + found[0][0],
        line,
    )
    code = re.sub(r"/\*.*?\*/", lambda found: " " * len(found[0]), quoted)
    return re.sub(r"//.*", lambda found: " " * len(found[0]), code)


def closing(code: str, opening: int) -> int:
    """Where the parenthesis at opening is closed, or -1 if it is on another line."""
    depth = 0
    for place in range(opening, len(code)):
        depth += {"(": 1, ")": -1}.get(code[place], 0)
        if depth == 0:
            return place
    return -1


def replacements(code: str) -> Iterator[tuple]:
    """The parts that may be replaced: start, end, the new texts."""
    for found in BINARY.finditer(code):
        yield found.start(), found.end(), OPERATORS[found[0]]
    for found in STEP.finditer(code):
        yield found.start(), found.end(), ["--" if found[0] == "++" else "++"]
    for found in TRUTH.finditer(code):
        yield found.start(), found.end(), ["false" if found[0] == "true" else "true"]
    for found in NUMBER.finditer(code):
        number = int(found[0], 0) if found[0].lower().startswith("0x") else int(found[0])
        yield found.start(), found.end(), [str(number + 1), str(number - 1)]


def mutations(line: str) -> list:
    """All mistakes for this line, without its line end; none if it is not a statement."""
    code = blank(line)
    stripped = code.rstrip()
    if not stripped or PASSED_OVER.match(code):
        return []
    result = []
    for start, end, texts in replacements(code):
        for text in texts:
            result.append(Mutation(f"{line[start:end]} to {text}", line[:start] + text + line[end:]))
    for found in CONDITION.finditer(code):
        opening = found.end() - 1
        end = closing(code, opening)
        if end > 0 and ";" not in code[opening:end]:
            negated = f"{line[:opening]}(!{line[opening:end + 1]}){line[end + 1:]}"
            result.append(Mutation("condition negated", negated))
    found = RETURN.match(stripped)
    if found:
        value = line[found.start(2) : found.end(2)]
        if value not in ("true", "false"):
            result.append(Mutation("opposite result", f"{found[1]}!({value});"))
            result.append(Mutation("empty result", f"{found[1]}{{}};"))
    if CALL.match(stripped) and closing(stripped, stripped.index("(")) > 0:
        result.append(Mutation("call dropped", re.match(r"\s*", line)[0] + ";"))
    return result
