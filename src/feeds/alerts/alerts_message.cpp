#include "feeds/alerts/alerts_message.h"

#include <algorithm>
#include <utility>

#include <protozero/pbf_message.hpp>

#include "shared/failure.h"

// The bytes, as protocol buffer fields "number name: type". Every other field is skipped unread.
//
//   message      1 header                   Header
//                2 entity                   Entity, repeated
//   Header       1 version                  text
//                2 incrementality           0 all, 1 a difference
//                3 timestamp                seconds
//   Entity       1 id                       text
//                2 is_deleted               bool
//                5 alert                    Alert
//   Alert        1 active_period            Period, repeated
//                2 communication_period     Period, repeated
//                3 impact_period            Period, repeated
//                5 informed_entity          Selector, repeated
//                6 cause, 7 effect          enumerations
//                8 url                      Texts
//               10 header_text              Texts
//               11 description_text         Texts
//               12 tts_header_text          Texts
//               13 tts_description_text     Texts
//               14 severity_level           enumeration
//   Period       1 start, 2 end             seconds
//   Selector     1 agency_id                text
//                2 route_id                 text
//                3 route_type               int32
//                4 trip                     Trip
//                5 stop_id                  text
//                6 direction_id             0 or 1
//   Trip         1 trip_id                  text
//                5 route_id                 text
//                6 direction_id             0 or 1
//                7 modified_trip            message
//   Texts        1 translation              Translation, repeated
//   Translation  1 text, 2 language         text
//
// A field of one message that occurs twice is one message with the fields of both, as the encoding defines.

namespace linewatch {

namespace {

using Number = protozero::pbf_tag_type;

enum class MessageField : Number { header = 1, entity = 2 };
enum class HeaderField : Number { version = 1, incrementality = 2, timestamp = 3 };
enum class EntityField : Number { id = 1, isDeleted = 2, alert = 5 };
enum class AlertField : Number {
  activePeriod = 1,
  communicationPeriod = 2,
  impactPeriod = 3,
  informedEntity = 5,
  cause = 6,
  effect = 7,
  url = 8,
  headerText = 10,
  descriptionText = 11,
  spokenHeaderText = 12,
  spokenDescriptionText = 13,
  severityLevel = 14,
};
enum class PeriodField : Number { start = 1, end = 2 };
enum class SelectorField : Number {
  agencyId = 1,
  routeId = 2,
  routeType = 3,
  trip = 4,
  stopId = 5,
  directionId = 6
};
enum class TripField : Number { tripId = 1, routeId = 5, directionId = 6, modifiedTrip = 7 };
enum class TextsField : Number { translation = 1 };
enum class TranslationField : Number { text = 1, language = 2 };

// Entities, texts, periods and selectors together. The largest feeds have a hundredth of it. It bounds the
// memory too, because a decoded part may be fifty times as large as its encoding.
constexpr std::size_t kMostParts = 2'000'000;

struct Fault : protozero::exception {
  explicit Fault(std::string sentence) : why(std::move(sentence)) {}
  const char* what() const noexcept override { return why.c_str(); }
  std::string why;
};

/// Reads the fields of one message in turn. `next` skips a field that the caller has not read. Throws a Fault
/// for a field of an unexpected wire type.
template <class Field>
class Fields : public protozero::pbf_message<Field> {
 public:
  explicit Fields(std::string_view bytes)
      : protozero::pbf_message<Field>(protozero::data_view(bytes.data(), bytes.size())) {}

  bool next() {
    if (isUnread_) skip();
    isUnread_ = protozero::pbf_message<Field>::next();
    return isUnread_;
  }
  void skip() {
    protozero::pbf_message<Field>::skip();
    isUnread_ = false;
  }
  bool is(Field field) const { return this->tag() == field; }

  std::string_view bytes() {
    expect(protozero::pbf_wire_type::length_delimited, "bytes");
    const protozero::data_view view = this->get_view();
    return {view.data(), view.size()};
  }
  std::uint64_t number() {
    expect(protozero::pbf_wire_type::varint, "a number");
    return this->get_uint64();
  }
  std::int32_t integer() {
    expect(protozero::pbf_wire_type::varint, "a number");
    return this->get_int32();
  }

