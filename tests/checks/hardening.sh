#!/usr/bin/env bash
# The Windows binaries may be loaded anywhere, run no data, and import nothing but Windows' own libraries.
set -euo pipefail

status=0
complain() {
  echo "$1"
  status=1
}

# check_image FILE DLL...: the marks of FILE, and that it imports the DLLs named and no other.
check_image() {
  local file=$1 headers imported
  shift
  headers=$(x86_64-w64-mingw32-objdump -p "$file")
  grep -qE '^DllCharacteristics[[:space:]]+00000160$' <<<"$headers" ||
    complain "$file: not marked for high-entropy, dynamic base and no-execute"
  grep -qE '^Entry 5 [0-9a-f]+ 0*[1-9a-f][0-9a-f]* ' <<<"$headers" || complain "$file: no base relocations"
  while read -r imported; do
    [[ " ${*,,} " == *" ${imported,,} "* ]] || complain "$file: imports $imported"
  done < <(sed -nE 's/^[[:space:]]*DLL Name: (.*)$/\1/p' <<<"$headers")
}

check_image build/windows/bin/Quillmere4.xll kernel32.dll ntdll.dll msvcrt.dll advapi32.dll user32.dll gdi32.dll \
  ole32.dll oleaut32.dll
check_image build/windows/bin/qcalc.exe kernel32.dll msvcrt.dll advapi32.dll user32.dll gdi32.dll shell32.dll \
  ole32.dll oleaut32.dll oleacc.dll
check_image build/windows/bin/XLCALL32.DLL kernel32.dll msvcrt.dll advapi32.dll
exit $status
