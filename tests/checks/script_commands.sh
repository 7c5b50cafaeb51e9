#!/usr/bin/env bash
# Every command that scripts may use stands in a table of docs/qcalc.md, and no table there has one that is none.
set -euo pipefail

offered=$(sed -nE 's/^ *\{"([a-z~-]+)", "([^"\\]|\\.)*",.*/\1/p' host/scripts/*.cpp | sort -u)
described=$(sed -n '/^## Scripts/,$p' docs/qcalc.md | grep -E '^\| `' | cut -d '|' -f 2 | grep -oE '`[a-z~-]+' | tr -d '`' | sort -u)

[[ -n $offered ]] || { echo 'no command found in host/scripts/*.cpp'; exit 1; }
status=0
comm -3 <(echo "$offered") <(echo "$described") | grep . && status=1
((status == 0)) || echo 'a command without a line in docs/qcalc.md, or (to the right) a line there without a command'
exit $status