 private:
  void expect(protozero::pbf_wire_type type, const char* name) {
    if (!this->has_wire_type(type)) {
      throw Fault("field " + std::to_string(static_cast<Number>(this->tag())) + " is not " + name);
    }
    isUnread_ = false;
  }

  bool isUnread_ = false;
};

template <class Enumeration>
Enumeration enumerator(std::int32_t value, std::size_t count, Enumeration unknown) {
  return value >= 1 && static_cast<std::size_t>(value) <= count ? static_cast<Enumeration>(value) : unknown;
}

/// Which text of an alert a field holds; absent for the other fields.
std::optional<AlertText> textIn(AlertField field) {
  switch (field) {
    case AlertField::url:
      return AlertText::url;
    case AlertField::headerText:
      return AlertText::header;
    case AlertField::descriptionText:
      return AlertText::description;
    case AlertField::spokenHeaderText:
      return AlertText::spokenHeader;
    case AlertField::spokenDescriptionText:
      return AlertText::spokenDescription;
    default:
      return std::nullopt;
  }
}

std::string_view textOf(const Bytes& bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

/// Names the format of a payload that is no GTFS-Realtime message; empty when it is not recognised.
std::string_view guessAtContent(std::string_view payload) {
  if (payload.empty()) return "the payload is empty";
  if (payload.front() == '<') return "a page of markup, not a GTFS-Realtime message";
  if (payload.front() == '{' || payload.front() == '[') return "JSON text, not a GTFS-Realtime message";
  if (payload.starts_with("PK\x03\x04")) return "a zip archive, not a GTFS-Realtime message";
  if (payload.starts_with("\x1F\x8B")) return "compressed data, not a GTFS-Realtime message";
  return {};
}

AlertPeriod readPeriod(std::string_view bytes, AlertPeriod::Use use) {
  AlertPeriod period{.use = use};
  for (Fields<PeriodField> fields(bytes); fields.next();) {
    if (fields.is(PeriodField::start)) period.start = fields.number();
    if (fields.is(PeriodField::end)) period.end = fields.number();
  }
  return period;
}

AlertTranslation readTranslation(std::string_view bytes, AlertText kind) {
  AlertTranslation translation{.kind = kind};
  for (Fields<TranslationField> fields(bytes); fields.next();) {
    if (fields.is(TranslationField::text)) translation.text = fields.bytes();
    if (fields.is(TranslationField::language)) translation.language = fields.bytes();
  }
  return translation;
}

/// Absent for a number that is no direction.
std::optional<std::uint8_t> directionOf(std::uint64_t number) {
  return number <= 1 ? std::optional(static_cast<std::uint8_t>(number)) : std::nullopt;
}

struct Trip {
  std::string_view routeId;
  std::optional<std::uint8_t> direction;
  bool isNamed = false;
  bool isStated = false;
};

void readTrip(std::string_view bytes, Trip& trip) {
  for (Fields<TripField> fields(bytes); fields.next();) {
    trip.isStated = true;
    const bool isName = fields.is(TripField::tripId) || fields.is(TripField::modifiedTrip);
    if (isName) trip.isNamed |= !fields.bytes().empty();
    if (fields.is(TripField::routeId)) trip.routeId = fields.bytes();
    if (fields.is(TripField::directionId)) trip.direction = directionOf(fields.number());
  }
}

AlertSelector readSelector(std::string_view bytes) {
  AlertSelector selector;
  Trip trip;
  for (Fields<SelectorField> fields(bytes); fields.next();) {
    if (fields.is(SelectorField::agencyId)) selector.agencyId = fields.bytes();
    if (fields.is(SelectorField::routeId)) selector.routeId = fields.bytes();
    if (fields.is(SelectorField::routeType)) selector.routeType = fields.integer();
    if (fields.is(SelectorField::trip)) readTrip(fields.bytes(), trip);
    if (fields.is(SelectorField::stopId)) selector.stopId = fields.bytes();
    if (fields.is(SelectorField::directionId)) selector.direction = directionOf(fields.number());
  }
  selector.tripRouteId = trip.routeId;
  if (!selector.direction) selector.direction = trip.direction;
  // A trip without id and route, e.g. a start time alone, is about that trip only.
  const bool tellsRoute = !selector.routeId.empty() || !trip.routeId.empty();
  selector.namesTrip = trip.isNamed || (trip.isStated && !tellsRoute);
  return selector;
}

}  // namespace

/// Decodes a payload and keeps track of the position for error messages.
class AlertsDecoder {
 public:
  static Outcome<SharedAlertsMessage> read(Bytes payload) {
    AlertsDecoder decoder(std::move(payload));
    const auto failed = [&](const std::string& place, std::string_view why) {
      const std::string_view guess = guessAtContent(textOf(decoder.message_->payload_));
      if (!guess.empty()) return failure(FailureCode::malformed, guess, "", "");
      return failure(FailureCode::malformed, "damaged, or not a GTFS-Realtime message", place, why);
    };
    if (const auto fault = decoder.readWhole()) return failed(decoder.place(), *fault);
    if (!decoder.sawHeader_) return failed("", "it has no header");
    return SharedAlertsMessage(std::move(decoder.message_));
  }

