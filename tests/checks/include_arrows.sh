#!/usr/bin/env bash
# Includes go one way: cmake/rooms.txt has a row for each folder with what it may include, and no folder is missing there.
set -euo pipefail

{
  grep -E '^[a-z]' cmake/rooms.txt
  git ls-files --cached --others --exclude-standard src host | grep -E '\.(h|cpp|S)$'
  grep -rnE '^[[:space:]]*#[[:space:]]*include[[:space:]]*"' src host --include='*.h' --include='*.cpp'
} | awk '
  # The deepest folder with a row that the path lies in; "" where there is none.
  function room_of(path) {
    while (sub(/\/[^\/]*$/, "", path)) if (path in arrows) return path
    return ""
  }
  function complain(text) { print text; failed = 1 }

  /^[^ ]+:[0-9]+:/ {  # an include
    split($0, place, ":")
    split($0, quoted, "\"")
    room = room_of(place[1])
    if (room == "") next
    if (quoted[2] !~ /\//) {
      complain(place[1] ":" place[2] ": \"" quoted[2] "\" is not named from src/ (or from the root, in host/)")
      next
    }
    path = quoted[2] ~ /^(host|implementations)\// ? quoted[2] : "src/" quoted[2]
    count = split(room " src/xlcall " arrows[room], allowed)
    for (i = 1; i <= count; ++i) if (index(path, allowed[i] "/") == 1) next
    complain(place[1] ":" place[2] ": " room " may not include \"" path "\"")
    next
  }
  NF > 1 {  # a row
    folder = $2
    house = substr(folder, 1, index(folder, "/"))
    $1 = $2 = ""
    arrows[folder] = $3 == "above" ? above[house] : $0
    above[house] = above[house] " " folder
    next
  }
  room_of($0) == "" { complain($0 ": its folder has no row in cmake/rooms.txt") }
  END { exit failed }
'
