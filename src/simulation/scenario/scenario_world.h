#pragma once

#include <array>
#include <cstddef>
#include <string_view>
#include <utility>

#include "platform/extension_context.h"
#include "simulation/scenario/scenario_json.h"
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

/// Changes the world by the entries of `object`, except the entry with the key `except`. Times are seconds
/// from the start; every key may be left out.
///
/// The name of a new line or system is its key, and the `muid` of a new line, system or incident is its place
/// in its table, counted from 1, unless the object has others. A key of a line, system or incident that is
/// not in the world is a fault.
void readWorld(Faults& faults, const Place& place, const JsonObject& object, std::string_view except,
               World& world);

}  // namespace linewatch::simulation
