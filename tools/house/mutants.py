#!/usr/bin/env python3
"""Plants small faults, one at a time, and lists those that no test notices.

usage: mutants.py [N] [--seed S] [--only GLOB] [--jobs J] [--go-on]
       mutants.py --again [--jobs J]

N faults (60) at random places of src/ and hostkit/, or of the files that GLOB names, each kind of
fault as often as any other. All happens in a copy, build/mutants/tree, which each run brings up to
date: the sources stay as they are, whenever a run is stopped. What does not compile, and what
compiles to the same machine code, is no fault: it is counted apart and another is planted in its
place. A fault is noticed when a test fails, crashes, or takes four times the processor time that it
should. Tests that noticed faults before run first. With --again those that survived the last time are
planted once more, wherever they stand now; with --go-on a run that was stopped goes on where it was.

The exit status is 0 when all were noticed, 1 when some were not, 2 when nothing could be tried.
"""
import argparse
import collections
import fnmatch
import hashlib
import json
import os
import pathlib
import random
import re
import resource
import shutil
import signal
import subprocess
import sys
import time

from mutations import KINDS, faults_of

ROOT = pathlib.Path(__file__).resolve().parents[2]
HOME = ROOT / "build/mutants"
TREE, BUILD, TRIED = HOME / "tree", HOME / "build", HOME / "tried.txt"
TESTS = ["unittests", "hosttests"]
PROGRAMS = {"unittests": ["bin/unittests"],  # what each of them runs
            "hosttests": ["bin/hosttests", "bin/zunopath", "bin/zunotrace", "lib/libzunopathfinder.so"]}
SLOW = "SweepTest.*:RefusalTest.*"  # what takes most of the time, and is seldom the one that notices


def copy_tree():
    """The sources as they are now, with uncommitted changes; what did not change is not touched."""
    listed = subprocess.run(["git", "ls-files", "-co", "--exclude-standard"], cwd=ROOT, check=True,
                            capture_output=True, text=True).stdout.splitlines()
    names = {name for name in listed if (ROOT / name).is_file()}
    for old in [path for path in TREE.rglob("*") if path.is_file()]:
        if old.relative_to(TREE).as_posix() not in names:
            old.unlink()
    for name in names:
        target = TREE / name
        if not target.is_file() or target.read_bytes() != (ROOT / name).read_bytes():
            target.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy(ROOT / name, target)


def configure():
    launcher = ["-DCMAKE_CXX_COMPILER_LAUNCHER=ccache"] if shutil.which("ccache") else []
    checked = "-O1 -D_GLIBCXX_ASSERTIONS"  # an index out of range ends a test, as under the sanitizers
    return run(["cmake", "-S", TREE, "-B", BUILD, "-G", "Ninja", "-DCMAKE_BUILD_TYPE=Debug",
                f"-DCMAKE_CXX_FLAGS_DEBUG={checked}", "-DCMAKE_LINK_DEPENDS_NO_SHARED=ON", *launcher], 600)


def build(jobs, targets=TESTS):
    return run(["cmake", "--build", BUILD, "--target", *targets, "--", "-j", str(jobs)], 3600)


