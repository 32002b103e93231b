#!/usr/bin/env python3
"""Compares the texts of reports, exceptions and log messages with docs/errors.md, both ways.

usage: errortexts.py [--list]     --list prints what the sources say, by kind, with the places

In the sources a text is put together of literals and of what varies; in the document it is code
with what varies in italics: `ID '`_id_`' points to an invalid item`. Both become one pattern, with
a * for what varies. The exit status is 1 when one side has a pattern that the other lacks.
"""
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
DOCUMENT = ROOT / "docs/errors.md"
FOLDERS = ["src", "hostkit"]

# Which argument of an exception's constructor is its text; the first one when it is not listed.
TEXT_ARGUMENT = {"Argument": 1, "File": 2, "Directory": 1}
# Functions that are given a text, or pieces of one, and make an error of it: what they make, the
# text's arguments (ALL: all in their order), and below which folder.
ALL = object()
CARRIERS = {
    "ZUNO_REPORT": ("report", [1], ""),
    "ZUNO_REPORT_AT": ("report", [1], ""),
    "ZUNO_CHECK": ("report", [1], ""),
    "ZUNO_CHECK_AS": ("report", [2], ""),
    "found": ("finding", ALL, "src/navmesh/mesh"),
    "fail": ("XMLParserException", [0], "src/common/parser/xml/"),
    "failAtByte": ("XMLParserException", [0, "*", 1], "src/common/parser/xml/"),
    "throwCorrupted": ("SerializeException", ["The stream is corrupted. ", 0], "src/common/serialize/"),
    "requireOpen": ("InvalidStateException", [0], "src/common/"),
    "requireLength": ("ArgumentOutOfRangeException", [3], "src/common/serialize/"),
    "require": ("ArgumentException", [1], "src/common/serialize/"),
    "failAt": ("RecordingError", ["recording, byte *: ", 1], "hostkit/recording"),
    "log->log": ("log", [1], "src/pathfinder/"),
}
# What the sources of carriers that put words before a text look like.
WITH_HOLES = {(kind, layout[0] + "*") for kind, layout, _ in CARRIERS.values()
              if layout is not ALL and isinstance(layout[0], str)}
# Functions that hand on a text which a carrier has put together.
RELAYS = {"findDefects", "Session", "start"}
# The text of what was found or caught before; it is listed where it was made.
HANDED_ON = re.compile(r"\w+\.(?:mText|what\(\))")
STRING = r'"(?:[^"\\\n]|\\.)*"'
LITERAL = re.compile(STRING + r"|'(?:[^'\\\n]|\\.)+'")


def strip_comments(text):
    """The source without comments and macro definitions; line feeds stay."""
    def keep_lines(match):
        found = match.group(0)
        return found if found[0] in "\"'" else "\n" * found.count("\n")
    text = re.sub(LITERAL.pattern + r"|//[^\n]*|/\*.*?\*/", keep_lines, text, flags=re.DOTALL)
    return re.sub(r"^#define(?:[^\n]*\\\n)*[^\n]*", keep_lines, text, flags=re.MULTILINE)


def split(text, separators):
    """Cuts an expression at separators outside brackets and literals."""
    parts, depth, begin, i = [], 0, 0, 0
    while i < len(text):
        literal = LITERAL.match(text, i)
        if literal:
            i = literal.end()
            continue
        separator = next((s for s in separators if text.startswith(s, i)), None)
        if depth == 0 and separator:
            parts.append(text[begin:i].strip())
            i = begin = i + len(separator)
            continue
        depth += (text[i] in "([{") - (text[i] in ")]}")
        i += 1
    return [part for part in parts + [text[begin:].strip()] if part]


def arguments_at(text, opening):
    """The arguments of a call whose bracket stands there."""
    depth, i = 0, opening
    while True:
        literal = LITERAL.match(text, i)
        if literal:
            i = literal.end()
            continue
        depth += (text[i] in "([{") - (text[i] in ")]}")
        if depth == 0:
            return split(text[opening + 1:i], [","])
        i += 1


def value_of(literals):
    quoted = re.findall(r"(%s)|'((?:[^'\\]|\\.)+)'" % STRING, literals)
    return "".join((string[1:-1] or char) if string else char
                   for string, char in quoted).replace('\\"', '"').replace("\\'", "'")


def pattern_of(expression, source, place):
    """The pattern of an expression; a name stands for what it was last set to before `place`."""
    pattern = ""
    for term in split(expression, ["+", "<<"]):
        term = re.sub(r"\.getConstCharPtr\(\)$|\.c_str\(\)$", "", term)
        wrapped = re.fullmatch(r"(?:Common::|std::)?[Ss]tring\((%s)(?:, [\w:]+\(\))?\)" % STRING, term)
        term = wrapped.group(1) if wrapped else term
        if re.fullmatch(r"(?:(?:%s)\s*)+" % LITERAL.pattern, term):
            pattern += value_of(term)
            continue
        set_before = None
        if re.fullmatch(r"\w+", term):
            set_before = list(re.finditer(r"(?:String|char\*?|auto) (?:const )?%s(?:\[\])? =\s*([^;]*);" % term,
                                          source[:place]))
        if set_before:
            pattern += pattern_of(set_before[-1].group(1), source, set_before[-1].start())
        else:
            pattern += "*"
    return re.sub(r"\*+", "*", pattern)


