# shellcheck shell=bash
# What the tables of functions declare, as the generator read them: its sources in a build tree are asked, not the tables.

# families: one a line.
families() {
  local table
  for table in src/functions/*.toml; do
    basename "$table" .toml
  done
}

# declared_exports TREE: of each export its family and its name, NAME_12 or NAME_4.
declared_exports() {
  awk '
    /^#line [0-9]+ "src\/functions\// { split($3, path, /[\/.]/); family = path[3] }
    /^XLL_EXPORT / && match($0, /[A-Za-z0-9_]+\(/) { print family, substr($0, RSTART, RLENGTH - 1) }
  ' "$1/src/functions/generated/exports.cpp"
}

# declared_functions TREE: of each function its family and its registered name with "_" for ".".
declared_functions() {
  declared_exports "$1" | sed -nE 's/_12$//p'
}
