"""The small faults that mutants.py plants: where a C++ source can have one, and what it becomes."""
import collections
import re

Fault = collections.namedtuple("Fault", "file line kind begin end text")

STRING = r'"(?:[^"\\\n]|\\.)*"|\'(?:[^\'\\\n]|\\.)+\''
NO_CODE = re.compile(STRING + r"|//[^\n]*|/\*.*?\*/|^[ \t]*#(?:[^\n]*\\\n)*[^\n]*", re.DOTALL | re.MULTILINE)
STATEMENT = r"(?:(?<=[;{}:)])|(?<=else))(\s+)"
KEYWORDS = {"if", "for", "while", "switch", "catch", "return", "sizeof", "alignof", "decltype", "operator",
            "static_assert", "noexcept", "requires"}
TURNED = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "=="}


def mask(text):
    """The source with blanks for all that is no code, of the same length."""
    return NO_CODE.sub(lambda match: re.sub(r"[^\n]", " ", match.group(0)), text)


def replaced(pattern, table):
    """A finder of operators that stand between blanks, as the formatter leaves them."""
    def find(code, _):
        for match in re.finditer(pattern, code):
            yield match.start(1), match.end(1), table[match.group(1)]
    return find


def changed_numbers(code, _):
    for match in re.finditer(r"(?<![\w.])(\d+)(?=[UL]*\b)(?![\w]*\.|\w*\')", code):
        number = int(match.group(1))
        yield match.start(1), match.end(1), str(number + 1)
        if number > 0:
            yield match.start(1), match.end(1), str(number - 1)


def dropped_calls(code, _):
    for match in re.finditer(STATEMENT + r"((?!return\b|throw\b)[A-Za-z_][\w:.\->\[\]]*\([^;{}]*\));", code):
        yield match.start(2), match.end(2), "\n" * match.group(2).count("\n")


def dropped_assignments(code, _):
    pattern = STATEMENT + r"((?:\+\+|--)?[A-Za-z_*][\w.\->\[\]]*(?: [-+*/|&^]?= [^;{}]*|\+\+|--)?);"
    for match in re.finditer(pattern, code):
        if re.search(r" [-+*/|&^]?= |\+\+|--", match.group(2)):
            yield match.start(2), match.end(2), "\n" * match.group(2).count("\n")


def dropped_exits(code, _):
    """What leaves a function or a loop under a condition."""
    for match in re.finditer(r"\)\s*\n\s*((?:return\b[^;]*|break|continue));", code):
        yield match.start(1), match.end(1), "\n" * match.group(1).count("\n")


def turned_conditions(code, _):
    for match in re.finditer(r"\b(?:if|while) \((!)\w", code):
        yield match.start(1), match.end(1), ""
    for match in re.finditer(r"\b(?:if|while) \(()[\w.:\->]+(?:\([^()]*\))?\)", code):
        yield match.start(1), match.end(1), "!"


def arguments_at(code, opening):
    """The ranges of the arguments of a call, or nothing when they go on for long."""
    ranges, depth, begin = [], 0, opening + 1
    for i in range(opening, min(len(code), opening + 300)):
        depth += (code[i] in "([{") - (code[i] in ")]}")
        if depth == 0 or (depth == 1 and code[i] == ","):
            ranges.append((begin, i))
            begin = i + 1
        if depth == 0:
            return ranges
    return []


def exchanged_arguments(code, text):
    for match in re.finditer(r"\b(\w+)\(", code):
        ranges = arguments_at(code, match.end() - 1) if match.group(1) not in KEYWORDS else []
        for (begin, middle), (after, end) in zip(ranges, ranges[1:]):
            first, second = text[begin:middle].strip(), text[after:end].strip()
            declares = re.match(r"(?:const )?[\w:<>, ]+[&* ]+\w+$", first)
            if first and second and first != second and not declares and "\n" not in first + second:
                blanks = text[begin:middle][:-len(text[begin:middle].lstrip())]
                yield begin, end, f"{blanks}{second}, {first}"


# Each finds, in a source without texts and comments, what to replace and by what; the second argument
# is the source itself.
KINDS = {
    "comparison turned": replaced(r" (<=?|>=?|==|!=) ", TURNED),
    "and for or": replaced(r" (&&|\|\|) ", {"&&": "||", "||": "&&"}),
    "sign turned": replaced(r"[\w)\]] ([+-]) ", {"+": "-", "-": "+"}),
    "constant changed": changed_numbers,
    "true for false": replaced(r"\b(true|false)\b", {"true": "false", "false": "true"}),
    "condition turned": turned_conditions,
    "call dropped": dropped_calls,
    "assignment dropped": dropped_assignments,
    "exit dropped": dropped_exits,
    "arguments exchanged": exchanged_arguments,
}


def faults_of(file, text):
    """All faults that can be planted in a source."""
    code = mask(text)
    for kind, find in KINDS.items():
        for begin, end, replacement in find(code, text):
            yield Fault(file, code.count("\n", 0, begin) + 1, kind, begin, end, replacement)
