#!/bin/sh
# Under valgrind, which sees what is read before it is written: a model is trained, saved in every
# form, loaded, scored with and exported; no error, and nothing lost. A document that gives an
# item's id twice, so that another item has no value, is refused without one of them being read.
#
#   valgrind.sh BUILD
#
# Exit status 77: there is no valgrind.

set -eu
build=$1
command -v valgrind > /dev/null || {
  echo "SKIPPED: there is no valgrind here" >&2
  exit 77
}
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

faultless() {
  valgrind --quiet --error-exitcode=9 --leak-check=full --errors-for-leak-kinds=definite,indirect \
    --log-file="$folder/valgrind.log" "$@" > "$folder/out" 2> "$folder/err"
}

watched() {
  faultless "$@" || {
    echo "failed: $*" >&2
    cat "$folder/valgrind.log" "$folder/err" >&2
    exit 1
  }
}

faultless "$build/tests/orbseq_faulty" none
for fault in unset lost; do
  if faultless "$build/tests/orbseq_faulty" "$fault"; then
    echo "a planted fault was not seen: $fault" >&2
    exit 1
  fi
done

"$build/orbseq" generate --customers 60 --seed 1 --output "$folder/log.csv" 2> /dev/null
watched "$build/orbseq" train --input "$folder/log.csv" --label label --min-support 6 \
  --output "$folder/model.xml"
for form in pmml binary objxml compiled; do
  watched "$build/orbseq" convert --model "$folder/model.xml" --to "$form" \
    --output "$folder/model.$form"
done
for form in xml pmml binary objxml compiled; do
  for asked in current future; do
    watched "$build/orbseq" score --model "$folder/model.$form" --input "$folder/log.csv" \
      --return "$asked" --output "$folder/$form.$asked"
    cmp "$folder/xml.$asked" "$folder/$form.$asked"
    [ -s "$folder/$form.$asked" ]
  done
done
watched "$build/orbseq" score --module "$build/liborbseq.so" --model "$folder/model.xml" --input "$folder/log.csv" \
  --output "$folder/module.current"
cmp "$folder/xml.current" "$folder/module.current"
watched "$build/orbseq" rules --model "$folder/model.binary" --output "$folder/rules.csv"
[ -s "$folder/rules.csv" ]

sed 's/<Item id="2"/<Item id="1"/' "$folder/model.xml" > "$folder/twice.xml"
status=0
faultless "$build/orbseq" inspect --model "$folder/twice.xml" || status=$?
[ "$status" = 2 ] && grep -q 'Item\[2\]/@id .*: duplicate id 1$' "$folder/err" || {
  echo "an item's id that stands twice: status $status, not 2" >&2
  cat "$folder/valgrind.log" "$folder/err" >&2
  exit 1
}