 private:
  enum class Place { none, header, entity };

  // Reserves the parts that a usual feed of this size has. Unused memory is never touched.
  explicit AlertsDecoder(Bytes payload) : message_(new AlertsMessage(std::move(payload))) {
    const std::size_t size = message_->payload_.size();
    message_->entities_.reserve(size / 512);
    message_->translations_.reserve(size / 96);
    message_->periods_.reserve(size / 256);
    message_->selectors_.reserve(size / 192);
  }

  std::string place() const {
    const std::string byte = "byte " + std::to_string(offset_);
    if (part_ == Place::header) return "header at " + byte;
    return part_ == Place::entity ? "entity " + std::to_string(entityNumber_) + " at " + byte : byte;
  }

  // Remembers which part is read next, for error messages.
  std::string_view enter(Place part, std::string_view bytes) {
    part_ = part;
    offset_ = static_cast<std::size_t>(bytes.data() - textOf(message_->payload_).data());
    return bytes;
  }

  /// The fault that stopped the reading; absent when the whole payload was read.
  std::optional<std::string> readWhole() {
    try {
      readMessage();
    } catch (const Fault& fault) {
      return fault.why;
    } catch (const protozero::end_of_buffer_exception&) {
      return "it ends in the middle of a field";
    } catch (const protozero::unknown_pbf_wire_type_exception&) {
      return "a field with an unknown wire type";
    } catch (const protozero::invalid_tag_exception&) {
      return "an invalid field number";
    } catch (const protozero::exception&) {
      return "an invalid number";
    }
    return std::nullopt;
  }

  void readMessage() {
    for (Fields<MessageField> fields(textOf(message_->payload_)); fields.next(); leave(fields.length())) {
      switch (fields.tag()) {
        case MessageField::header:
          readHeader(enter(Place::header, fields.bytes()));
          break;
        case MessageField::entity:
          ++entityNumber_;
          readEntity(enter(Place::entity, fields.bytes()));
          break;
        default:
          fields.skip();
      }
    }
  }
  void leave(std::size_t rest) {
    part_ = Place::none;
    offset_ = message_->payload_.size() - rest;
  }

  void readHeader(std::string_view bytes) {
    sawHeader_ = true;
    for (Fields<HeaderField> fields(bytes); fields.next();) {
      if (fields.is(HeaderField::version)) message_->version_ = fields.bytes();
      if (fields.is(HeaderField::incrementality)) message_->isDifference_ = fields.integer() == 1;
      if (fields.is(HeaderField::timestamp)) message_->timestamp_ = fields.number();
    }
  }

