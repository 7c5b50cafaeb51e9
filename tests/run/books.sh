# shellcheck shell=bash disable=SC2154
# Recalculated books against LibreOffice.

run_books() {
  set_up_office
  build_preset native qcalc book_writer
  counted_suite books tests/books/books_test.py build/native/bin/qcalc build/native/bin/book_writer "$logs/books"
}