def enclosing_function(source, place):
    heads = re.findall(r"(\w+)(?: = \[[^\]]*\])?\(([^;{}]*)\)[^;{}()]*\{", source[:place])
    heads = [name for name, _ in heads if name not in ("if", "for", "while", "switch", "catch")]
    return heads[-1] if heads else ""


def sites(name, source):
    """Each error in a source: its place, its kind, and the expressions of its text."""
    for call in re.finditer(r"\bthrow (?:new )?([\w:]+)(\()", source):
        kind = call.group(1).removeprefix("Common::").split("::")
        kind = "::".join(kind) if kind[0] == "std" else kind[-1]
        arguments = arguments_at(source, call.start(2))
        prefix = next((p for p in TEXT_ARGUMENT if kind.startswith(p)), None)
        index = TEXT_ARGUMENT.get(prefix, 0)
        if len(arguments) > index:
            yield call.start(), kind, [arguments[index]]
    for call in re.finditer(r"(?<![\w:~])(?:\w+\.)?(log->log|\w+)(\()", source):
        kind, layout, folder = CARRIERS.get(call.group(1), (None, None, None))
        if kind is None or not name.startswith(folder):
            continue
        arguments = arguments_at(source, call.start(2))
        if not arguments or any(re.match(r"(const )?(bool|char|std::size_t|Pieces|String)\b[ *&.]", a) for a in arguments):
            continue # its declaration
        layout = range(len(arguments)) if layout is ALL else layout
        yield call.start(), kind, [part if part == "*" else f'"{part}"' if isinstance(part, str)
                                   else arguments[part] for part in layout]


def read_sources(folders):
    """The patterns of all sources with the places where they stand, and what could not be read."""
    listed = subprocess.run(["git", "ls-files", "-co", "--exclude-standard", "--", *folders], cwd=ROOT,
                            check=True, capture_output=True, text=True).stdout.split()
    found, unread = {}, []
    for name in [n for n in listed if n.endswith((".h", ".cpp")) and (ROOT / n).is_file()]:
        source = strip_comments((ROOT / name).read_text())
        for place, kind, expressions in sites(name, source):
            where = f"{name}:{source.count(chr(10), 0, place) + 1}"
            pattern = re.sub(r"\*+", "*", "".join(pattern_of(e, source, place) for e in expressions))
            if (kind, pattern) in WITH_HOLES:
                continue # the carrier itself
            if pattern.strip("*"):
                found.setdefault((kind, pattern), []).append(where)
            elif not (all(map(HANDED_ON.fullmatch, expressions)) or
                      enclosing_function(source, place) in {*CARRIERS, *RELAYS}):
                unread.append(f"{where}: {enclosing_function(source, place)} passes on a text of its "
                              "caller's: list it among the CARRIERS of tools/house/errortexts.py")
    return found, unread


def read_document():
    """The patterns of all rows of tables that begin with the columns "kind" and "text"."""
    found, is_table = {}, False
    for number, line in enumerate(DOCUMENT.read_text().splitlines(), 1):
        cells = [cell.strip() for cell in line.split("|")]
        if not line.startswith("|"):
            is_table = False
        elif cells[1:3] == ["kind", "text"]:
            is_table = True
        elif is_table and not cells[1].startswith("---"):
            for text in cells[2].split("<br>"):
                pieces = re.findall(r"`` (.+?) ``|`([^`]+)`|(_[^_]+_)", text)
                pattern = "".join("*" if varies else double or code for double, code, varies in pieces)
                found[cells[1].strip("`"), pattern] = f"{DOCUMENT.relative_to(ROOT)}:{number}"
    return found


def main():
    said, unread = read_sources([folder for folder in FOLDERS if (ROOT / folder).is_dir()])
    if "--list" in sys.argv:
        for (kind, pattern), places in sorted(said.items()):
            print(f"{kind}: {pattern}    ({', '.join(places)})")
    written = read_document()
    findings = unread
    findings += [f"docs/errors.md misses the {kind} of {places[0]}: {pattern}"
                 for (kind, pattern), places in sorted(said.items()) if (kind, pattern) not in written]
    findings += [f"{place}: no source has this {kind}: {pattern}"
                 for (kind, pattern), place in written.items() if (kind, pattern) not in said]
    print("\n".join(findings + [f"errors: {len(said)} texts in the sources, {len(written)} in "
                                f"docs/errors.md, {len(findings)} differences"]))
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
