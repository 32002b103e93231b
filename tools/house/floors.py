#!/usr/bin/env python3
"""Holds the includes to the floors of docs/architecture.md: every arrow points down.

usage: floors.py [--list]     --list prints every arrow between folders, with its number of includes

A source may include what stands on its own floor and on those below. No file may include itself
by way of others. The exit status is 1 when an include points up, closes a ring, or a file stands
on no floor.
"""
import collections
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
MAP = ROOT / "docs/architecture.md"
INCLUDE = re.compile(r'^\s*#\s*include\s*"([^"]+)"', re.MULTILINE)


def read_floors():
    """The floors, highest first, each a list of folders and files: the table below "## Floors"."""
    section = MAP.read_text().split("\n## Floors\n")[1].split("\n## ")[0]
    rows = [line for line in section.splitlines() if line.startswith("| ")]
    floors = [re.findall(r"`([^`]+)`", row.split("|")[2]) for row in rows]
    return [floor for floor in floors if floor]


def list_sources():
    command = ["git", "ls-files", "-co", "--exclude-standard", "--", "*.h", "*.cpp", "*.c"]
    names = subprocess.run(command, cwd=ROOT, check=True, capture_output=True, text=True).stdout
    return [name for name in names.splitlines() if (ROOT / name).is_file()]


def find_place(name, places):
    """The longest place that the file lies in. A file's place is named without its ending."""
    stem = name.rsplit(".", 1)[0]
    fitting = [place for place in places if name.startswith(place + "/") or stem == place]
    return max(fitting, key=len, default=None)


def resolve(source, included, known):
    """The file of an include: below src/, at the top, or beside the source."""
    beside = (pathlib.PurePosixPath(source).parent / included).as_posix()
    return next((name for name in (f"src/{included}", included, beside) if name in known), None)


def find_ring(graph):
    """One ring of files that include each other, or nothing."""
    done, path = set(), []

    def visit(name):
        if name in path:
            return path[path.index(name):] + [name]
        if name in done:
            return None
        path.append(name)
        ring = next(filter(None, map(visit, graph[name])), None)
        path.pop()
        done.add(name)
        return ring

    return next(filter(None, map(visit, list(graph))), None)


def main():
    floors = read_floors()
    height = {place: -i for i, floor in enumerate(floors) for place in floor}
    sources = list_sources()
    known, findings = set(sources), []
    place_of = {name: find_place(name, height) for name in sources}
    findings += [f"{name} stands on no floor" for name, place in place_of.items() if place is None]
    graph, arrows = collections.defaultdict(list), collections.Counter()
    for name in sources:
        for included in INCLUDE.findall((ROOT / name).read_text(errors="replace")):
            target = resolve(name, included, known)
            if target is None or place_of[name] is None or place_of[target] is None:
                continue
            graph[name].append(target)
            arrows[place_of[name], place_of[target]] += place_of[name] != place_of[target]
            if height[place_of[target]] > height[place_of[name]]:
                findings.append(f"{name} includes {target}: {place_of[name]} stands below "
                                f"{place_of[target]}")
    ring = find_ring(graph)
    if ring:
        findings.append("files include each other: " + " -> ".join(ring))
    if "--list" in sys.argv:
        for (above, below), count in sorted(arrows.items()):
            if count:
                print(f"{above} -> {below}: {count}")
    print("\n".join(findings + [f"floors: {len(sources)} files, {sum(arrows.values())} includes "
                                f"between folders, {len(findings)} against the order"]))
    return 1 if findings else 0


if __name__ == "__main__":
    sys.exit(main())
