# shellcheck shell=bash disable=SC2154
# The macro-language functions that go beside the add-in, in LibreOffice.

# LibreOffice is large, and nothing else needs it.
set_up_office() {
  command -v soffice >/dev/null || packages+=(libreoffice-calc-nogui)
  packages+=(python3-uno)
  setup
}

run_companion() {
  local good bad
  set_up_office
  companion
  echo '0 1' >"$logs/companion.result"
  read -r good bad < <(run_scripts "$logs/companion.log" tests/companion/companion_test.py \
    build/companion/QuillmereVba.xlam) || good=0 bad=1
  report companion "$good" "$bad"
}
