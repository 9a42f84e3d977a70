#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "feeds/alerts/alert_enumerations.h"
#include "shared/outcome.h"
#include "shared/value.h"

namespace linewatch {

/// In the order of their field numbers.
enum class AlertText : std::uint8_t { url, header, description, spokenHeader, spokenDescription };

/// One text of an alert in one language. The bytes are the feed's, and may be no valid UTF-8.
struct AlertTranslation {
  AlertText kind = AlertText::header;
  std::string_view text;
  /// A language tag; empty when not stated.
  std::string_view language;

  bool operator==(const AlertTranslation&) const = default;
};

/// In seconds since 1970. A start or end of 0 is open.
struct AlertPeriod {
  enum class Use : std::uint8_t {
    show,    // when to show the alert
    affect,  // when the service is affected; only in feeds that give both
  };
  Use use = Use::show;
  std::uint64_t start = 0;
  std::uint64_t end = 0;

  bool operator==(const AlertPeriod&) const = default;
};

/// Selects the lines, trips or stops of an alert: they must match all fields that are present. An absent text
/// field is empty.
struct AlertSelector {
  std::string_view agencyId;
  std::string_view routeId;
  /// The route of a trip without an id.
  std::string_view tripRouteId;
  std::optional<std::int32_t> routeType;
  /// The selector is about a single trip.
  bool namesTrip = false;
  std::string_view stopId;
  /// 0 or 1, also that of a trip without an id.
  std::optional<std::uint8_t> direction;

  bool namesStop() const { return !stopId.empty(); }

  bool operator==(const AlertSelector&) const = default;
};

/// The decoded alerts of one payload, which the message keeps because its texts are views into it. Immutable;
/// may be read on any thread.
class AlertsMessage {
 public:
  struct Range {
    std::uint32_t first = 0;
    std::uint32_t count = 0;
  };
  struct Entity {
    std::string_view id;
    /// The entity's bytes in the payload, without tag and length.
    std::string_view bytes;
    bool isDeleted = false;
    /// False for trip updates and vehicle positions, which some feeds carry too.
    bool hasAlert = false;
    AlertCause cause = AlertCause::unknownCause;
    AlertEffect effect = AlertEffect::unknownEffect;
    AlertSeverity severity = AlertSeverity::unknownSeverity;
    Range translations;
    Range periods;
    Range selectors;
  };

  AlertsMessage(const AlertsMessage&) = delete;
  AlertsMessage& operator=(const AlertsMessage&) = delete;

  const Bytes& payload() const { return payload_; }
  const std::string& version() const { return version_; }
  /// True for a message of changes, whose entities replace, add to or delete those of earlier messages.
  bool isDifference() const { return isDifference_; }
  /// Seconds since 1970; 0 when not stated.
  std::uint64_t timestamp() const { return timestamp_; }

  /// In the feed's order.
  std::span<const Entity> entities() const { return entities_; }
  /// Sorted by kind; texts of one kind are in the feed's order.
  std::span<const AlertTranslation> translations(const Entity& entity) const {
    return within(translations_, entity.translations);
  }
  std::span<const AlertPeriod> periods(const Entity& entity) const {
    return within(periods_, entity.periods);
  }
  std::span<const AlertSelector> selectors(const Entity& entity) const {
    return within(selectors_, entity.selectors);
  }

 private:
  friend class AlertsDecoder;
  explicit AlertsMessage(Bytes payload) : payload_(std::move(payload)) {}

  template <class Part>
  static std::span<const Part> within(const std::vector<Part>& parts, Range range) {
    return std::span(parts).subspan(range.first, range.count);
  }

  Bytes payload_;
  std::string version_;
  bool isDifference_ = false;
  std::uint64_t timestamp_ = 0;
  std::vector<Entity> entities_;
  std::vector<AlertTranslation> translations_;
  std::vector<AlertPeriod> periods_;
  std::vector<AlertSelector> selectors_;
};

using SharedAlertsMessage = std::shared_ptr<const AlertsMessage>;

/// Decodes a payload. A header alone is a feed without alerts; a payload without a header is an error. An
/// alert that lacks texts, cause, effect or selectors is kept with the parts it has. The error of a damaged
/// payload says where and why.
Outcome<SharedAlertsMessage> readAlertsMessage(Bytes payload);

}  // namespace linewatch
