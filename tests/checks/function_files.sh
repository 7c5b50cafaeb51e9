#!/usr/bin/env bash
# A function is found by its name: it has a script, tests/scripts/<family>/<name>.calc with the name in lower case and "_"
# for ".", and the head of one .cpp of its family's folder lists it after "Serves". Nothing is scripted or listed that is
# no function; what functions of a family share stands in scripts whose names begin with the family's.
set -euo pipefail
source tests/run/functions.sh

status=0
complain() {
  echo "$1"
  status=1
}

# served FILE: the names that its head lists, with "_" for ".".
served() {
  sed -n '/^\/\//!q; s/^\/\/ \?//p' "$1" | sed -n '/^Serves /,/^$/p' | sed 's/^Serves //; s/\.$//' | tr -s ', ' '\n' | tr . _
}

declare -A declared=() scripts=() servers=()
while read -r family name; do
  declared[$family/$name]=1
  scripts[tests/scripts/$family/${name,,}.calc]=1
done < <(declared_functions build/windows 2>/dev/null)
((${#declared[@]})) || {
  echo 'no function found in what is generated: build the windows preset first'
  exit 1
}

while read -r family; do
  for script in tests/scripts/"$family"/*.calc; do
    [[ -n ${scripts[$script]:-} || $script == */"$family"?(_*).calc ]] || complain "$script: no function of that name"
  done
  while IFS= read -r file; do
    while read -r name; do
      [[ -n ${declared[$family/$name]:-} ]] || complain "$file: serves $name, which is no function of its family"
      servers[$family/$name]+=" $file"
    done < <(served "$file")
  done < <(find "src/$family" -name '*.cpp')
done < <(families)

for script in "${!scripts[@]}"; do
  [[ -e $script ]] || complain "$script: missing"
done
for function in "${!declared[@]}"; do
  read -ra files <<<"${servers[$function]:-}"
  ((${#files[@]} == 1)) || complain "${function#*/}: served by ${#files[@]} files, by their heads: ${files[*]}"
done
exit $status
