#pragma once

#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

#include "platform/extension_context.h"
#include "simulation/scenario/json_document.h"
#include "simulation/scenario/scenario_reading.h"
#include "simulation/world/world.h"
#include "ui/text_style.h"

namespace linewatch::simulation {

template <>
struct Names<WidgetDisplayMode> {
  static constexpr std::array table = {std::pair{"compact", WidgetDisplayMode::compact},
                                       std::pair{"expanded", WidgetDisplayMode::expanded}};
};

template <>
struct Names<ui::TextSizeCategory> {
  static constexpr auto table = [] {
    std::array<std::pair<std::string_view, ui::TextSizeCategory>, ui::kTextSizeCategoryNames.size()> named;
    for (std::size_t i = 0; i < named.size(); ++i) {
      named[i] = {ui::kTextSizeCategoryNames[i], static_cast<ui::TextSizeCategory>(i)};
    }
    return named;
  }();
};

/// Changes the world by the entries of `object`, but for the one of the key `except`. Times are seconds from
/// the start; every key may be left out.
///
/// A new line or system is named by its key, and a new line, system or incident without a `muid` gets its
/// place in its table, counted from 1. A favourite, a line's system or a line's incident that the world does
/// not hold is a fault.
void readWorld(Faults& faults, const Place& place, const JsonObject& object, std::string_view except,
               World& world);

}  // namespace linewatch::simulation
