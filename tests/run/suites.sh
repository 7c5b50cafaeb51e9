# shellcheck shell=bash
# The suites of `./dev test`, and what a part of them is made of. Sourced by dev, which builds.
source tests/run/functions.sh
source tests/run/runners.sh
source tests/run/command_line.sh
source tests/run/books.sh
source tests/run/companion.sh
source tests/run/help.sh
source tests/run/samples.sh
source tests/run/package.sh

guarded=build/windows/bin/Quillmere4_guarded.xll

# each_suite COMMAND...: calls COMMAND with each suite: the part that it belongs to; the build and, joined by commas, the
# targets that it needs; whether it is run for a single family too or only as a whole; its name; and how it is run. The
# longest of a build come first, so that none is left to run alone at the end. Scripts share a process, but where a fresh
# one is worth more: guarded pages use up the mappings that the system gives one, and the thread sanitizer remembers what
# a library did that is unloaded. Allocations that fail are no matter of threads, and take it longer than all else.
each_suite() {
  local native_faults windows_faults
  native_faults="asan fault_tests --examples $(examples asan)"
  windows_faults="windows fault_tests --examples $(examples windows)"
  # shellcheck disable=SC2086
  {
    "$@" faults    asan    fault_tests              family 'faults, asan'           program $native_faults
    "$@" host      asan    host_tests               whole  'host tests, asan'       program asan host_tests
    "$@" scripts   asan    qcalc                    family 'scripts, asan'          scripts asan 100
    "$@" host      asan    qcalc,misbehaving        whole  'command line, asan'     command_line asan
    "$@" models    asan    model_tests              family 'models, asan'           program asan model_tests
    "$@" unit      asan    unit_tests               family 'unit tests, asan'       program asan unit_tests
    "$@" generator asan    generator_tests          whole  'generator tests, asan'  program asan generator_tests
    "$@" samples   asan    qcalc,sample_writer      whole  'samples, asan'          samples asan
    "$@" checks    asan    Quillmere4               whole  'the native library'     needed

    "$@" faults    windows fault_tests              whole  'faults, guarded pages'  program $windows_faults --addin $guarded
    "$@" faults    windows fault_tests              whole  'faults, Windows'        program $windows_faults
    "$@" checks    windows qcalc,XLCALL32           whole  'checks'                 checks
    "$@" scripts   windows qcalc                    family 'scripts, Windows'       scripts windows 100
    "$@" scripts   windows qcalc,Quillmere4_guarded whole  'scripts, guarded pages' scripts windows 1 --addin $guarded
    "$@" host      windows host_tests               whole  'host tests, Windows'    program windows host_tests
    "$@" host      windows qcalc,misbehaving        whole  'command line, Windows'  command_line windows
    "$@" guard     windows fault_guard_tests        whole  'fault guard, Windows'   program windows fault_guard_tests
    "$@" unit      windows unit_tests               whole  'unit tests, Windows'    program windows unit_tests
    "$@" samples   windows qcalc                    whole  'samples, Windows'       samples windows
    "$@" models    windows model_tests              whole  'models, Windows'        program windows model_tests
    "$@" help      windows qcalc                    whole  'help'                   help windows
    "$@" setup     windows qcalc                    whole  'setup'                  setup
    "$@" package   windows qcalc                    whole  'the Windows library'    needed

    "$@" fuzz      fuzz    fuzzers                  whole  'fuzzers'                fuzzers

    "$@" host      tsan    host_tests               whole  'host tests, tsan'       program tsan host_tests \
      --gtest_filter=-FailingAllocations.*
    "$@" unit      tsan    unit_tests               whole  'unit tests, tsan'       program tsan unit_tests
    "$@" faults    tsan    fault_tests              whole  'faults, tsan'           program tsan fault_tests \
      --gtest_filter=Random.AllThreads --rounds 15
    "$@" scripts   tsan    qcalc                    whole  'parallel scripts, tsan' scripts tsan 1
  }
}

# Of each part that is wanted: "all", or the folders and families of it that are.
declare -A wanted=()

# want WORD: a part, or what each part has of a family.
want() {
  local part
  case $1 in
    books | checks | companion | faults | fuzz | generator | guard | help | models | package | samples | scripts | setup | unit)
      wanted[$1]=all
      ;;
    host)
      wanted[host]=all
      want_some scripts host windows
      ;;
    *)
      [[ -e src/functions/$1.toml ]] || return
      for part in faults models scripts unit; do want_some "$part" "$1"; done
      ;;
  esac
}

want_some() {
  [[ ${wanted[$1]:-} == all ]] || wanted[$1]+=" ${*:2}"
}

is_wanted() {
  local part=$1 scope=$2
  [[ -n ${wanted[$part]:-} && (${wanted[$part]} == all || $scope == family) ]]
}

targets_in() {
  local of_build=$1 part=$2 build=$3 targets=$4 scope=$5
  [[ $build != "$of_build" ]] || ! is_wanted "$part" "$scope" || echo "${targets//,/$'\n'}"
}

run_in() {
  local of_build=$1 part=$2 build=$3 scope=$5 name=$6 runner=$7
  [[ $build == "$of_build" && $runner != needed ]] && is_wanted "$part" "$scope" || return 0
  at_once "${runner}_suite" "$name" "$part" "${wanted[$part]}" "${@:8}"
}

# run_tests [WORD...]: the parts of that name, or all that need no LibreOffice or Chromium and build nothing twice; native
# ones first, since their build is the cheapest.
run_tests() {
  local word build targets
  (($#)) || set -- checks faults fuzz generator guard help host models samples scripts setup unit
  for word in "$@"; do
    want "$word" || {
      echo "no tests named '$word'. There are books, checks, companion, faults, fuzz, generator, guard, help, host," \
        "models, package, samples, scripts, setup, unit, and of a family: $(families | paste -sd ' ')" >&2
      return 2
    }
  done
  begin_runs
  for build in asan windows fuzz tsan; do
    mapfile -t targets < <(each_suite targets_in "$build" | sort -u)
    ((${#targets[@]})) || continue
    # What is still running of the build before goes first.
    if ! (renice -n 10 "$BASHPID" >/dev/null && build_preset "$build" "${targets[@]}"); then
      wait
      return 1
    fi
    [[ $build != windows ]] || enter_wine
    each_suite run_in "$build"
  done
  wait
  ! is_wanted books whole || run_books
  ! is_wanted companion whole || run_companion
  if is_wanted package whole; then
    run_sample_prints
    run_pages
    run_second_build
  fi
  close_runs
}
