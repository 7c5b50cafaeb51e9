#include "samples/writer/styles.h"

namespace samples {
namespace {

constexpr lxw_color_t kDark = 0x1F3864, kLine = 0xBFC7D5, kBlue = 0xD9E2F3, kYellow = 0xFFF7DB, kPaleYellow = 0xFFFCF0,
                      kGreen = 0xDDEBDA, kPaleGreen = 0xF4F9F3, kPaleGrey = 0xF2F2F2, kWhite = 0xFFFFFF;

void Fill(lxw_format* format, lxw_color_t color) {
  format_set_pattern(format, LXW_PATTERN_SOLID);
  format_set_bg_color(format, color);
}

void Box(lxw_format* format, lxw_color_t color) {
  Fill(format, color);
  format_set_border(format, LXW_BORDER_THIN);
  format_set_border_color(format, kLine);
}

void Header(lxw_format* format, lxw_color_t color) {
  format_set_bold(format);
  Box(format, color);
}

void Apply(lxw_format* format, Style style) {
  switch (style) {
    case Style::kTitle:
      format_set_font_size(format, 20);
      format_set_bold(format);
      format_set_font_color(format, kDark);
      break;
    case Style::kHeading:
      format_set_font_size(format, 13);
      format_set_bold(format);
      format_set_font_color(format, kDark);
      format_set_bottom(format, LXW_BORDER_MEDIUM);
      format_set_bottom_color(format, kDark);
      break;
    case Style::kText:
      format_set_text_wrap(format);
      format_set_align(format, LXW_ALIGN_VERTICAL_TOP);
      break;
    case Style::kLink:
      format_set_underline(format, LXW_UNDERLINE_SINGLE);
      format_set_font_color(format, 0x0563C1);
      format_set_align(format, LXW_ALIGN_VERTICAL_TOP);
      break;
    case Style::kFormulaText:
      format_set_font_name(format, "Consolas");
      format_set_font_size(format, 9);
      format_set_font_color(format, kDark);
      format_set_text_wrap(format);
      format_set_align(format, LXW_ALIGN_VERTICAL_TOP);
      Fill(format, kPaleGrey);
      break;
    case Style::kDataHeader:
      Header(format, kDark);
      format_set_font_color(format, kWhite);
      break;
    case Style::kData:
      break;
    case Style::kInputHeader:
      Header(format, kYellow);
      break;
    case Style::kInput:
      Box(format, kPaleYellow);
      break;
    case Style::kResultHeader:
      Header(format, kGreen);
      break;
    case Style::kResult:
      Box(format, kPaleGreen);
      break;
  }
}

bool IsHeader(Style style) {
  return style == Style::kDataHeader || style == Style::kInputHeader || style == Style::kResultHeader;
}

/// Texts keep away from the numbers on their left, and headers stand above what they head.
void Align(lxw_format* format, Style style, bool ofNumbers) {
  const bool isCell = IsHeader(style) || style == Style::kData || style == Style::kInput || style == Style::kResult;
  if (isCell && !ofNumbers) {
    format_set_align(format, LXW_ALIGN_LEFT);
    format_set_indent(format, 1);
  } else if (IsHeader(style)) {
    format_set_align(format, LXW_ALIGN_RIGHT);
  }
}

}  // namespace

lxw_format* Styles::Get(Style style, const std::string& numbers) {
  lxw_format*& format = made_[{style, numbers}];
  if (format) return format;
  format = workbook_add_format(book_);
  Apply(format, style);
  Align(format, style, !numbers.empty());
  if (!numbers.empty() && !IsHeader(style)) format_set_num_format(format, numbers.c_str());
  return format;
}

}  // namespace samples
