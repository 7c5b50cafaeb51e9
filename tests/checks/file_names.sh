#!/usr/bin/env bash
# Names that say nothing, and system code without its twin. What only Windows needs has a header that says so, x_windows.h,
# for other *_windows files alone, and for x.h where that chooses between twins.
set -euo pipefail

status=0
while IFS= read -r file; do
  if [[ ${file,,} =~ (^|/|_)(utils?|helpers?|common|misc)(_|\.|/|$) ]]; then
    echo "$file: a name that says nothing"
    status=1
  fi
  if [[ $file =~ ^(src|host)/ && ! $file =~ ^[a-z0-9_/.]+$ && ! $file =~ (CMakeLists\.txt|\.S)$ ]]; then
    echo "$file: file names are snake_case"
    status=1
  fi
  if [[ $file == src/*_windows.* || $file == src/*_posix.* ]]; then
    if [[ $file != src/frame/* && $file != src/excel/* ]]; then
      echo "$file: code for one system belongs in frame/ or excel/"
      status=1
    fi
  fi
  if [[ $file == src/*_windows.cpp && ! -e ${file/_windows/_posix} && ! -e ${file%.cpp}.h ]] ||
    [[ $file == src/*_posix.cpp && ! -e ${file/_posix/_windows} ]]; then
    echo "$file: its twin for the other system is missing"
    status=1
  fi
done < <(git ls-files --cached --others --exclude-standard)
if grep -rnE '#include ".*_windows\.h"' src --include='*.h' --include='*.cpp' |
  grep -vE '^[^:]*_windows\.(h|cpp):|^src/(.*)\.h:[0-9]+:#include "\2_windows\.h"'; then
  echo '... includes what only Windows has'
  status=1
fi
exit $status