  void readEntity(std::string_view bytes) {
    AlertsMessage::Entity entity{.bytes = bytes,
                                 .translations = startOf(message_->translations_),
                                 .periods = startOf(message_->periods_),
                                 .selectors = startOf(message_->selectors_)};
    for (Fields<EntityField> fields(bytes); fields.next();) {
      if (fields.is(EntityField::id)) entity.id = fields.bytes();
      if (fields.is(EntityField::isDeleted)) entity.isDeleted = fields.number() != 0;
      if (fields.is(EntityField::alert)) {
        entity.hasAlert = true;
        readAlert(fields.bytes(), entity);
      }
    }
    if (!entity.hasAlert && !entity.isDeleted) return;
    finish(entity);
    add(entity, message_->entities_);
  }

  void readAlert(std::string_view bytes, AlertsMessage::Entity& entity) {
    for (Fields<AlertField> fields(bytes); fields.next();) {
      switch (fields.tag()) {
        case AlertField::activePeriod:
          add(readPeriod(fields.bytes(), AlertPeriod::Use::show), olderPeriods_);
          break;
        case AlertField::communicationPeriod:
          add(readPeriod(fields.bytes(), AlertPeriod::Use::show), message_->periods_);
          break;
        case AlertField::impactPeriod:
          add(readPeriod(fields.bytes(), AlertPeriod::Use::affect), message_->periods_);
          break;
        case AlertField::informedEntity:
          add(readSelector(fields.bytes()), message_->selectors_);
          break;
        case AlertField::cause:
          entity.cause = enumerator(fields.integer(), kAlertCauses, AlertCause::unknownCause);
          break;
        case AlertField::effect:
          entity.effect = enumerator(fields.integer(), kAlertEffects, AlertEffect::unknownEffect);
          break;
        case AlertField::severityLevel:
          entity.severity = enumerator(fields.integer(), kAlertSeverities, AlertSeverity::unknownSeverity);
          break;
        default:
          if (const auto text = textIn(fields.tag())) readTexts(fields.bytes(), *text);
      }
    }
  }

  void readTexts(std::string_view bytes, AlertText kind) {
    for (Fields<TextsField> fields(bytes); fields.next();) {
      if (fields.is(TextsField::translation)) {
        add(readTranslation(fields.bytes(), kind), message_->translations_);
      }
    }
  }

  // active_period counts only for an alert without communication and impact periods.
  void finish(AlertsMessage::Entity& entity) {
    std::vector<AlertPeriod>& periods = message_->periods_;
    if (periods.size() == entity.periods.first) {
      periods.insert(periods.end(), olderPeriods_.begin(), olderPeriods_.end());
    }
    olderPeriods_.clear();
    close(entity.periods, periods.size());
    close(entity.selectors, message_->selectors_.size());
    close(entity.translations, message_->translations_.size());
    const auto texts = message_->translations_.begin() + entity.translations.first;
    const auto end = message_->translations_.end();
    const auto byKind = [](const AlertTranslation& a, const AlertTranslation& b) { return a.kind < b.kind; };
    if (!std::is_sorted(texts, end, byKind)) std::stable_sort(texts, end, byKind);
  }

  template <class Parts>
  static AlertsMessage::Range startOf(const Parts& parts) {
    return {static_cast<std::uint32_t>(parts.size()), 0};
  }
  static void close(AlertsMessage::Range& range, std::size_t end) {
    range.count = static_cast<std::uint32_t>(end) - range.first;
  }

  template <class Part>
  void add(const Part& part, std::vector<Part>& parts) {
    if (++parts_ > kMostParts)
      throw Fault("more than " + std::to_string(kMostParts) + " entities, texts, periods and selectors");
    parts.push_back(part);
  }

  std::unique_ptr<AlertsMessage> message_;
  std::vector<AlertPeriod> olderPeriods_;
  bool sawHeader_ = false;
  Place part_ = Place::none;
  std::size_t entityNumber_ = 0;
  std::size_t offset_ = 0;
  std::size_t parts_ = 0;
};

Outcome<SharedAlertsMessage> readAlertsMessage(Bytes payload) {
  return AlertsDecoder::read(std::move(payload));
}

}  // namespace linewatch
