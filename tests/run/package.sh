# shellcheck shell=bash disable=SC2154
# What a user installs.

# Makes the package twice, and installs it. Wine is one of its own, with the files of the other: this one's Excel must not
# be the windows of other suites.
setup_suite() {
  local name=$1 log=$logs/$1.log good=0 bad=1 folder=$root/$logs/package file
  export WINEPREFIX=$root/build/wine-setup
  rm -rf "$WINEPREFIX"
  mkdir -p "$WINEPREFIX"
  cp -a "$root"/build/wine/{*.reg,.update-timestamp,dosdevices} "$WINEPREFIX"
  # Temporary files of other suites come and go while this goes through them.
  cp -al "$root/build/wine/drive_c" "$WINEPREFIX" 2>/dev/null || true
  start_wineserver
  if silently pack "$folder/first" 2>"$log" && silently pack "$folder/second" 2>"$log"; then
    read -r good bad < <(run_scripts "$log" tests/package/setup_test.py "$folder/first" build/windows/bin/qcalc.exe) ||
      good=0 bad=1
    for file in "$folder"/first/Quillmere4-*; do
      if cmp "$file" "$folder/second/${file##*/}" >>"$log" 2>&1; then
        good=$((good + 1))
      else
        bad=$((bad + 1))
      fi
    done
  fi
  wineserver -k || true
  report "$name" "$good" "$bad"
}

# The add-in once more, of a clone in another folder and without the compiler's cache: the same bytes. Part of the suite that
# is left out of all.
run_second_build() {
  local folder good=0 bad=0
  folder=$(mktemp -d)
  if (
    git clone -q "$root" "$folder/elsewhere" &&
      cd "$folder/elsewhere" &&
      export CCACHE_DISABLE=1 &&
      cmake --preset windows &&
      cmake --build --preset windows --target Quillmere4 &&
      cmp "$root/build/windows/bin/Quillmere4.xll" build/windows/bin/Quillmere4.xll
  ) >"$logs/package.log" 2>&1; then
    good=1
  else
    bad=1
  fi
  rm -rf "$folder"
  report package "$good" "$bad"
}
