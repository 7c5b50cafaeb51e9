# shellcheck shell=bash
# How suites are run, as many at once as there are processors. Each has a log, tells its result in one line when it ends
# and leaves it as 'PASSED FAILED'; one that dies or counts nothing is one failure. Every runner is called with the
# suite's name, its part, and what is wanted of that: "all", or folders and families. Everything is named from the root:
# relative paths mean the same to a Windows program as to a native one.

logs=build/test-logs
time_limit=600

begin_runs() {
  rm -rf "$logs"
  mkdir -p "$logs"
}

# What all suites counted, and whether all is well.
close_runs() {
  local good bad passed=0 failed=0 result
  for result in "$logs"/*.result; do
    read -r good bad <"$result"
    passed=$((passed + good)) failed=$((failed + bad))
  done
  echo "$passed passed, $failed failed"
  ((failed == 0))
}

# at_once RUNNER NAME...: in the background, as soon as a processor is free. Until it reports, its result is a failure.
at_once() {
  while (($(jobs -rp | wc -l) >= $(nproc))); do
    wait -n || true
  done
  echo '0 1' >"$logs/$2.result"
  "$@" &
}

# report NAME PASSED FAILED: one line for the suite, and its log if something failed.
report() {
  echo "$2 $3" >"$logs/$1.result"
  (
    flock 8
    printf '%-36s %6d passed, %d failed\n' "$@"
    (($3 == 0)) || sed 's/^/    /' "$logs/$1.log"
  ) 8>"$logs/.lock"
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

# started BUILD PROGRAM: how a program of that build is called.
started() {
  if [[ $1 == windows ]]; then
    echo "wine build/windows/bin/$2.exe"
  else
    echo "build/$1/bin/$2"
  fi
}

# The script that is made of the examples in the tables.
examples() {
  echo "build/$1/src/functions/generated/examples.calc"
}

# test_filter PART BUILD FAMILY...: GoogleTest's filter for what a program has of the families; "" when that is nothing.
# Faults are tests of the functions' names, whose dots any character stands for here; to the unit tests of a family
# belongs what is recorded of its registration.
test_filter() {
  local part=$1 build=$2 family
  for family in "${@:3}"; do
    if [[ $part == faults ]]; then
      declared_functions "build/$build" | sed -n "s/^$family //p" | tr _ '?'
    else
      find "tests/$part/$family" -name '*.cpp' -exec sed -nE 's/^TEST(_F|_P)?\((\w+),.*/\2/p' {} + 2>/dev/null || true
    fi
    [[ $part != unit ]] || echo RegistrationGolden
  done | sort -u | sed 's/$/.*/' | paste -sd :
}

# program_suite NAME PART WANTED BUILD PROGRAM ARGUMENT...: a GoogleTest program.
program_suite() {
  local name=$1 log=$logs/$1.log part=$2 wanted=$3 build=$4 status=0 good bad call filter
  read -ra call <<<"$(started "$build" "$5")"
  call+=("${@:6}")
  if [[ $wanted != all ]]; then
    # shellcheck disable=SC2086
    filter=$(test_filter "$part" "$build" $wanted)
    if [[ -z $filter ]]; then
      echo '0 0' >"$logs/$name.result"
      return
    fi
    call+=("--gtest_filter=$filter")
  fi
  logged "$log" "${call[@]}" --gtest_brief=1 || status=$?
  good=$(sed -nE 's/^\[  PASSED  \] ([0-9]+) tests?\.$/\1/p' "$log")
  bad=$(grep -cE '^\[  FAILED  \] .* \([0-9]+ ms\)$' "$log" || true)
  if ((${good:-0} + bad == 0)) || ((status != 0 && bad == 0)) || [[ -z $good ]]; then
    echo "ended with status $status before its result" >>"$log"
    bad=$((bad + 1))
  fi
  report "$name" "${good:-0}" "$bad"
}

