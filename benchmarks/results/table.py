"""Prints a file of `./run bench --peers` as the table of docs/performance.md: table.py FILE"""
import re
import sys

ROW = re.compile(r"(?P<what>.+?)  +(?P<figure>[\d.]+) +(?P<goal>[\d.]+) .* (?P<holds>yes|NO)$")


def rows(lines):
    """What was measured, its figures, the goal, and what was said of a missed one."""
    found = []
    for line in lines:
        row = ROW.match(line)
        reason = re.match(r" +because: (.*)", line)
        if row and row["what"].strip() == "query by query":
            found[-1][1].append(row)
        elif row:
            found.append((row["what"], [row], []))
        elif reason:
            found[-1][2].append(reason[1])
    return found


def main():
    with open(sys.argv[1], encoding="utf-8") as file:
        print("| what | measured | goal | missed |\n|---|---|---|---|")
        for what, figures, reasons in rows(file):
            measured = ", ".join(row["figure"] for row in figures)
            is_missed = any(row["holds"] == "NO" for row in figures)
            missed = reasons[-1] if reasons else "yes" if is_missed else ""
            print(f"| {what} | {measured} | {figures[0]['goal']} | {missed} |")


if __name__ == "__main__":
    main()
