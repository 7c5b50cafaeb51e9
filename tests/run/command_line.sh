# shellcheck shell=bash disable=SC2154,SC2016
# qcalc from outside: statuses, and what must be told when a process dies or output is lost.

# said STATUS PATTERN COMMAND...: one case. The command ends with that status, and prints what matches the pattern, where
# a line end stands as "|".
said() {
  local status=0 output
  output=$(timeout -k 10 60 "${@:3}" 2>&1 </dev/null) || status=$?
  output=$(tr -d '\r' <<<"$output" | tr '\n' '|')
  if [[ $status == "$1" && $output =~ $2 ]]; then
    good=$((good + 1))
  else
    bad=$((bad + 1))
    printf '%s\n  expected %s: %s\n  got %s: %s\n' "${*:3}" "$1" "$2" "$status" "$output" >>"$log"
  fi
}

# command_line_suite NAME PART WANTED BUILD
command_line_suite() {
  local name=$1 log=$logs/$1.log build=$4 good=0 bad=0 qcalc bad_addin folder=$logs/$1
  read -ra qcalc <<<"$(started "$build" qcalc)"
  bad_addin=("${qcalc[@]}" --addin "build/$build/bin/misbehaving.xll")
  local lost='^the output could not be written: [^|]+[|]$' to_full_disk=(bash -c '"$@" >/dev/full' -)
  local to_closed_pipe=(bash -c '{ sleep 0.2 && "$@"; } | true; exit ${PIPESTATUS[0]}' -)
  mkdir -p "$folder"
  : >"$log"
  printf 'eval =1\nexpect 1\ncase of death\neval =DIE(1)\nexpect 1\n' >"$folder/dying.calc"
  printf 'eval =PLUS.ONE(1)\nexpect 2\n' >"$folder/living.calc"

  said 0 '^\{1;2\}\|#DIV/0!\|$' "${qcalc[@]}" eval '=VSTACK(0,1,2)' =1/0
  said 0 '\|  family: +lookup\|.* MemType_Name +value, 2 when left out .*\[0 Guess .*\|  =MEMMATCH.* gives 3\|$' \
    "${qcalc[@]}" functions memmatch
  said 5 'dying.calc:4: FAILED \[of death\]: the add-in died in DIE: .*\|2 passed, 1 failed\|$' \
    "${bad_addin[@]}" run "$folder/dying.calc" "$folder/living.calc"
  said 5 '=DIE\(2\): the add-in died in DIE: .*\|2\|$' "${bad_addin[@]}" eval '=DIE(2)' '=PLUS.ONE(1)'
  said 5 'in DIE: it ended the process with status 0\|$' "${bad_addin[@]}" eval '=DIE(3)'
  said 5 'in DIE: an exception left it: thrown out of an export\|$' "${bad_addin[@]}" eval '=DIE(4)'
  said 5 'in DIE: an exception left it that is no std::exception\|$' "${bad_addin[@]}" eval '=DIE(5)'
  said 5 'in DIE: ' "${bad_addin[@]}" eval '=DIE(6)'
  said 5 'in DIE: it ended the process with status 7\|$' "${bad_addin[@]}" eval '=DIE(7)'
  said 5 'in xlAutoOpen: an exception left it: thrown out of xlAutoOpen\|0 passed, 1 failed\|$' \
    env DIE_AT_OPENING=1 "${bad_addin[@]}" run "$folder/living.calc"
  said 2 'tests: it is a folder\|1 passed, 0 failed\|$' "${bad_addin[@]}" run tests "$folder/living.calc"
  if [[ $build != windows ]]; then
    printf 'com none\n' >"$folder/objects.calc"
    said 2 "objects.calc:1:[0-9]+: Excel's object model is for the Windows build alone; .*[|]$" \
      "${qcalc[@]}" run "$folder/objects.calc"
    said 2 'dialog.calc:2:7: dialogs are for the Windows build alone; .*[|]$' "${qcalc[@]}" run tests/scripts/windows/dialog.calc
  fi
  # Books: what is told of one with an error, a circle and an unknown function, and one that holds what it gives.
  printf '=1/0,=C1,=B1,=NOBODY(1),=D1+1,"=SUM(1,2)"\n=A1:B1,=NOBODY(2)\n' >"$folder/wrong.csv"
  said 0 'tour.xlsx: 1,225 values compared, 0 different\|.*: 14 formulas, 0 errors, ' \
    "${qcalc[@]}" calc samples/tour.xlsx --check --threads 3
  said 1 'D1 is not calculated: NOBODY at .*: =NOBODY\(1\); nor is wrong!B2\|.*circular reference: wrong!B1 -> wrong!C1 -> wrong!B1\|' \
    "${qcalc[@]}" calc "$folder/wrong.csv"
  said 1 'since they read those: wrong!A2, wrong!E1\|.*errors in wrong!A1\|.*: 2 formulas, 6 not calculated, 1 error, ' \
    "${qcalc[@]}" calc "$folder/wrong.csv" --fail-on-error -o "$folder/out.json"
  said 2 'living.calc: it is no zip file' "${qcalc[@]}" calc "$folder/living.calc"
  said 4 "$lost" "${to_full_disk[@]}" "${qcalc[@]}" calc samples/tour.xlsx
  said 4 'the output could not be written: .*nowhere' "${qcalc[@]}" calc samples/tour.xlsx -o "$folder/nowhere/out.csv"
  said 4 "$lost" "${to_full_disk[@]}" "${qcalc[@]}" eval =1
  said 4 "$lost" "${to_full_disk[@]}" "${bad_addin[@]}" run "$folder/living.calc"
  said 4 "$lost" "${to_full_disk[@]}" "${qcalc[@]}" functions
  said 4 "$lost" "${to_full_disk[@]}" "${qcalc[@]}" --help
  said 4 "$lost" "${to_closed_pipe[@]}" "${qcalc[@]}" eval =1
  # On a terminal, of which Wine makes a console of its own: progress, until somebody presses Ctrl+C.
  printf 'recalc 1000000000 =1\n' >"$folder/endless.calc"
  [[ $build == windows ]] || said 130 'endless.calc:1, [0-9,]+ formulas calculated, 1 s' \
    bash -c '{ sleep 2.5; printf "\003"; } | script -qec "$(printf "%q " "$@")" /dev/null; exit ${PIPESTATUS[1]}' - \
    "${qcalc[@]}" run "$folder/endless.calc"
  report "$name" "$good" "$bad"
}