# scripts_of BUILD WANTED: what the build can show of the scripts in the folders, and the examples. What only the Windows
# build can show stands in a folder of its own; the thread sanitizer gets what uses several threads.
scripts_of() {
  local folder
  if [[ $2 == all ]]; then
    find tests/scripts -name '*.calc'
  else
    for folder in $2; do
      [[ ! -d tests/scripts/$folder ]] || find "tests/scripts/$folder" -name '*.calc'
    done
  fi | sort | case $1 in
    windows) cat ;;
    asan) grep -v '^tests/scripts/windows/' ;;
    tsan) grep -v '^tests/scripts/windows/' | xargs -r grep -lE '^parallel ' ;;
  esac || true
  [[ $1 == tsan ]] || examples "$1"
}

# run_scripts LOG COMMAND... SCRIPT...: prints 'PASSED FAILED', or nothing when there is no closing line.
run_scripts() {
  local log=$1 good bad status=0
  logged "$@" || status=$?
  read -r good bad < <(tail -n 1 "$log" | sed -nE 's/^([0-9]+) passed, ([0-9]+) failed$/\1 \2/p') || return 0
  if ((good + bad == 0 || (status != 0 && bad == 0))); then
    echo "ended with status $status" >>"$log"
    return 0
  fi
  echo "$good $bad"
}

# counted_suite NAME COMMAND...: a program that closes as scripts do.
counted_suite() {
  local name=$1 good bad
  echo '0 1' >"$logs/$name.result"
  read -r good bad < <(run_scripts "$logs/$name.log" "${@:2}") || good=0 bad=1
  report "$name" "$good" "$bad"
}

# run_batches COUNT SCRIPT...: for scripts_suite, whose variables it fills: the scripts, COUNT of them to a process.
run_batches() {
  local count=$1 at batch some_good some_bad
  shift
  for ((at = 1; at <= $#; at += count)); do
    batch=("${@:at:count}")
    if read -r some_good some_bad < <(run_scripts "$log.some" "${call[@]}" "${batch[@]}"); then
      good=$((good + some_good)) bad=$((bad + some_bad))
      ((some_bad == 0)) || cat "$log.some" >>"$log"
    else
      bad=$((bad + 1))
      cat - "$log.some" >>"$log" <<<"no closing line: ${batch[*]}"
    fi
  done
}

# scripts_suite NAME PART WANTED BUILD COUNT ARGUMENT...: scripts, at most COUNT of them to a process.
scripts_suite() {
  local name=$1 log=$logs/$1.log build=$4 count=$5 good=0 bad=0 call scripts
  read -ra call <<<"$(started "$build" qcalc)"
  call+=("${@:6}" run)
  mapfile -t scripts < <(scripts_of "$build" "$3")
  : >"$log"
  run_batches "$count" "${scripts[@]}"
  if ((good + bad == 0)); then
    echo 'no script to run' >"$log"
    bad=1
  fi
  report "$name" "$good" "$bad"
}

# What is true of the sources and of what was built: each check is a script that fails and says what is wrong.
checks_suite() {
  local check good=0 bad=0 log=$logs/checks.log output
  for check in tests/checks/*.sh; do
    if output=$(timeout -k 10 $time_limit bash "$check" 2>&1); then
      good=$((good + 1))
    else
      bad=$((bad + 1))
      printf '%s:\n%s\n' "$check" "$output" >>"$log"
    fi
  done
  report checks "$good" "$bad"
}

# fuzzers_suite NAME: every fuzzer of the build for some seconds, from what earlier runs came upon. What one fails on
# stays in its corpus.
fuzzers_suite() {
  local name=$1 log=$logs/$1.log fuzzer good=0 bad=0
  : >"$log"
  for fuzzer in build/fuzz/bin/fuzzers/fuzz_*; do
    if fuzz_for 5 "$fuzzer" >>"$log" 2>&1; then
      good=$((good + 1))
    else
      bad=$((bad + 1))
    fi
  done
  report "$name" "$good" "$bad"
}
