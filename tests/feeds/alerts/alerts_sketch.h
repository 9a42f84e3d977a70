#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <protozero/pbf_writer.hpp>

#include "feeds/alerts/alerts_message.h"
#include "shared/failure.h"

// Alerts as tests describe them, and their encoding.

namespace linewatch {

struct TripSketch {
  std::string tripId, routeId;
  std::string startTime;
  std::optional<std::uint32_t> direction;
};

struct SelectorSketch {
  std::string agency, route;
  std::optional<std::int32_t> type;
  std::optional<TripSketch> trip;
  std::string stop;
  std::optional<std::uint32_t> direction;
};

struct TextSketch {
  std::string text;
  std::string language;
};
using TextsSketch = std::vector<TextSketch>;
using PeriodsSketch = std::vector<std::pair<std::uint64_t, std::uint64_t>>;

struct AlertSketch {
  std::string id;
  std::vector<SelectorSketch> selectors;
  TextsSketch header, description, url;
  std::int32_t cause = 0, effect = 0, severity = 0;
  PeriodsSketch active, communication, impact;
  bool isDeleted = false;
};

struct FeedSketch {
  std::vector<AlertSketch> alerts;
  std::uint64_t timestamp = 1000;
  bool isDifference = false;
};

inline void addText(protozero::pbf_writer& writer, protozero::pbf_tag_type field, std::string_view text) {
  if (!text.empty()) writer.add_string(field, text.data(), text.size());
}

inline std::string bytesOf(const SelectorSketch& selector) {
  std::string bytes;
  protozero::pbf_writer writer(bytes);
  addText(writer, 1, selector.agency);
  addText(writer, 2, selector.route);
  if (selector.type) writer.add_int32(3, *selector.type);
  if (selector.trip) {
    std::string trip;
    protozero::pbf_writer tripWriter(trip);
    addText(tripWriter, 1, selector.trip->tripId);
    addText(tripWriter, 2, selector.trip->startTime);
    addText(tripWriter, 5, selector.trip->routeId);
    if (selector.trip->direction) tripWriter.add_uint32(6, *selector.trip->direction);
    writer.add_message(4, trip);
  }
  addText(writer, 5, selector.stop);
  if (selector.direction) writer.add_uint32(6, *selector.direction);
  return bytes;
}

inline void addTexts(protozero::pbf_writer& alert, protozero::pbf_tag_type field, const TextsSketch& texts) {
  if (texts.empty()) return;
  protozero::pbf_writer all(alert, field);
  for (const TextSketch& text : texts) {
    protozero::pbf_writer translation(all, 1);
    translation.add_string(1, text.text);
    addText(translation, 2, text.language);
  }
}

inline void addPeriods(protozero::pbf_writer& alert, protozero::pbf_tag_type field,
                       const PeriodsSketch& periods) {
  for (const auto& [start, end] : periods) {
    std::string period;
    if (start != 0) protozero::pbf_writer(period).add_uint64(1, start);
    if (end != 0) protozero::pbf_writer(period).add_uint64(2, end);
    alert.add_message(field, period);
  }
}

inline std::string bytesOf(const AlertSketch& sketch) {
  std::string bytes;
  protozero::pbf_writer entity(bytes);
  entity.add_string(1, sketch.id);
  if (sketch.isDeleted) entity.add_bool(2, true);
  std::string alertBytes;
  protozero::pbf_writer alert(alertBytes);
  addPeriods(alert, 1, sketch.active);
  addPeriods(alert, 2, sketch.communication);
  addPeriods(alert, 3, sketch.impact);
  for (const SelectorSketch& selector : sketch.selectors) alert.add_message(5, bytesOf(selector));
  if (sketch.cause != 0) alert.add_int32(6, sketch.cause);
  if (sketch.effect != 0) alert.add_int32(7, sketch.effect);
  addTexts(alert, 8, sketch.url);
  addTexts(alert, 10, sketch.header);
  addTexts(alert, 11, sketch.description);
  if (sketch.severity != 0) alert.add_int32(14, sketch.severity);
  entity.add_message(5, alertBytes);
  return bytes;
}

inline std::string bytesOf(const FeedSketch& sketch) {
  std::string bytes;
  protozero::pbf_writer feed(bytes);
  {
    protozero::pbf_writer header(feed, 1);
    header.add_string(1, "2.0");
    if (sketch.isDifference) header.add_int32(2, 1);
    if (sketch.timestamp != 0) header.add_uint64(3, sketch.timestamp);
  }
  for (const AlertSketch& alert : sketch.alerts) feed.add_message(2, bytesOf(alert));
  return bytes;
}

inline Bytes payloadOf(std::string_view bytes) { return {bytes.begin(), bytes.end()}; }

/// The decoded message of a sketch that can be read.
inline SharedAlertsMessage messageOf(const FeedSketch& sketch) {
  return *readAlertsMessage(payloadOf(bytesOf(sketch)));
}

/// The sentence of an error, or "" of a success.
template <class T>
std::string sentenceOf(const Outcome<T>& outcome) {
  if (outcome) return {};
  return sentenceOf(outcome.error());
}

}  // namespace linewatch
