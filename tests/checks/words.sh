#!/usr/bin/env bash
# What must not appear: references to papers that a reader does not have, paths of a machine, package hosts, unfinished
# business; and in the add-in, what does not work inside Excel's process or on both systems.
set -euo pipefail

status=0

# refuse WHY PATTERN PATHSPEC...: PATTERN may stand in none of the files.
refuse() {
  local why=$1 pattern=$2 found
  shift 2
  if found=$(git grep -nIE --untracked "$pattern" -- "$@" ':!tests/checks/words.sh'); then
    printf '%s:\n%s\n' "$why" "$found"
    status=1
  fi
}

# The function code: everything but the frame, the bridge to Excel's object model and what opens the add-in.
mapfile -t function_code < <(sed -nE 's/^(table|family|functions) +(src\/[a-z]+) .*/\2/p' cmake/rooms.txt)

refuse 'a paper that is not here' '(spe[c]|settle[d]|desig[n])\.md|\bthe specificatio[n]\b|\b[Pp]arts? [0-9]+\.[0-9]+|\b[Ii]ssue #?[0-9]+' .
refuse 'a path of a machine' '(^|[^A-Za-z0-9_./$}*-])/(work|farm|root|home|tmp/q)/' .
refuse 'a package host' '(registry|deb|ftp|security|pypi|proxy)\.[a-z]+\.(org|com)' .
refuse 'unfinished' '\b(TODO|FIXME|XXX|HACK)\b' .
refuse 'pins the library in memory; see frame/call/thread_record.h' '\bthread_local\b' '*.cpp' '*.h' ':!host' ':!tests' \
  ':!src/functions/generator'
refuse 'leaves a lock behind; see frame/entry/process_end.h' '^ +static (constinit )?C[A-Z][A-Za-z]*(<.*>)? [a-z][A-Za-z]*;' src ':!src/*_posix.cpp'
refuse 'allocates and throws at its first lock' '\bstd::(recursive_|timed_|shared_)?mutex\b' src
refuse 'text is XCHAR' '\bwchar_t\b' 'src/*.cpp' 'src/*.h' ':!src/xlcall/xchar.h' ':!src/*_windows.*' \
  ':!src/functions/generator'
refuse 'code for one system belongs in *_windows and *_posix files' '\b_WIN32\b|<windows\.h>' "${function_code[@]}"
refuse 'the wrapper alone catches' '\b(try|catch) *[{(]' "${function_code[@]/%//*.cpp}" "${function_code[@]/%//*.h}" ':!src/functions/generator'
exit $status
