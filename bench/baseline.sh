#!/usr/bin/env bash
# How much faster queries are than those of the dictionary tagged `baseline-dictionary`.
#
#   bench/baseline.sh [ROUNDS]
#
# Builds that dictionary in a worktree in out/baseline, with the flags of the measurements, and
# bench/dictionaryQueries.cpp against it; then runs this program and queries_bench in turns, ROUNDS
# times (5), on the same models and histories, and prints the median of each figure, in microseconds
# a history, with its ratio to the engine on one thread. Checksums of both are shown: equal ones
# mean that the answers name the same items. Everything stays in out/baseline, for the next run.

set -euo pipefail
cd "$(dirname "$0")/.."

rounds=${1:-5}
tag=baseline-dictionary
folder=out/baseline

cmake --preset bench >&2
cmake --build --preset bench --target queries_bench orbseq_cli >&2
data=$(sed -n 's/^ORBSEQ_DATA_DIR:PATH=//p' out/bench/CMakeCache.txt)
for file in retail/lattice.xml retail/histories.csv logs/BMS1.spmf.gz; do
  [ -f "$data/$file" ] || { echo "bench/baseline.sh: no $data/$file" >&2; exit 1; }
done

mkdir -p "$folder"
# --force: the folder of a former run may have been removed.
[ -d "$folder/source" ] || git worktree add --force --detach "$folder/source" "$tag" >&2
cmake -S "$folder/source" -B "$folder/build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
  -DORBSEQ_BUILD_TESTS=OFF >&2
cmake --build "$folder/build" --target orbseq_lattice >&2
flags=$(sed -n 's/^CMAKE_CXX_FLAGS_RELWITHDEBINFO:STRING=//p' "$folder/build/CMakeCache.txt")
# shellcheck disable=SC2086 # several flags
"${CXX:-c++}" -std=c++20 $flags -ffp-contract=off -I "$folder/source" bench/dictionaryQueries.cpp \
  "$folder"/build/lattice/liborbseq_lattice.a "$folder"/build/sequence/liborbseq_sequence.a \
  "$folder"/build/common/liborbseq_common.a -o "$folder/dictionaryQueries"

# Writes the sequences of a model, and the number of its customers.
unpack() {
  local model=$1 name=$2
  out/bench/orbseq inspect --model "$model" --sequences --output "$folder/$name.sequences"
  out/bench/orbseq inspect --model "$model" --json |
    sed -n 's/^{"customers":\([0-9]*\),.*/\1/p' > "$folder/$name.customers"
}

unpack "$data/retail/lattice.xml" retail
sed -e 1d -e 's/^[^,]*,//' -e 's/(//g' -e 's/)/ -1 /g' -e 's/$/-2/' "$data/retail/histories.csv" \
  > "$folder/retail.histories"
gzip -dc "$data/logs/BMS1.spmf.gz" | grep -v '^[#%@]' > "$folder/BMS1.histories"
out/bench/orbseq train --quiet --input "$data/logs/BMS1.spmf.gz" --min-support 40 \
  --output "$folder/BMS1.bin"
unpack "$folder/BMS1.bin" BMS1

: > "$folder/figures.txt"
for ((round = 1; round <= rounds; ++round)); do
  echo "round $round of $rounds" >&2
  for name in retail BMS1; do
    "$folder/dictionaryQueries" "$name" "$folder/$name.sequences" \
      "$(cat "$folder/$name.customers")" "$folder/$name.histories" 1
  done >> "$folder/figures.txt"
  out/bench/queries_bench "$data" 1 >> "$folder/figures.txt"
done

awk -f bench/median.awk -f /dev/stdin "$folder/figures.txt" <<'AWK'
/^[^ ]/ { title = $0 }
/ us / && match($0, / +[0-9.]+ us /) {
  name = substr($0, 3, RSTART - 3)
  key = title SUBSEP name
  if (!(title in seen)) { seen[title] = 1; titles[++titleCount] = title }
  if (!(name in known)) { known[name] = 1; names[++nameCount] = name }
  figures[key, ++count[key]] = substr($0, RSTART, RLENGTH) + 0
  checksum[key] = $NF
}
END {
  for (t = 1; t <= titleCount; ++t) {
    print titles[t]
    engine = median(titles[t] SUBSEP "engine, 1 thread")
    for (k = 1; k <= nameCount; ++k) {
      key = titles[t] SUBSEP names[k]
      if (!(key in count)) continue
      figure = median(key)
      printf "  %-22s %12.3f us  %8.2f x  checksum %s\n", names[k], figure, figure / engine,
        checksum[key]
    }
  }
}
AWK
