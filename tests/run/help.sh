# shellcheck shell=bash disable=SC2154
# The help: what is made of the functions' table, and how its pages look.

# help_suite NAME PART WANTED BUILD
help_suite() {
  local name=$1 good bad
  read -r good bad < <(run_scripts "$logs/$name.log" tests/help/help_test.py "build/$4/bin/Quillmere4_functions.json" \
    samples) || good=0 bad=1
  report "$name" "$good" "$bad"
}

# Every page in Chromium, which is large; pictures of them are left in build/pages.
run_pages() {
  local good bad
  packages+=(chromium chromium-driver python3-selenium)
  setup
  build_preset windows qcalc
  rm -rf build/pages
  help/make_help.py --functions build/windows/bin/Quillmere4_functions.json --samples samples --out build/pages/help
  echo '0 1' >"$logs/pages.result"
  read -r good bad < <(run_scripts "$logs/pages.log" tests/help/pages_test.py build/pages/help/html build/pages) ||
    good=0 bad=1
  report pages "$good" "$bad"
}
