#!/usr/bin/env python3
"""Lists the public interface: a line for each class, function, value and macro of the installed
headers, as doxygen's XML has them.

usage: publicinterface.py XML_FOLDER LIST [--bless]

Compares the list with the file LIST and exits with 1 when they differ; with --bless writes it. So
every change of the interface shows in the history of that file.
"""
import difflib
import pathlib
import sys
import xml.etree.ElementTree as ET

KINDS = {"function", "variable", "enum", "typedef", "define"}
SCOPES = {"class", "struct", "namespace", "file"}


def text(element):
    return " ".join("".join(element.itertext()).split()) if element is not None else ""


def describe(member, scope):
    """The lines of one member; none for what only the headers themselves use."""
    if member.get("kind") not in KINDS or member.get("prot") == "private":
        return []
    name = "::".join(part for part in (scope, text(member.find("name"))) if part)
    kind = member.get("kind")
    if kind == "enum":
        values = [(text(value.find("name")), text(value.find("initializer")))
                  for value in member.findall("enumvalue")]
        if not text(member.find("name")) or name.startswith("@"):  # C's constants
            return [f"enumerator {value} {number}".rstrip() for value, number in values]
        return [f"enum {name}"] + [f"enumerator {name}::{value} {number}".rstrip() for value, number in values]
    if kind == "define":
        parameters = [text(p.find("defname")) for p in member.findall("param")]
        return [f"macro {name}" + (f"({', '.join(parameters)})" if parameters else "")]
    marks = [mark for mark in ("static", "explicit") if member.get(mark) == "yes"]
    if member.get("virt") in ("virtual", "pure-virtual"):
        marks.append(member.get("virt"))
    if member.get("prot") == "protected":
        marks.append("protected")
    declared = " ".join(part for part in (*marks, text(member.find("type")), name) if part)
    return [f"{kind} {declared}{text(member.find('argsstring'))}"]


def interface(folder):
    lines = set()
    for path in sorted(folder.glob("*.xml")):
        for compound in ET.parse(path).getroot().findall("compounddef"):
            if compound.get("kind") not in SCOPES or compound.get("prot") == "private":
                continue
            is_file = compound.get("kind") == "file"
            # what a header declares outside all namespaces is C's; else it is listed by its namespace
            is_whole = not is_file or compound.find("innernamespace") is None
            scope = "" if is_file else text(compound.find("compoundname"))
            if compound.get("kind") in ("class", "struct"):
                bases = ", ".join(text(base) for base in compound.findall("basecompoundref"))
                lines.add(f"{compound.get('kind')} {scope}" + (f" : {bases}" if bases else ""))
            for member in compound.iter("memberdef"):
                if is_whole or member.get("kind") == "define":
                    lines.update(describe(member, scope))
    return sorted(lines)


def main():
    folder, listed = pathlib.Path(sys.argv[1]), pathlib.Path(sys.argv[2])
    found = interface(folder)
    if "--bless" in sys.argv[3:]:
        listed.write_text("\n".join(found) + "\n", encoding="utf-8")
        return 0
    known = listed.read_text(encoding="utf-8").splitlines() if listed.exists() else []
    changes = [line for line in difflib.unified_diff(known, found, str(listed), "the headers", "", "", 0, "")]
    print("\n".join(changes) if changes else f"{listed}: {len(found)} lines, as the headers have them")
    if changes:
        print("the public interface changed; when that is meant: ./run reference --bless")
    return 1 if changes else 0


if __name__ == "__main__":
    sys.exit(main())