def run(command, limit, work=0):
    """Runs a program; returns (whether it succeeded, what it printed). Ends all that it started.

    `limit` is in seconds; a test has seconds of processor time for its `work`, too."""
    def bound():
        os.setsid()
        signal.signal(signal.SIGINT, signal.SIG_DFL)  # a shell's background commands ignore it
        if work:  # a fault may go on for ever, ask for all memory, or fill the disk
            resource.setrlimit(resource.RLIMIT_CPU, (work, work))
            resource.setrlimit(resource.RLIMIT_AS, (24 << 30, 24 << 30))
            resource.setrlimit(resource.RLIMIT_FSIZE, (8 << 30, 8 << 30))
    process = subprocess.Popen([str(word) for word in command], cwd=HOME, preexec_fn=bound, text=True,
                               errors="replace", stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    try:
        output = process.communicate(timeout=limit)[0]
    except subprocess.TimeoutExpired:
        os.killpg(process.pid, signal.SIGKILL)
        process.communicate()
        return False, "it takes too long"
    except BaseException:
        os.killpg(process.pid, signal.SIGKILL)
        raise
    return process.returncode == 0, output


def digests(names):
    return {name: hashlib.sha256((BUILD / name).read_bytes()).digest() for name in names}


def run_test(name, limit, work, tests="*"):
    """Why the test program failed: the first test that did; empty when it passed."""
    command = [BUILD / "bin" / name, "--gtest_fail_fast", "--gtest_brief=1", f"--gtest_filter={tests}"]
    passed, output = run(command, limit, work)
    if passed:
        return ""
    failed = re.findall(r"\[  FAILED  \] ([\w/]+\.[\w/]+)", output)
    return failed[0] if failed else f"{name}: {output.strip().splitlines()[-1][:90] if output.strip() else 'crash'}"


class Campaign:
    """A baseline, and faults tried against it."""

    def __init__(self, jobs):
        self.jobs = jobs
        self.limits = {}
        self.keen = {name: [] for name in TESTS}  # what noticed faults, the latest last

    def start(self):
        """Builds and tests without a fault; returns what is wrong, or nothing."""
        copy_tree()
        for done, output in (configure(), build(self.jobs)):
            if not done:
                return output[-3000:]
        for name in TESTS:
            begin, before = time.monotonic(), resource.getrusage(resource.RUSAGE_CHILDREN)
            failure = run_test(name, 1200, 1200)
            if failure:
                return f"without any fault {name} fails: {failure}"
            after = resource.getrusage(resource.RUSAGE_CHILDREN)
            work = after.ru_utime - before.ru_utime + after.ru_stime - before.ru_stime
            self.limits[name] = 20 + 8 * (time.monotonic() - begin), 5 + int(4 * work)
        self.clean = {name: digests(PROGRAMS[name]) for name in TESTS}
        return ""

    def try_fault(self, fault):
        """("uncompilable" | "same code" | "survived" | "killed", by what)"""
        file = TREE / fault.file
        whole = file.read_bytes()
        text = whole.decode()
        try:
            file.write_text(text[:fault.begin] + fault.text + text[fault.end:])
            outcome = "same code"
            for name in TESTS:  # the second is built when the first one noticed nothing
                if not build(self.jobs, [name])[0]:
                    return "uncompilable", ""
                if digests(PROGRAMS[name]) == self.clean[name]:
                    continue
                outcome = "survived"
                failure = self.find_failure(name)
                if failure:
                    return "killed", failure
            return outcome, ""
        finally:
            file.write_bytes(whole)

    def find_failure(self, name):
        """What fails: of the tests that noticed the latest other faults, or else of all."""
        keen = self.keen[name]
        for tests in [":".join(keen[-6:]), "-" + SLOW, SLOW]:
            failure = tests and run_test(name, *self.limits[name], tests)
            if failure:
                break
        if re.fullmatch(r"[\w/]+\.[\w/]+", failure):
            self.keen[name] = [other for other in keen if other != failure] + [failure]
        return failure


def describe(fault):
    text = (TREE / fault.file).read_text()
    begin = text.rfind("\n", 0, fault.begin) + 1
    end = text.find("\n", fault.end)
    before = " ".join(text[begin:end].split())
    after = " ".join((text[begin:fault.begin] + fault.text + text[fault.end:end]).split())
    return f"{fault.file}:{fault.line}: {fault.kind}\n    - {before}\n    + {after}"


def all_faults(glob="*"):
    files = sorted(path.relative_to(TREE).as_posix() for folder in ("src", "hostkit")
                   for path in (TREE / folder).rglob("*") if path.suffix in (".h", ".cpp"))
    elsewhere = ("/platform/win32/", "/platform/web/", "src/reference/")  # the last is delivered to nobody
    for name in files:
        if fnmatch.fnmatch(name, glob) and not any(folder in name for folder in elsewhere):
            yield from faults_of(name, (TREE / name).read_text())


def tried_last_time():
    """What became of each fault: ("killed", by what), ..."""
    lines = TRIED.read_text().splitlines() if TRIED.is_file() else []
    return {told: tuple(outcome) for told, outcome in map(json.loads, lines)}


def without_line(description):
    return re.sub(r":\d+:", ":", description, count=1)


def survivors_of_the_last_time():
    told = [description for description, (outcome, _) in tried_last_time().items() if outcome == "survived"]
    known = {without_line(description) for description in told}
    files = {description.partition(":")[0] for description in told}
    return [fault for fault in all_faults() if fault.file in files and without_line(describe(fault)) in known]


def choose(glob, seed):
    """Faults in random order, their kinds taking turns at random; none twice. Changes of the sources
    move no fault but their own, so that a seed stands for nearly the same ones from week to week."""
    by_kind = {kind: [] for kind in KINDS}
    seen = collections.Counter()
    for fault in all_faults(glob):
        name = without_line(describe(fault))
        seen[name] += 1
        by_kind[fault.kind].append((hashlib.sha256(f"{seed} {seen[name]} {name}".encode()).digest(), fault))
    for faults in by_kind.values():
        faults.sort(reverse=True)
    chance = random.Random(seed)
    while any(by_kind.values()):
        yield by_kind[chance.choice([kind for kind in KINDS if by_kind[kind]])].pop()[1]


def main():
    parser = argparse.ArgumentParser(prog="./run mutants", usage=__doc__.replace("%", "%%"))
    parser.add_argument("count", nargs="?", type=int, default=60)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--only", default="*")
    parser.add_argument("--again", action="store_true")
    parser.add_argument("--go-on", action="store_true")
    parser.add_argument("--jobs", type=int, default=os.cpu_count())
    arguments = parser.parse_args()
    HOME.mkdir(parents=True, exist_ok=True)
    campaign = Campaign(arguments.jobs)
    print("building and testing without faults", flush=True)
    wrong = campaign.start()
    if wrong:
        print(wrong)
        return 2
    faults = choose(arguments.only, arguments.seed)
    if arguments.again:
        faults = survivors_of_the_last_time()
        arguments.count = len(faults)
    known = tried_last_time() if arguments.go_on else {}
    counts = {"killed": 0, "survived": 0, "uncompilable": 0, "same code": 0}
    survivors, begin, before = [], time.monotonic(), len(known)
    with TRIED.open("a" if arguments.go_on else "w") as journal:
        for fault in faults:
            tried = counts["killed"] + counts["survived"]
            if tried == arguments.count:
                break
            told = describe(fault)
            outcome, by = known.get(told) or campaign.try_fault(fault)
            counts[outcome] += 1
            if outcome == "survived":
                survivors.append(told)
            if told in known:
                continue
            print(json.dumps([told, (outcome, by)]), file=journal, flush=True)
            if outcome in ("killed", "survived"):
                tried += 1
                left = (time.monotonic() - begin) / (sum(counts.values()) - before) * (arguments.count - tried) / 60
                print(f"[{tried}/{arguments.count}, {left:.0f} min left] {fault.file}:{fault.line}: {fault.kind}: "
                      f"{outcome}{' by ' + by if by else ''}", flush=True)
            if outcome == "survived":
                print(told, flush=True)
    print("\n".join(["", *survivors]))
    which = "survivors of the last time" if arguments.again else f"seed {arguments.seed}"
    print(f"{which}: {counts['killed']} of {counts['killed'] + counts['survived']} faults were "
          f"noticed; beside them {counts['uncompilable']} did not compile and {counts['same code']} gave the "
          "same machine code")
    if counts["killed"] + counts["survived"] == 0:
        return 2
    return 1 if survivors else 0


if __name__ == "__main__":
    sys.exit(main())
