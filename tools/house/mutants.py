#!/usr/bin/env python3
"""Plants small faults, one at a time, and lists those that no test notices.

usage: mutants.py [N] [--seed S] [--only GLOB] [--jobs J]
       mutants.py --again [--jobs J]

N faults (60) at random places of src/ and hostkit/, or of the files that GLOB names, each kind of
fault as often as any other. All happens in a copy, build/mutants/tree, which each run brings up to
date: the sources stay as they are, whenever a run is stopped. What does not compile, and what
compiles to the same machine code, is no fault: it is counted apart and another is planted in its
place. A fault is noticed when a test fails, crashes, or takes eight times as long as it should.
With --again those that survived the last time are planted once more, wherever they stand now.

The exit status is 0 when all were noticed, 1 when some were not, 2 when nothing could be tried.
"""
import argparse
import fnmatch
import hashlib
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
TREE, BUILD, SURVIVORS = HOME / "tree", HOME / "build", HOME / "survivors.txt"
TESTS = ["unittests", "hosttests"]
PROGRAMS = {"unittests": ["bin/unittests"],  # what each of them runs
            "hosttests": ["bin/hosttests", "bin/zunopath", "bin/zunotrace", "lib/libzunopathfinder.so"]}


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
                f"-DCMAKE_CXX_FLAGS_DEBUG={checked}", *launcher], 600)


def build(jobs, targets=TESTS):
    return run(["cmake", "--build", BUILD, "--target", *targets, "--", "-j", str(jobs)], 3600)


def run(command, limit, tests=False):
    """Runs a program; returns (whether it succeeded, what it printed). Ends all that it started."""
    def bound():
        os.setsid()
        signal.signal(signal.SIGINT, signal.SIG_DFL)  # a shell's background commands ignore it
        if tests:  # a fault may ask for all memory, or fill the disk
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


def run_test(name, limit):
    """Why the test program failed: the first test that did; empty when it passed."""
    passed, output = run([BUILD / "bin" / name, "--gtest_fail_fast", "--gtest_brief=1"], limit, tests=True)
    if passed:
        return ""
    failed = re.findall(r"\[  FAILED  \] ([\w/]+\.[\w/]+)", output)
    return failed[0] if failed else f"{name}: {output.strip().splitlines()[-1] if output.strip() else 'crash'}"


class Campaign:
    """A baseline, and faults tried against it."""

    def __init__(self, jobs):
        self.jobs = jobs
        self.limits = {}

    def start(self):
        """Builds and tests without a fault; returns what is wrong, or nothing."""
        copy_tree()
        for done, output in (configure(), build(self.jobs)):
            if not done:
                return output[-3000:]
        for name in TESTS:
            begin = time.monotonic()
            failure = run_test(name, 1200)
            if failure:
                return f"without any fault {name} fails: {failure}"
            self.limits[name] = 20 + 8 * (time.monotonic() - begin)
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
                failure = run_test(name, self.limits[name])
                if failure:
                    return "killed", failure
            return outcome, ""
        finally:
            file.write_bytes(whole)


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


def survivors_of_the_last_time():
    def without_line(description):
        return re.sub(r":\d+:", ":", description.strip(), count=1)
    told = re.split(r"\n(?=\S)", SURVIVORS.read_text()) if SURVIVORS.is_file() else []
    known = {without_line(description) for description in told}
    files = {description.partition(":")[0] for description in told}
    return [fault for fault in all_faults() if fault.file in files and without_line(describe(fault)) in known]


def choose(glob, seed):
    """Faults in random order, their kinds taking turns at random; none twice."""
    by_kind = {kind: [] for kind in KINDS}
    for fault in all_faults(glob):
        by_kind[fault.kind].append(fault)
    chance = random.Random(seed)
    while any(by_kind.values()):
        faults = by_kind[chance.choice([kind for kind in KINDS if by_kind[kind]])]
        yield faults.pop(chance.randrange(len(faults)))


def main():
    parser = argparse.ArgumentParser(prog="./run mutants", usage=__doc__.replace("%", "%%"))
    parser.add_argument("count", nargs="?", type=int, default=60)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--only", default="*")
    parser.add_argument("--again", action="store_true")
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
    counts = {"killed": 0, "survived": 0, "uncompilable": 0, "same code": 0}
    survivors, begin = [], time.monotonic()
    for fault in faults:
        tried = counts["killed"] + counts["survived"]
        if tried == arguments.count:
            break
        outcome, by = campaign.try_fault(fault)
        counts[outcome] += 1
        if outcome in ("killed", "survived"):
            tried += 1
            left = (time.monotonic() - begin) / tried * (arguments.count - tried) / 60
            print(f"[{tried}/{arguments.count}, {left:.0f} min left] {fault.file}:{fault.line}: {fault.kind}: "
                  f"{outcome}{' by ' + by if by else ''}", flush=True)
        if outcome == "survived":
            survivors.append(describe(fault))
            print(survivors[-1], flush=True)
    SURVIVORS.write_text("\n".join([*survivors, ""]))
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
