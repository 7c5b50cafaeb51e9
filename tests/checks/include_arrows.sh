#!/usr/bin/env bash
# Includes go one way: cmake/rooms.txt has a row for each folder with what it may include, and no folder is missing there.
set -euo pipefail

declare -A allowed=()
declare -A above=()
while read -r _ folder arrows; do
  house=${folder%%/*}
  if [[ $arrows == above ]]; then
    allowed[$folder]=${above[$house]:-}
  else
    allowed[$folder]=$arrows
  fi
  above[$house]+=" $folder"
done < <(grep -E '^[a-z]' cmake/rooms.txt)

# room_of PATH: the deepest folder with a row that PATH lies in; PATH itself where there is none.
declare -A room_of=()
find_room() {
  local folder=${1%/*}
  if [[ -z ${room_of[$folder]:-} ]]; then
    room=$folder
    while [[ -z ${allowed[$room]+row} && $room == */* ]]; do room=${room%/*}; done
    [[ -n ${allowed[$room]+row} ]] || room=$folder
    room_of[$folder]=$room
  fi
  room=${room_of[$folder]}
}

# may_include ROOM INCLUDED: whether the room of INCLUDED, or a folder that it lies in, stands in ROOM's row.
may_include() {
  local arrow
  for arrow in "$1" src/xlcall ${allowed[$1]}; do
    [[ $2 == "$arrow"/* ]] && return
  done
  return 1
}

status=0
complain() {
  echo "$1"
  status=1
}

while IFS= read -r file; do
  find_room "$file"
  [[ -n ${allowed[$room]+row} ]] || complain "$file: its folder has no row in cmake/rooms.txt"
done < <(git ls-files --cached --others --exclude-standard src host | grep -E '\.(h|cpp|S)$')

while IFS=: read -r file line include; do
  find_room "$file"
  from=$room
  [[ -n ${allowed[$from]+row} ]] || continue
  included=${include#*\"}
  included=${included%%\"*}
  if [[ $included != */* ]]; then
    complain "$file:$line: \"$included\" is not named from src/ (or from the root, in host/)"
    continue
  fi
  [[ $included == host/* || $included == implementations/* ]] || included=src/$included
  find_room "$included"
  [[ $room == "$from" ]] || may_include "$from" "$included" || complain "$file:$line: $from may not include \"$included\""
done < <(grep -rnE '^[[:space:]]*#[[:space:]]*include[[:space:]]*"' src host --include='*.h' --include='*.cpp')
exit $status
