#!/usr/bin/env bash
# Includes go one way: functions -> families -> table -> frame -> xlcall. Families do not include each other, but for the
# few that are plainly built on another. The host knows Excel's C API and nothing else of the add-in.
set -euo pipefail

declare -A allowed=(
  [xlcall]='xlcall'
  [frame]='frame xlcall'
  [excel]='excel frame xlcall'
  [table]='table frame xlcall'
  [lookup]='lookup text workbook'
  [criteria]='criteria text'
  [sort]='sort'
  [shape]='shape'
  [logic]='logic'
  [text]='text logic'
  [series]='series'
  [workbook]='workbook'
  [functions]='functions lookup criteria sort shape logic text series workbook table frame xlcall'
  [host]='host xlcall'
)
for family in lookup criteria sort shape logic text series workbook; do
  allowed[$family]+=' implementations table frame xlcall'
done
allowed[functions]+=' implementations'

status=0
while IFS=: read -r file line include; do
  room=${file#src/}
  room=${room%%/*}
  included=${include#*\"}
  included=${included%%\"*}
  if [[ -z ${allowed[$room]:-} ]]; then
    echo "$file: no arrow is known for the folder $room"
    status=1
  elif [[ $included != */* ]]; then
    echo "$file:$line: \"$included\" is not named from src/ (or from the root, in host/)"
    status=1
  elif [[ " ${allowed[$room]} " != *" ${included%%/*} "* ]]; then
    echo "$file:$line: $room may not include \"$included\""
    status=1
  fi
done < <(grep -rnE '^[[:space:]]*#[[:space:]]*include[[:space:]]*"' src host --include='*.h' --include='*.cpp')
exit $status
