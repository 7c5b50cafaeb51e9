// The application's events that the add-in hears of.
#pragma once

#include <span>

#include "xlcall/xchar.h"

namespace quillmere {

/// The exported command of an event is named with this prefix and the event's name.
inline constexpr XStringView kEventCommandPrefix = XTEXT("CXllComImpl_");

/// The table of events as it is written down: the properties of Excel's Application object that name the macro to be
/// run, closed by the name of the entry point that marks the observer as live.
inline constexpr XStringView kEventTable[] = {
    XTEXT("OnSheetActivate"),
    XTEXT("OnSheetDeactivate"),
    XTEXT("OnCalculate"),
    XTEXT("xlCheckInstance"),
};

/// The events alone, in the order of the table.
inline constexpr std::span kApplicationEvents = std::span(kEventTable).first<std::size(kEventTable) - 1>();

}  // namespace quillmere
