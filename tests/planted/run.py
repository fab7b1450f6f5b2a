#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Plants the faults of faults.txt one at a time and prints those that no test notices.

    run.py [-j N] [-v] [PATTERN]...

Only faults whose file or text contains one of the patterns. The work is done in scratch copies of the
tree under build/planted, one for each of the N that run side by side. A fault is caught by the first
program that fails, crashes or does not end in time; which it was is kept and tried first the next
time. Exits with 1 when a fault survives, is not found in its file or does not compile.
"""

import argparse
import concurrent.futures
import dataclasses
import json
import os
import pathlib
import queue
import re
import resource
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
WORK = ROOT / "build" / "planted"
KILLERS = WORK / "killers.json"
SECONDS = 60
UNIT = {"plugin": "plugin_tests", "host": "host_tests"}
PROGRAMS = ["swfli", "wfsim", "wattforge_vpi"]
# From the quickest to the slowest.
SCRIPTS = ["golden", "rtl", "order", "failures", "command_line", "icarus", "ghdl", "ghw", "terminal",
           "replay"]


@dataclasses.dataclass
class Fault:
    place: str  # a file or a folder
    anchor: str  # the text is the first one behind this
    old: str
    new: str
    line: int  # in the table
    reason: str = ""  # why it can not be noticed
    file: pathlib.Path = None  # where it is planted; None when there is not one place for it
    text: str = ""  # the file with it
    original: str = ""

    def __str__(self):
        return f"{self.place}: {self.anchor + ' :: ' if self.anchor else ''}{self.old} => {self.new}"

    def find_place(self):
        place = ROOT / self.place
        files = [place] if place.is_file() else sorted(place.glob("**/*.cpp"))
        mark = self.anchor or self.old
        found = [(file, file.read_text()) for file in files if mark in file.read_text()]
        if len(found) != 1 or found[0][1].count(mark) != 1:
            return
        file, source = found[0]
        at = source.find(self.old, source.find(mark))
        if at >= 0:
            self.file, self.original = file.relative_to(ROOT), source
            self.text = source[:at] + self.new + source[at + len(self.old):]


def read_table():
    faults, place = [], None
    for number, line in enumerate((ROOT / "tests/planted/faults.txt").read_text().splitlines(), 1):
        if not line or line.startswith("#"):
            continue
        if line.startswith("equivalent: "):
            faults[-1].reason = line.split(": ", 1)[1]
        elif " => " not in line and not line.endswith(" =>"):
            place = line
        else:
            old, new = re.split(r" =>(?: |$)", line, maxsplit=1)
            anchor, _, old = old.rpartition(" :: ")
            texts = (text.replace("\\n", "\n") for text in (anchor, old, new))
            faults.append(Fault(place, *texts, line=number))
    return faults


class Scratch:
    """A copy of the tree with its build, in which one fault at a time is planted."""

    def __init__(self, number):
        # The build stands to the sources as build/plain does, so that the compiler cache knows it.
        self.tree = WORK / str(number)
        self.build = self.tree / "build" / "plain"
        self.environment = os.environ | {"WATTFORGE_BUILD": str(self.build), "PLANTED": "-",
                                         "MALLOC_PERTURB_": "165", "PYTHONDONTWRITEBYTECODE": "1"}
        self.copy_tree()

    def make(self, sides):
        self.must("cmake", "-G", "Ninja", "-S", self.tree, "-B", self.build, "-DWATTFORGE_BENCH=OFF",
                  f"-DCMAKE_CXX_COMPILER_LAUNCHER={ROOT}/tests/planted/compile.sh",
                  "-DCMAKE_EXE_LINKER_FLAGS=-fuse-ld=gold -Wl,--strip-debug",
                  "-DCMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE=PRE_TEST")
        for side in sides:
            self.must("ninja", "-C", self.build, UNIT[side])

    def copy_tree(self):
        """What is the same already stays as it is, so that it is not built again."""
        listed = subprocess.run(["git", "ls-files", "-co", "--exclude-standard"], cwd=ROOT, text=True,
                                check=True, capture_output=True).stdout.split("\n")
        names = {name for name in listed if name and (ROOT / name).is_file()}
        if self.tree.exists():
            for old in self.tree.rglob("*"):
                name = str(old.relative_to(self.tree))
                if old.is_file() and name not in names and not name.startswith("build/"):
                    old.unlink()
        for name in names:
            target = self.tree / name
            if not target.exists() or target.read_bytes() != (ROOT / name).read_bytes():
                target.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(ROOT / name, target)

    def must(self, *command):
        done = subprocess.run(command, text=True, capture_output=True, env=self.environment)
        if done.returncode != 0:
            sys.exit(f"planted: {command[0]} failed:\n{done.stdout}{done.stderr}")

    def passes(self, command):
        """Whether the program ends well in time, and what it said."""
        limit = lambda: resource.setrlimit(resource.RLIMIT_AS, (8 << 30, 8 << 30))
        with subprocess.Popen(command, cwd=self.build, text=True, errors="replace",
                              env=self.environment, preexec_fn=limit, start_new_session=True,
                              stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                              stderr=subprocess.STDOUT) as process:
            try:
                output = process.communicate(timeout=SECONDS)[0]
            except subprocess.TimeoutExpired:
                os.killpg(process.pid, 9)
                return False, process.communicate()[0] or ""
        return process.returncode == 0, output

    def unit_killer(self, side, only="*"):
        program = self.build / "tests" / side / UNIT[side]
        passed, output = self.passes([program, "--gtest_fail_fast", "--gtest_brief=0",
                                      f"--gtest_filter={only}"])
        if passed:
            return None
        names = re.findall(r"^\[  FAILED  \] ([\w/.]+\w)", output, re.M) or \
            re.findall(r"^\[ RUN      \] ([\w/.]+)", output, re.M)[-1:]
        return f"{side}:{names[0]}" if names else f"{side}:*"

    def script_killer(self, name):
        passed, _ = self.passes([sys.executable, self.tree / f"tests/system/test_{name}.py", "-f"])
        return None if passed else f"system.{name}"

    def ninja(self, *targets):
        done = subprocess.run(["ninja", "-C", self.build, *targets], text=True, capture_output=True,
                              env=self.environment)
        if done.returncode != 0:
            print(done.stdout[-2000:])
        return done.returncode == 0

    def first_to_notice(self, side, last_time):
        """The unit tests first; the programs that the scripts run are built for those alone."""
        by_script = last_time.startswith("system.")
        if not by_script:
            if not self.ninja(UNIT[side]):
                return ""
            found = last_time and self.unit_killer(*last_time.split(":")) or self.unit_killer(side)
            if found:
                return found
        if not self.ninja(*PROGRAMS):
            return ""
        scripts = sorted(SCRIPTS, key=lambda name: f"system.{name}" != last_time)
        found = next(filter(None, map(self.script_killer, scripts)), None)
        return found or (self.first_to_notice(side, "") if by_script else None)

    def killer_of(self, fault, last_time):
        """The test that notices the fault, None when all pass, "" when it can not be planted."""
        if fault.file is None:
            return ""
        target = self.tree / fault.file
        target.write_text(fault.text)
        self.environment["PLANTED"] = target.stem
        try:
            return self.first_to_notice(fault.place.split("/")[0], last_time)
        finally:
            target.write_text(fault.original)
            self.environment["PLANTED"] = "-"


def run(faults, jobs, verbose):
    killers = json.loads(KILLERS.read_text()) if KILLERS.exists() else {}
    idle = queue.SimpleQueue()
    for scratch in [Scratch(number) for number in range(jobs)]:
        scratch.make({fault.place.split("/")[0] for fault in faults})
        idle.put(scratch)

    def plant(fault):
        scratch = idle.get()
        try:
            return fault, scratch.killer_of(fault, killers.get(str(fault), ""))
        finally:
            idle.put(scratch)

    bad = equivalent = 0
    with concurrent.futures.ThreadPoolExecutor(jobs) as pool:
        for fault, killer in pool.map(plant, faults):
            if killer:
                killers[str(fault)] = killer
                KILLERS.write_text(json.dumps(killers, indent=0))
            if killer and fault.reason:
                print(f"caught by {killer}, although named equivalent: {fault}", flush=True)
            elif killer and verbose:
                print(f"{killer}: {fault}", flush=True)
            elif killer is None and fault.reason:
                equivalent += 1
            elif not killer:
                bad += 1
                print("SURVIVES" if killer is None else "NOT PLANTED",
                      f"(faults.txt:{fault.line}) {fault}", flush=True)
    print(f"{len(faults)} faults, {len(faults) - bad - equivalent} caught, {bad} not, "
          f"{equivalent} equivalent")
    return bad == 0


def main():
    parser = argparse.ArgumentParser(prog="./run planted")
    parser.add_argument("-j", type=int, default=1, metavar="N", help="how many side by side")
    parser.add_argument("-v", action="store_true", help="say which test caught each")
    parser.add_argument("pattern", nargs="*")
    options = parser.parse_args()
    faults = [fault for fault in read_table()
              if not options.pattern or any(text in str(fault) for text in options.pattern)]
    for fault in faults:
        fault.find_place()
    WORK.mkdir(parents=True, exist_ok=True)
    return 0 if run(faults, options.j, options.v) else 1


if __name__ == "__main__":
    sys.exit(main())
