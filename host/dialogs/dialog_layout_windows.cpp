#include "host/dialogs/dialog_layout_windows.h"

#include <oleacc.h>

namespace qcalc {
namespace dialog_layout {
namespace {

constexpr RECT kFrame{8, 6, 532, 156};
constexpr int kFirstRow = 24;
constexpr int kRowPitch = 26;
constexpr int kBoxHeight = 21;

// From left to right: the label, the box, the button that makes the dialog small, the value.
constexpr int kLabelLeft = 18;
constexpr int kBoxLeft = 150;
constexpr int kBoxRight = 330;
constexpr int kCollapseRight = 350;
constexpr int kValueLeft = 358;
constexpr int kValueRight = 504;
constexpr int kTextRight = 524;

RECT Row(std::size_t row, int left, int right) {
  const int top = kFirstRow + kRowPitch * static_cast<int>(row);
  return {left, top, right, top + kBoxHeight};
}

}  // namespace

RECT Box(std::size_t box) { return Row(box, kBoxLeft, kBoxRight); }

std::vector<DrawnElement> Elements(const DialogContents& contents, std::size_t currentArgument) {
  const DialogPage& page = contents.page;
  constexpr LONG kText = ROLE_SYSTEM_STATICTEXT;
  std::vector<DrawnElement> elements{{page.FunctionName(), ROLE_SYSTEM_GROUPING, kFrame}};
  for (std::size_t row = 0; row < page.Boxes(); ++row) {
    const std::size_t argument = page.First() + row;
    const XString& text = page.TextOf(argument);
    elements.push_back({.text = page.NameOf(argument),
                        .role = kText,
                        .place = Row(row, kLabelLeft, kBoxLeft - 6),
                        .isNamed = contents.isLabelled});
    elements.push_back({XTEXT("Collapse Dialog"), ROLE_SYSTEM_PUSHBUTTON, Row(row, kBoxRight, kCollapseRight)});
    elements.push_back({.text = XTEXT("= ") + (text.empty() ? XString(XTEXT("any")) : text),
                        .role = kText,
                        .place = Row(row, kValueLeft, kValueRight),
                        .isGrey = text.empty()});
  }
  elements.push_back({XTEXT("="), kText, {kValueLeft, 160, kValueRight, 176}});
  elements.push_back({page.FunctionHelp(), kText, {kLabelLeft, 178, kTextRight, 222}});
  if (currentArgument < page.Count()) {
    elements.push_back({.text = page.NameOf(currentArgument),
                        .role = kText,
                        .place = {kLabelLeft, 225, kBoxLeft - 6, 239},
                        .isBold = true,
                        .isNamed = false});
    elements.push_back({page.HelpOf(currentArgument), kText, {kBoxLeft, 226, kTextRight, 270}});
  }
  elements.push_back({XTEXT("Formula result ="), kText, {kLabelLeft, 274, kBoxRight, 290}});
  elements.push_back({XTEXT("Help on this function"), ROLE_SYSTEM_LINK, {kLabelLeft, 298, kBoxRight, 314}});
  return elements;
}

}  // namespace dialog_layout

namespace {

HFONT MessageFont(LONG weight) {
  NONCLIENTMETRICSW metrics{};
  metrics.cbSize = sizeof metrics;
  SystemParametersInfoW(SPI_GETNONCLIENTMETRICS, sizeof metrics, &metrics, 0);
  metrics.lfMessageFont.lfWeight = weight;
  return CreateFontIndirectW(&metrics.lfMessageFont);
}

void DrawGroup(HDC device, const DrawnElement& group) {
  constexpr int kIndent = 10;
  constexpr int kCaptionHeight = 14;
  RECT frame = group.place;
  frame.top += kCaptionHeight / 2;
  DrawEdge(device, &frame, EDGE_ETCHED, BF_RECT);
  RECT caption{frame.left + kIndent, group.place.top, frame.right - kIndent, group.place.top + kCaptionHeight};
  SetBkMode(device, OPAQUE);
  SetBkColor(device, GetSysColor(COLOR_BTNFACE));
  DrawTextW(device, group.text.c_str(), -1, &caption, DT_SINGLELINE | DT_NOPREFIX | DT_VCENTER);
  SetBkMode(device, TRANSPARENT);
}

/// The button beside a box, with its picture of a range on a sheet.
void DrawCollapseButton(HDC device, const DrawnElement& button) {
  RECT frame = button.place;
  DrawFrameControl(device, &frame, DFC_BUTTON, DFCS_BUTTONPUSH);
  InflateRect(&frame, -5, -6);
  FrameRect(device, &frame, GetSysColorBrush(COLOR_BTNTEXT));
}

void DrawLabel(HDC device, const DrawnElement& label) {
  constexpr int kLineHeight = 22;
  RECT place = label.place;
  const bool isLine = place.bottom - place.top <= kLineHeight;
  constexpr COLORREF kLinkColor = RGB(0x05, 0x63, 0xC1);
  SetTextColor(
      device, label.role == ROLE_SYSTEM_LINK ? kLinkColor : GetSysColor(label.isGrey ? COLOR_GRAYTEXT : COLOR_BTNTEXT));
  DrawTextW(device, label.text.c_str(), -1, &place,
            DT_NOPREFIX | DT_END_ELLIPSIS | (isLine ? DT_SINGLELINE | DT_VCENTER : DT_WORDBREAK | DT_EDITCONTROL));
}

}  // namespace

DialogFonts::DialogFonts() : plain_(MessageFont(FW_NORMAL)), bold_(MessageFont(FW_BOLD)) {}

DialogFonts::~DialogFonts() {
  DeleteObject(plain_);
  DeleteObject(bold_);
}

void Draw(HDC device, const std::vector<DrawnElement>& elements, const DialogFonts& fonts) {
  const HGDIOBJ before = SelectObject(device, fonts.Plain());
  SetBkMode(device, TRANSPARENT);
  for (const DrawnElement& element : elements) {
    SelectObject(device, element.isBold ? fonts.Bold() : fonts.Plain());
    switch (element.role) {
      case ROLE_SYSTEM_GROUPING:
        DrawGroup(device, element);
        break;
      case ROLE_SYSTEM_PUSHBUTTON:
        DrawCollapseButton(device, element);
        break;
      default:
        DrawLabel(device, element);
    }
  }
  SelectObject(device, before);
}

}  // namespace qcalc
