// The library of regular expressions, included through here alone, and what becomes of its failures.
#pragma once

// An assertion of the library's that fails for some odd expression must not end the process: it raises instead.
#define BOOST_ENABLE_ASSERT_HANDLER

#include <boost/regex/config.hpp>

// In the place of the library's cache of memory blocks, a static object that is destroyed at the end of a process too.
#define BOOST_REGEX_V5_MEM_BLOCK_CACHE_HPP
namespace boost::BOOST_REGEX_DETAIL_NS {
/// A block of BOOST_REGEX_BLOCKSIZE bytes, and its return; on any thread.
void* get_mem_block();
void put_mem_block(void* block);
}  // namespace boost::BOOST_REGEX_DETAIL_NS

#include <boost/regex.hpp>
#include <cstdint>
#include <limits>

#include "frame/errors/exceptions.h"
#include "frame/text/ansi_text.h"

namespace quillmere {

/// The most that the library may read a number as: it makes an int of a group's, and adds 2.
inline constexpr std::intmax_t kMostRegexNumber = std::numeric_limits<int>::max() - 2;

/// Compiles by `step`; CXlBadRegexException where the expression is none.
template <class Step>
void CompileByLibrary(const Step& step) {
  try {
    step();
  } catch (const boost::regex_error& error) {
    throw CXlBadRegexException(WidenAnsi(error.what()));
  }
}

/// What `step` gives that matches; CXlRegexLimitException where the library gives up.
template <class Step>
auto MatchByLibrary(const Step& step) {
  try {
    return step();
  } catch (const boost::regex_error& error) {
    throw CXlRegexLimitException(WidenAnsi(error.what()));
  }
}

/// The library's text for a failure of its own kind.
inline XString LibraryMessage(boost::regex_constants::error_type error) {
  return WidenAnsi(boost::BOOST_REGEX_DETAIL_NS::get_default_error_string(error));
}

}  // namespace quillmere
