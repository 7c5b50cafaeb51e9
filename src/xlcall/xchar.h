// The text unit of Excel's API: one UTF-16 code unit, on every build.
//
// Windows has it as wchar_t; elsewhere wchar_t is wider, so char16_t stands in. Code writes XCHAR and the names below
// and never either of the two types.
#pragma once

#include <string>
#include <string_view>

#ifdef _WIN32
using XCHAR = wchar_t;
#define XTEXT_CONCAT(text) L##text
#else
using XCHAR = char16_t;
#define XTEXT_CONCAT(text) u##text
#endif

/// A text literal in units of XCHAR: XTEXT("#N/A").
#define XTEXT(text) XTEXT_CONCAT(text)

static_assert(sizeof(XCHAR) == 2, "XCHAR is one UTF-16 unit");

using XString = std::basic_string<XCHAR>;
using XStringView = std::basic_string_view<XCHAR>;
