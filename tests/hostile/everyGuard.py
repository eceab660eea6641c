#!/usr/bin/env python3
"""Sees that every check of what comes from outside is needed.

A build with ORBSEQ_SWITCHABLE_GUARDS can take one check away (common/guards.h). guards.txt names
for each check a test; this program runs that test with the check and without it, and wants it to
pass and to fail. A test that crashes, or takes more memory or time than any test may, fails too.

  everyGuard.py check BUILD [NAME ...]  the table against the sources, and every row of it (or some)
  everyGuard.py find BUILD              makes the table anew, from what the tests trip over
"""

import collections
import concurrent.futures
import os
import pathlib
import re
import resource
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
TABLE = pathlib.Path(__file__).with_name("guards.txt")
PROGRAMS = ("hostile_tests", "hostile_data_tests", "hostile_files_tests", "host_tests", "io_tests",
            "lattice_tests", "common_tests", "sequence_tests", "engine_tests", "cli_tests", "xml_tests")
MOST_BYTES = 8 << 30
MOST_SECONDS = 60  # of the tests of a program, with every check in place
HANG_SECONDS = 20  # of one without its check, which some wait for for ever
GUARD = re.compile(r'\bguarded\(\s*"([^"]*)"\s*([,)])')
ATTRIBUTE = re.compile(r'\.(?:integer|text)\(u"(\w+)"')
HEAD = """# Every check of what comes from outside, and a test that fails without it:
# name of the check, program, test. everyGuard.py makes this table and runs it.
"""

Row = collections.namedtuple("Row", "guard program test")


def limit():
    resource.setrlimit(resource.RLIMIT_AS, (MOST_BYTES, MOST_BYTES))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def run(build, program, tests, seconds=MOST_SECONDS, **environment):
    """Whether the tests of that program pass; None when they take longer."""
    try:
        done = subprocess.run(
            [build / "tests" / program, "--gtest_filter=" + ":".join(tests), "--gtest_brief=1"],
            env={**os.environ, **environment}, preexec_fn=limit, timeout=seconds,
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    except subprocess.TimeoutExpired:
        return None
    # A program that finds no test says so and is content.
    return done.returncode == 0 and b"0 tests from 0 test suites" not in done.stdout


def rows():
    lines = TABLE.read_text().splitlines()
    return [Row(*line.split("\t")) for line in lines if line and not line.startswith("#")]


def guards_in_sources():
    """Whole names, and the beginnings of those that are put together; an attribute that is read
    must be there, so that it has a whole name."""
    whole, beginnings = set(), set()
    for path in ROOT.rglob("*.cpp"):
        if path.relative_to(ROOT).parts[0] in ("out", "tests", "build"):
            continue
        text = path.read_text()
        for name, end in GUARD.findall(text):
            (whole if end == ")" else beginnings).add(name)
        if path.parent.name in ("document", "scoring"):
            whole.update(f"document.missing {name}" for name in ATTRIBUTE.findall(text))
    return whole, beginnings


def faults_of_table(table):
    whole, beginnings = guards_in_sources()
    if len(whole) < 100:
        yield "the sources hold next to no checks: is the folder right?"
    named = collections.Counter(row.guard for row in table)
    for guard, count in named.items():
        if count > 1:
            yield f"{guard}: stands twice in the table"
        if guard not in whole and not any(guard.startswith(begin) for begin in beginnings):
            yield f"{guard}: no check of the sources has this name"
    for guard in whole - set(named):
        yield f"{guard}: has no row in the table"
    for begin in beginnings:
        if not any(guard.startswith(begin) for guard in named):
            yield f"{begin}...: has no row in the table"


def check(build, names):
    table = rows()
    faults = list(faults_of_table(table)) if not names else []
    chosen = [row for row in table if not names or row.guard in names]
    for name in set(names) - {row.guard for row in chosen}:
        # A name of no check takes nothing away, so that its test passes: the harness must tell.
        chosen.append(Row(name, table[0].program, table[0].test))
    by_program = collections.defaultdict(list)
    for row in chosen:
        by_program[row.program].append(row.test)
    for program, tests in by_program.items():
        missing = set(tests) - set(tests_of(build, program))
        faults += [f"{program}: has no test {test}" for test in sorted(missing)]
        if not run(build, program, sorted(set(tests))):
            faults.append(f"{program}: a test of the table fails with every check in place")

    def needed(row):
        passes = run(build, row.program, [row.test], HANG_SECONDS, ORBSEQ_WITHOUT_GUARD=row.guard)
        if passes is None:  # it hangs for want of the check if with it the time is enough
            return run(build, row.program, [row.test], HANG_SECONDS)
        return not passes

    with concurrent.futures.ThreadPoolExecutor(2) as pool:
        for row, is_needed in zip(chosen, pool.map(needed, chosen)):
            if not is_needed:
                faults.append(f"{row.guard}: is not needed: {row.program} {row.test} passes "
                              "without, or takes long with it")
    print("\n".join(faults) if faults else f"{len(chosen)} checks, each needed by its test")
    return 1 if faults else 0


def tests_of(build, program):
    listed = subprocess.run([build / "tests" / program, "--gtest_list_tests"], text=True,
                            stdout=subprocess.PIPE, check=True).stdout
    suite = ""
    for line in listed.splitlines():
        name = line.split("#")[0].rstrip()
        if not line.startswith(" "):
            suite = name if name.endswith(".") else ""
        elif suite and "DISABLED_" not in suite + name:
            yield suite + name.strip()


def tripped(build, program, test, log):
    """The checks that refuse something while the test runs, unless it takes too long."""
    log.unlink(missing_ok=True)
    try:
        subprocess.run([build / "tests" / program, "--gtest_filter=" + test],
                       env={**os.environ, "ORBSEQ_GUARD_LOG": str(log)}, timeout=10,
                       stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL,
                       stderr=subprocess.DEVNULL, check=False)
    except subprocess.TimeoutExpired:
        return set()
    return set(log.read_text().split("\n")) - {""} if log.exists() else set()


def find(build):
    known = {row.guard: row for row in rows()} if TABLE.exists() else {}
    candidates = collections.defaultdict(list)
    with tempfile.TemporaryDirectory() as folder:
        log = pathlib.Path(folder) / "log"
        for program in PROGRAMS:
            print(program, file=sys.stderr)
            for test in tests_of(build, program):
                for guard in tripped(build, program, test, log):
                    candidates[guard].append(Row(guard, program, test))
    found = {}
    for guard, tried in sorted(candidates.items()):
        tried = ([known[guard]] if guard in known else []) + tried[:40]
        for row in tried:
            if not run(build, row.program, [row.test], ORBSEQ_WITHOUT_GUARD=guard):
                found[guard] = row
                break
        else:
            print(f"{guard}: {len(tried)} tests pass without", file=sys.stderr)
    TABLE.write_text(HEAD + "".join("\t".join(row) + "\n" for _, row in sorted(found.items())))
    print("\n".join(faults_of_table(list(found.values()))), file=sys.stderr)
    return 0


def main(arguments):
    if len(arguments) >= 2 and arguments[0] == "check":
        return check(pathlib.Path(arguments[1]).resolve(), arguments[2:])
    if len(arguments) == 2 and arguments[0] == "find":
        return find(pathlib.Path(arguments[1]).resolve())
    print(__doc__, file=sys.stderr)
    return 1


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
