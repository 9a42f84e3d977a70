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

namespace linewatch {

/// In the order in which feeds are written.
enum class AlertText : std::uint8_t { url, header, description, spokenHeader, spokenDescription };

/// One text of an alert in one language, as the feed has it: perhaps not even UTF-8.
struct AlertTranslation {
  AlertText kind = AlertText::header;
  std::string_view text;
  /// A language tag; empty when not stated.
  std::string_view language;

  bool operator==(const AlertTranslation&) const = default;
};

/// In seconds since 1970; 0 is an open side.
struct AlertPeriod {
  enum class Use : std::uint8_t {
    show,    // when to show the alert
    affect,  // when the service is affected, where the feed tells the two apart
  };
  Use use = Use::show;
  std::uint64_t start = 0;
  std::uint64_t end = 0;

  bool operator==(const AlertPeriod&) const = default;
};

/// What an alert is about. All that is stated holds at once; an empty text is not stated.
struct AlertSelector {
  std::string_view agencyId;
  std::string_view routeId;
  /// The route of a trip that has no id of its own.
  std::string_view tripRouteId;
  std::optional<std::int32_t> routeType;
  /// It is about a single trip.
  bool namesTrip = false;
  bool namesStop = false;

  bool operator==(const AlertSelector&) const = default;
};

/// The decoded alerts of one payload. The texts are views into the payload, which the message keeps.
/// Immutable; read on any thread.
class AlertsMessage {
 public:
  struct Range {
    std::uint32_t first = 0;
    std::uint32_t count = 0;
  };
  struct Entity {
    std::string_view id;
    /// The whole entity as it stands in the payload, without its tag and length.
    std::string_view bytes;
    bool isDeleted = false;
    /// False for the trip updates and vehicles of a feed of everything.
    bool hasAlert = false;
    AlertCause cause = AlertCause::unknownCause;
    AlertEffect effect = AlertEffect::unknownEffect;
    Range translations;
    Range periods;
    Range selectors;
  };

  AlertsMessage(const AlertsMessage&) = delete;
  AlertsMessage& operator=(const AlertsMessage&) = delete;

  const std::string& payload() const { return payload_; }
  const std::string& version() const { return version_; }
  /// Only what changed since the message before.
  bool isDifference() const { return isDifference_; }
  /// Seconds since 1970; 0 when not stated.
  std::uint64_t timestamp() const { return timestamp_; }

  /// In the feed's order.
  std::span<const Entity> entities() const { return entities_; }
  /// The texts of a kind stand together, each kind in the feed's order.
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
  explicit AlertsMessage(std::string payload) : payload_(std::move(payload)) {}

  template <class Part>
  static std::span<const Part> within(const std::vector<Part>& parts, Range range) {
    return std::span(parts).subspan(range.first, range.count);
  }

  std::string payload_;
  std::string version_;
  bool isDifference_ = false;
  std::uint64_t timestamp_ = 0;
  std::vector<Entity> entities_;
  std::vector<AlertTranslation> translations_;
  std::vector<AlertPeriod> periods_;
  std::vector<AlertSelector> selectors_;
};

using SharedAlertsMessage = std::shared_ptr<const AlertsMessage>;

/// Decodes a payload. A payload without a header is none of a feed; one with a header alone says that all is
/// well. What is incomplete is not broken: an alert without texts, cause, effect or selectors is held with
/// what it has. An error says where in the payload, and why.
Outcome<SharedAlertsMessage> readAlertsMessage(std::string payload);

}  // namespace linewatch
