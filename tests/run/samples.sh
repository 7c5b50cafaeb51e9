# shellcheck shell=bash disable=SC2154
# The sample workbooks: those that are committed hold what they give; those written anew are the same.

# samples_suite NAME PART WANTED BUILD
samples_suite() {
  local name=$1 log=$logs/$1.log build=$4 good=0 bad=0 qcalc book some_good some_bad
  read -ra qcalc <<<"$(started "$build" qcalc)"
  : >"$log"
  for book in samples/*.xlsx; do
    said 0 ' [1-9][0-9,]* values compared, 0 different[|]' "${qcalc[@]}" calc "$book" --check
  done
  if [[ $build != windows ]]; then
    read -r some_good some_bad < <(run_scripts "$log.some" tests/samples/samples_test.py "build/$build/bin/sample_writer" \
      "${qcalc[@]}" "build/$build/bin/Quillmere4_functions.json" "$logs/samples") || some_good=0 some_bad=1
    good=$((good + some_good)) bad=$((bad + some_bad))
    cat "$log.some" >>"$log"
  fi
  report "$name" "$good" "$bad"
}

# The sample workbooks in LibreOffice, part of the suite that is left out of all.
run_sample_prints() {
  packages+=(poppler-utils fonts-crosextra-carlito)
  set_up_office
  counted_suite prints tests/samples/print_test.py "$logs/prints"
}
