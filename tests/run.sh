#!/usr/bin/env bash
# Runs every suite, once `./dev test` has built what they need and entered Wine. A suite's runner closes with a line of its
# own; what it counted is added up, and a runner that dies or counts nothing is one failure.
set -euo pipefail

# Everything is named from here: relative paths mean the same to a Windows program as to a native one.
cd "$(dirname "${BASH_SOURCE[0]}")/.."

passed=0
failed=0
logs=build/test-logs
time_limit=300
examples=build/windows/src/functions/generated/examples.calc
guarded=build/windows/bin/Quillmere4_guarded.xll

# report SUITE PASSED FAILED LOG: one line for the suite, and its log if something failed.
report() {
  printf '%-36s %6d passed, %d failed\n' "$1" "$2" "$3"
  passed=$((passed + $2))
  failed=$((failed + $3))
  (($3 == 0)) || sed 's/^/    /' "$4"
}

# logged LOG COMMAND...: runs under the time limit; what it prints goes to LOG. A program that Wine could not so much as
# start, because its server broke the connection off, is started again.
logged() {
  local log=$1 status attempt
  shift
  for attempt in 1 2 3; do
    status=0
    timeout -k 10 $time_limit "$@" </dev/null 2>&1 | tr -d '\r' >"$log" || status=$?
    [[ $(head -c 200 "$log") == 'wine client error:0: recvmsg'* && $(wc -l <"$log") == 1 ]] || break
    echo "Wine did not start it, attempt $attempt" >>"$log.wine"
  done
  return $status
}

# unit_suite SUITE COMMAND...: a GoogleTest program.
unit_suite() {
  local suite=$1 log=$logs/$1.log status=0 good bad
  shift
  logged "$log" "$@" --gtest_brief=1 || status=$?
  good=$(sed -nE 's/^\[  PASSED  \] ([0-9]+) tests?\.$/\1/p' "$log")
  bad=$(grep -cE '^\[  FAILED  \] .* \([0-9]+ ms\)$' "$log" || true)
  if ((${good:-0} + bad == 0)) || ((status != 0 && bad == 0)) || [[ -z $good ]]; then
    echo "ended with status $status before its result" >>"$log"
    bad=$((bad + 1))
  fi
  report "$suite" "${good:-0}" "$bad" "$log"
}

# run_script RESULT SCRIPT COMMAND...: writes RESULT.log, and RESULT.count with 'PASSED FAILED'.
run_script() {
  local result=$1 script=$2 status=0 good bad
  shift 2
  logged "$result.log" "$@" run "$script" || status=$?
  read -r good bad < <(tail -n 1 "$result.log" | sed -nE 's/^([0-9]+) passed, ([0-9]+) failed$/\1 \2/p') || true
  if [[ -z ${bad:-} ]] || ((good + bad == 0)) || ((status != 0 && bad == 0)); then
    echo "$script: ended with status $status and without its closing line" >>"$result.log"
    good=0 bad=1
  fi
  echo "$good $bad" >"$result.count"
}

# script_suite SUITE COMMAND...: the scripts named on standard input, a process each, as many at once as there are
# processors.
script_suite() {
  local suite=$1 scripts script good bad all_good=0 all_bad=0
  shift
  mapfile -t scripts
  mkdir -p "$logs/$suite"
  for script in "${scripts[@]}"; do
    while (($(jobs -rp | wc -l) >= $(nproc))); do
      wait -n || true
    done
    run_script "$logs/$suite/${script//\//-}" "$script" "$@" &
  done
  wait
  for script in "${scripts[@]}"; do
    read -r good bad <"$logs/$suite/${script//\//-}.count"
    all_good=$((all_good + good)) all_bad=$((all_bad + bad))
    ((bad == 0)) || cat "$logs/$suite/${script//\//-}.log"
  done >"$logs/$suite.log"
  if ((all_good + all_bad == 0)); then
    echo "no script to run" >"$logs/$suite.log"
    all_bad=1
  fi
  report "$suite" "$all_good" "$all_bad" "$logs/$suite.log"
}

# What is true of the sources and of what was built: each check is a script that fails and says what is wrong.
check_suite() {
  local check good=0 bad=0 log=$logs/checks.log output
  for check in tests/checks/*.sh; do
    if output=$(timeout -k 10 $time_limit bash "$check" 2>&1); then
      good=$((good + 1))
    else
      bad=$((bad + 1))
      printf '%s:\n%s\n' "$check" "$output" >>"$log"
    fi
  done
  report checks "$good" "$bad" "$log"
}

# The scripts of the tests, and the one that is made of the examples in the tables of functions. What only the Windows
# build can show stands in a folder of its own.
windows_scripts() {
  find tests/scripts -name '*.calc' | sort
  echo "$examples"
}

native_scripts() {
  windows_scripts | grep -v '^tests/scripts/windows/'
}

parallel_scripts() {
  native_scripts | xargs -r grep -lE '^parallel '
}

rm -rf "$logs"
mkdir -p "$logs"

check_suite
unit_suite 'unit tests, Windows' wine build/windows/bin/unit_tests.exe
unit_suite 'fault guard, Windows' wine build/windows/bin/fault_guard_tests.exe
unit_suite 'unit tests, asan' build/asan/bin/unit_tests
unit_suite 'generator tests, asan' build/asan/bin/generator_tests
unit_suite 'host tests, Windows' wine build/windows/bin/host_tests.exe
unit_suite 'host tests, asan' build/asan/bin/host_tests
script_suite 'scripts, Windows' wine build/windows/bin/qcalc.exe < <(windows_scripts)
script_suite 'scripts, asan' build/asan/bin/qcalc < <(native_scripts)
script_suite 'scripts, guarded pages' wine build/windows/bin/qcalc.exe --addin $guarded < <(windows_scripts)
script_suite 'parallel scripts, tsan' build/tsan/bin/qcalc < <(parallel_scripts)
unit_suite 'faults, Windows' wine build/windows/bin/fault_tests.exe --examples $examples
unit_suite 'faults, guarded pages' wine build/windows/bin/fault_tests.exe --addin $guarded --examples $examples
unit_suite 'faults, asan' build/asan/bin/fault_tests --examples $examples
unit_suite 'faults, tsan' build/tsan/bin/fault_tests --gtest_filter=Random.AllThreads --rounds 15

unit_suite 'lookup model, Windows' wine build/windows/bin/model_tests.exe
unit_suite 'lookup model, asan' build/asan/bin/model_tests

echo "$passed passed, $failed failed"
((failed == 0))
