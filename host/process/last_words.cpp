#include "host/process/last_words.h"

#include <cstdlib>
#include <exception>
#include <string>

#include "host/process/journal.h"

namespace qcalc {

void EndWithLastWords() {
  std::string words = "std::terminate was called";
  if (const std::exception_ptr thrown = std::current_exception()) {
    words = "an exception left it";
    try {
      std::rethrow_exception(thrown);
    } catch (const std::exception& error) {
      words += std::string(": ") + error.what();
    } catch (...) {
      words += " that is no std::exception";
    }
  }
  ProcessJournal().lastWords.Set(words);
  std::abort();
}

}  // namespace qcalc
