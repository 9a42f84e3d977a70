#pragma once

#include <string_view>
#include <tuple>

#include "simulation/scenario/scenario.h"
#include "simulation/scenario/scenario_reading.h"
#include "simulation/scenario/scenario_world.h"

/// The names and keys of steps in JSON, which the reader and the writer share. For their source files.
namespace linewatch::simulation {

inline constexpr std::string_view kKindKey = "do";
inline constexpr std::string_view kStepsKey = "steps";

namespace detail {

/// In a longer time a repeating timer fires so often that the run takes too long.
inline constexpr Seconds kLongestAdvance{366 * 86400.0};

inline const char* canBeAdvanced(const Seconds& seconds) {
  if (seconds < Seconds(0)) return "must not be negative";
  return seconds > kLongestAdvance ? "must be at most 31622400, a year" : nullptr;
}

struct NoKeys {
  static constexpr std::tuple<> table{};
};

}  // namespace detail

template <>
struct Keys<step::Load> : detail::NoKeys {
  static constexpr std::string_view name = "load";
};
template <>
struct Keys<step::Appear> : detail::NoKeys {
  static constexpr std::string_view name = "appear";
};
template <>
struct Keys<step::Disappear> : detail::NoKeys {
  static constexpr std::string_view name = "disappear";
};
template <>
struct Keys<step::MemoryWarning> : detail::NoKeys {
  static constexpr std::string_view name = "memoryWarning";
};
template <>
struct Keys<step::Answer> : detail::NoKeys {
  static constexpr std::string_view name = "answer";
};
template <>
struct Keys<step::Snapshot> : detail::NoKeys {
  static constexpr std::string_view name = "snapshot";
};
template <>
struct Keys<step::Release> : detail::NoKeys {
  static constexpr std::string_view name = "release";
};
template <>
struct Keys<step::Restart> : detail::NoKeys {
  static constexpr std::string_view name = "restart";
};
template <>
struct Keys<step::Update> {
  static constexpr std::string_view name = "update";
  static constexpr auto table = std::tuple{key("id", &step::Update::id)};
};
template <>
struct Keys<step::Advance> {
  static constexpr std::string_view name = "advance";
  static constexpr auto table =
      std::tuple{key("seconds", &step::Advance::seconds).required().checked(detail::canBeAdvanced)};
};
template <>
struct Keys<step::DisplayMode> {
  static constexpr std::string_view name = "displayMode";
  static constexpr auto table = std::tuple{key("mode", &step::DisplayMode::mode).required()};
};
template <>
struct Keys<step::Tap> {
  static constexpr std::string_view name = "tap";
  static constexpr auto table = std::tuple{key("row", &step::Tap::row).required()};
};
template <>
struct Keys<step::Resize> {
  static constexpr std::string_view name = "resize";
  static constexpr auto table = std::tuple{key("width", &step::Resize::width).required(),
                                           key("height", &step::Resize::height).required()};
};
template <>
struct Keys<step::Limits> {
  static constexpr std::string_view name = "limits";
  static constexpr auto table = std::tuple{key("compact", &step::Limits::compact).required(),
                                           key("expanded", &step::Limits::expanded).required()};
};
template <>
struct Keys<step::TextSize> {
  static constexpr std::string_view name = "textSize";
  static constexpr auto table = std::tuple{key("category", &step::TextSize::category).required()};
};

/// The keys of a `set` are those of the world.
template <>
struct Keys<step::Set> : detail::NoKeys {
  static constexpr std::string_view name = "set";
};

}  // namespace linewatch::simulation
