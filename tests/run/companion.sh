# shellcheck shell=bash disable=SC2154
# The macro-language functions that go beside the add-in, in LibreOffice.

# LibreOffice is large, and nothing else needs it.
set_up_office() {
  command -v soffice >/dev/null || packages+=(libreoffice-calc-nogui)
  packages+=(python3-uno)
  setup
}

run_companion() {
  set_up_office
  companion
  counted_suite companion tests/companion/companion_test.py build/companion/QuillmereVba.xlam
}
