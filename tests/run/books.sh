# shellcheck shell=bash disable=SC2154
# Recalculated books against LibreOffice.

run_books() {
  local good bad
  set_up_office
  build_preset native qcalc book_writer
  echo '0 1' >"$logs/books.result"
  read -r good bad < <(run_scripts "$logs/books.log" tests/books/books_test.py build/native/bin/qcalc \
    build/native/bin/book_writer "$logs/books") || good=0 bad=1
  report books "$good" "$bad"
}
