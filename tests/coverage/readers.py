#!/usr/bin/env python3
"""Tells which conditions of the readers never came out true, or never false, in the tests.

  readers.py ROOT < EXPORT        EXPORT: what `llvm-cov export` wrote of a run of the tests

Readers are the sources that take what comes from outside. Each outcome that was not met must be
explained in misses.txt; status 1 when one is not, or when a row of that table was met after all.
That a check cannot be switched off needs no row: only a build for everyGuard.py can do it.
"""

import collections
import json
import pathlib
import re
import sys

TABLE = pathlib.Path(__file__).with_name("misses.txt")
READERS = re.compile(r"""(
    document/.* | engine/(caseText|compiledForm|inOrder)\.(h|cpp) | common/platform/.* |
    host/(BaseTranslator|Decoder|DocumentParser|DynamicLibrary|ElementPositions|PluginLoader|
          Prologue|SafeDocument|TextCursor|documentError|oneLine|safeText|transcoding|utf16)\.(h|cpp) |
    io/(CompiledModel|Csv.*|History.*|Json.*|Line.*|Log.*|ModelFile|ModelForm|SourceStream|
        Sqlite.*|TextMap|TextSource|columnIndex|csvField|descriptor|historyText|log.*|
        modelLabels)\.(h|cpp) |
    scoring/(CaseFields|SequentialTranslator)\.cpp |
    lattice/(SeqDictionarySettings|binaryForm|objectXmlForm)\.cpp |
    sequence/(BinaryReader|HashtableSQPair|binaryForm|objectXmlForm)\.(h|cpp) |
    xml/(LineTokenizer|objectReader)\.(h|cpp))""", re.VERBOSE)

Miss = collections.namedtuple("Miss", "file condition never")


def explained():
    """The reason of each miss."""
    rows = {}
    for line in TABLE.read_text().splitlines():
        if line and not line.startswith("#"):
            file, condition, never, reason = line.split("\t")
            rows[Miss(file, condition, never)] = reason
    return rows


def text_of(lines, begin, end):
    """The source from a line and column to another, in one line without doubled blanks."""
    (row, column), (last_row, last_column) = begin, end
    part = lines[row - 1:last_row]
    part[-1] = part[-1][:last_column - 1]
    part[0] = part[0][column - 1:]
    return " ".join(" ".join(part).split())


def outcomes_of(file, name, root):
    """(miss, line, count) for each outcome of each condition; those of one place are one."""
    lines = (root / name).read_text().splitlines()
    counts = collections.Counter()
    for branch in file["branches"]:
        begin, end = (branch[0], branch[1]), (branch[2], branch[3])
        condition = text_of(lines, begin, end)
        for never, count in (("true", branch[4]), ("false", branch[5])):
            counts[begin, condition, never] += count
    for (begin, condition, never), count in counts.items():
        if re.match(r"!?(orbseq::)?(guarded\(|kGuards$)", condition):
            continue
        yield Miss(name, condition, never), begin[0], count


def main():
    root = pathlib.Path(sys.argv[1]).resolve()
    export = json.load(sys.stdin)["data"][0]
    reasons = explained()
    missed, met = [], 0  # (miss, line); conditions of a file with one text share their row
    lines = covered = 0
    for file in export["files"]:
        name = str(pathlib.Path(file["filename"]).relative_to(root))
        if not READERS.fullmatch(name):
            continue
        lines += file["summary"]["lines"]["count"]
        covered += file["summary"]["lines"]["covered"]
        for miss, line, count in outcomes_of(file, name, root):
            if count == 0:
                missed.append((miss, line))
            else:
                met += 1
    unexplained = [(miss, line) for miss, line in missed if miss not in reasons]
    for miss, line in unexplained:
        print(f"{miss.file}:{line}: never {miss.never}: {miss.condition}")
    stale = reasons.keys() - {miss for miss, _ in missed}
    for miss in sorted(stale):
        print(f"misses.txt: met by now: {miss.file}: never {miss.never}: {miss.condition}")
    print(f"readers: {covered} of {lines} lines; {met} of {met + len(missed)} outcomes of conditions, "
          f"{len(missed) - len(unexplained)} of the others explained")
    sys.exit(1 if unexplained or stale else 0)


main()
