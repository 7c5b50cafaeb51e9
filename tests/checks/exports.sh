#!/usr/bin/env bash
# The library exports Excel's entry points, the functions of the tables and the plain functions for VBA, both builds
# alike, and nothing else; and the functions of the tables are the ones that Excel is told of.
set -euo pipefail
source tests/run/functions.sh

entry_points=(
  xlAutoOpen xlAutoClose xlAutoAdd xlAutoRemove xlAutoFree xlAutoFree12
  xlAddInManagerInfo xlAddInManagerInfo12 xlCheckInstance SetExcel12EntryPt l64BitExe
)

vba_functions=(
  Put_RowIDLongs Put_ColIDLongs Get_RowIDLongs Get_ColIDLongs
  Get_RowIDLong_Count Get_ColIDLong_Count Get_RowIDString_Count
  Destroy_RowIDLong Destroy_ColIDLong Destroy_RowIDString Destroy_Used_TopBottom
)

event_commands=(
  CXllComImpl_OnSheetActivate CXllComImpl_OnSheetDeactivate CXllComImpl_OnCalculate
  CXlApp_ObserverEventHandler12 CXlApp_ObserverEventHandler4
)

# expected_exports TREE: what is generated from the tables says which functions have an 8-bit entry point too.
expected_exports() {
  printf '%s\n' "${entry_points[@]}" "${vba_functions[@]}" "${event_commands[@]}"
  declared_exports "$1" | cut -d ' ' -f 2
}

windows_exports() {
  x86_64-w64-mingw32-objdump -p build/windows/bin/Quillmere4.xll |
    awk '/^\[Ordinal\/Name Pointer\] Table/ { inside = 1; next } inside && /^\t\[/ { print $NF; next } inside { exit }'
}

native_exports() {
  nm -D --defined-only --format=posix build/asan/bin/Quillmere4.xll | cut -d ' ' -f 1
}

# same WHAT EXPECTED ACTUAL: two lists with the same lines, in any order.
same() {
  diff <(sort <<<"$2") <(sort <<<"$3") >/dev/null || {
    echo "$1 (< expected, > found):"
    diff <(sort <<<"$2") <(sort <<<"$3") | grep '^[<>]'
    return 1
  }
}

status=0
same 'exports of the Windows build' "$(expected_exports build/windows)" "$(windows_exports)" || status=1
same 'exports of the native build' "$(expected_exports build/asan)" "$(native_exports)" || status=1
same 'functions that Excel is told of' "$(declared_functions build/windows | cut -d ' ' -f 2)" \
  "$(wine build/windows/bin/qcalc.exe functions | tr -d '\r' | grep '(' | grep -v '^xll_' | sed 's/(.*//; s/\./_/g')" || status=1
exit $status
