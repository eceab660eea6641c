#!/usr/bin/env bash
# What the checks of what is read cost, and what the hardening of the build costs.
#
#   bench/checks.sh [ROUNDS]
#
# Builds engine_bench three times: as everything is built (out/bench), with every
# check left out (ORBSEQ_NO_GUARDS, out/bench-unchecked: for this measurement alone) and without
# hardening (ORBSEQ_HARDEN=OFF, out/bench-unhardened). Runs the three in turns, ROUNDS times (5),
# on the same seeded models, and prints the median of each step with its ratio to the plain build
# without: above 1 is what is paid.

set -euo pipefail
cd "$(dirname "$0")/.."

rounds=${1:-5}
folder=out/bench-checks
mkdir -p "$folder"

made() {
  cmake --preset bench -B "out/$1" "${@:2}" >&2
  cmake --build "out/$1" --target engine_bench >&2
}
made bench
made bench-unchecked -DCMAKE_CXX_FLAGS=-DORBSEQ_NO_GUARDS
made bench-unhardened -DORBSEQ_HARDEN=OFF

: > "$folder/figures.txt"
for ((round = 1; round <= rounds; ++round)); do
  echo "round $round of $rounds" >&2
  for build in bench bench-unchecked bench-unhardened; do
    # Apart, since a table has the same columns in all its rows.
    for steps in 'load/.*/100000$|load/compiled/1000000' 'query/.*/100000$'; do
      "out/$build/engine_bench" --benchmark_format=csv --benchmark_filter="$steps" 2> /dev/null |
        awk -F, -v build="$build" '/^"/ { gsub(/"/, "", $1); print build "\t" $1 "\t" $3 }'
    done
  done >> "$folder/figures.txt"
done

awk -F '\t' -f bench/median.awk -f /dev/stdin "$folder/figures.txt" <<'AWK'
{ key = $1 SUBSEP $2; figures[key, ++count[key]] = $3
  if (!($2 in known)) { known[$2] = 1; names[++n] = $2 } }
END {
  printf "%-34s %14s %16s %18s\n", "step", "time", "to unchecked", "to unhardened"
  for (k = 1; k <= n; ++k) {
    plain = median("bench" SUBSEP names[k])
    printf "%-34s %14.6g %16.2f %18.2f\n", names[k], plain,
      plain / median("bench-unchecked" SUBSEP names[k]),
      plain / median("bench-unhardened" SUBSEP names[k])
  }
}
AWK
