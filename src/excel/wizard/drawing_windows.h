// What is borrowed from Windows to draw with, and given back.
#pragma once

#include <windows.h>

namespace quillmere {

/// A window being painted in answer to WM_PAINT.
class CPainting {
 public:
  explicit CPainting(HWND window) noexcept : window_(window), context_(BeginPaint(window, &paint_)) {}
  CPainting(const CPainting&) = delete;
  CPainting& operator=(const CPainting&) = delete;
  ~CPainting() { EndPaint(window_, &paint_); }

  HDC Context() const noexcept { return context_; }

 private:
  HWND window_;
  PAINTSTRUCT paint_{};
  HDC context_;
};

/// A window's context, to measure with.
class CMeasuring {
 public:
  explicit CMeasuring(HWND window) noexcept : window_(window), context_(GetDC(window)) {}
  CMeasuring(const CMeasuring&) = delete;
  CMeasuring& operator=(const CMeasuring&) = delete;
  ~CMeasuring() { ReleaseDC(window_, context_); }

  HDC Context() const noexcept { return context_; }

 private:
  HWND window_;
  HDC context_;
};

/// A font selected into a context.
class CSelectedFont {
 public:
  CSelectedFont(HDC context, HFONT font) noexcept : context_(context), before_(SelectObject(context, font)) {}
  CSelectedFont(const CSelectedFont&) = delete;
  CSelectedFont& operator=(const CSelectedFont&) = delete;
  ~CSelectedFont() { SelectObject(context_, before_); }

 private:
  HDC context_;
  HGDIOBJ before_;
};

/// The font of a window; where it tells none, the system's message font, in the size for the window's screen.
class CWindowFont {
 public:
  explicit CWindowFont(HWND window) noexcept;
  CWindowFont(const CWindowFont&) = delete;
  CWindowFont& operator=(const CWindowFont&) = delete;
  ~CWindowFont();

  HFONT Handle() const noexcept { return own_ ? own_ : told_; }

 private:
  HFONT told_;
  HFONT own_ = nullptr;
};

inline int WidthOf(const RECT& place) noexcept { return place.right - place.left; }
inline int HeightOf(const RECT& place) noexcept { return place.bottom - place.top; }

}  // namespace quillmere
