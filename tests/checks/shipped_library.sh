#!/usr/bin/env bash
# The Windows add-in is as it may be shipped: it says the project's version; and nothing in it tells where or when it was
# built, so that the same sources give the same bytes.
set -euo pipefail

library=build/windows/bin/Quillmere4.xll
status=0
complain() {
  echo "$library: $1"
  status=1
}

version=$(sed -nE 's/^project\(.* VERSION ([0-9.]+) .*/\1/p' CMakeLists.txt)
told=$(x86_64-w64-mingw32-windres -J coff -O rc "$library")
for line in " FILEVERSION ${version//./, }, 0" " PRODUCTVERSION ${version//./, }, 0" \
  "      VALUE \"FileVersion\", \"$version\"" "      VALUE \"ProductVersion\", \"$version\"" \
  '      VALUE "OriginalFilename", "Quillmere4.xll"'; do
  grep -qxF -- "$line" <<<"$told" || complain "its version resource is without '$line'"
done

headers=$(TZ=UTC0 x86_64-w64-mingw32-objdump -ph "$library")
grep -E '^Time/Date' <<<"$headers" | grep -qvE '(Thu Jan  1 00:00:00 1970|stamp[[:space:]]+0)$' && complain 'has the time of its build'
! grep -q ' \.debug_' <<<"$headers" || complain 'is not stripped'

# Of texts of either width.
for width in s l; do
  if strings -e $width "$library" | grep -F -e "$PWD" -e build/windows; then
    complain 'holds a path of this machine'
  fi
done
exit $status
