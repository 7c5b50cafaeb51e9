# shellcheck shell=bash disable=SC2154
# The help: what is made of the functions' table, and how its pages look.

# help_suite NAME PART WANTED BUILD
help_suite() {
  counted_suite "$1" tests/help/help_test.py "build/$4/bin/Quillmere4_functions.json" samples
}

# Every page in Chromium, which is large; pictures of them are left in build/pages.
run_pages() {
  packages+=(chromium chromium-driver python3-selenium)
  setup
  build_preset windows qcalc
  rm -rf build/pages
  help/make_help.py --functions build/windows/bin/Quillmere4_functions.json --samples samples --out build/pages/help
  counted_suite pages tests/help/pages_test.py build/pages/help/html build/pages
}
