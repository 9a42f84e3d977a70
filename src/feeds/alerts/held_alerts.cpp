#include "feeds/alerts/held_alerts.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <protozero/pbf_writer.hpp>

// Changes are applied to the encoded entities: they are written as a new payload, which is decoded like a
// received one. So only one message is held after any number of changes, and its payload can be cached.

namespace linewatch {

namespace {

/// The bytes of entities by id, in the order in which the ids were first added. An id may have several
/// entities.
class EntitiesById {
 public:
  void add(const AlertsMessage::Entity& entity) { entitiesOf(entity.id).push_back(entity.bytes); }
  void remove(std::string_view id) { entitiesOf(id).clear(); }
  std::vector<std::string_view> all() const {
    std::vector<std::string_view> all;
    for (const auto& entities : entities_) all.insert(all.end(), entities.begin(), entities.end());
    return all;
  }

 private:
  std::vector<std::string_view>& entitiesOf(std::string_view id) {
    const auto [place, isNew] = places_.emplace(id, entities_.size());
    if (isNew) entities_.emplace_back();
    return entities_[place->second];
  }

  std::vector<std::vector<std::string_view>> entities_;
  std::unordered_map<std::string_view, std::size_t> places_;
};

void note(EntitiesById& all, const AlertsMessage::Entity& entity) {
  if (entity.isDeleted) {
    all.remove(entity.id);
  } else {
    all.add(entity);
  }
}

EntitiesById entitiesAfter(const AlertsMessage* held, const AlertsMessage& changes) {
  EntitiesById all;
  if (held) {
    for (const AlertsMessage::Entity& entity : held->entities()) note(all, entity);
  }
  for (const AlertsMessage::Entity& entity : changes.entities()) all.remove(entity.id);
  for (const AlertsMessage::Entity& entity : changes.entities()) note(all, entity);
  return all;
}

struct Header {
  std::string version;
  bool isDifference = false;
  std::uint64_t timestamp = 0;
};

Bytes payloadOf(const Header& header, const std::vector<std::string_view>& entities) {
  std::string headerBytes;
  protozero::pbf_writer headerWriter(headerBytes);
  headerWriter.add_string(1, header.version);
  if (header.isDifference) headerWriter.add_enum(2, 1);
  if (header.timestamp != 0) headerWriter.add_uint64(3, header.timestamp);

  std::string payload;
  protozero::pbf_writer writer(payload);
  writer.add_message(1, headerBytes);
  for (const std::string_view bytes : entities) writer.add_message(2, bytes.data(), bytes.size());
  return {payload.begin(), payload.end()};
}

/// A unique id for an entity of one of several payloads. Ids of the first payload are kept, unless they look
/// like ids made here.
std::string qualifiedId(std::size_t payload, std::string_view id) {
  constexpr char kMark = '\x1F';
  if (id.empty() || (payload == 0 && id.front() != kMark)) return std::string(id);
  return kMark + std::to_string(payload) + ":" + std::string(id);
}

/// The entity with another id. Decoders use the last id of an entity, so it is appended.
std::string withId(std::string_view entity, const std::string& id) {
  std::string bytes(entity);
  protozero::pbf_writer(bytes).add_string(1, id);
  return bytes;
}

/// The earliest of the stated times; 0 when none is stated.
std::uint64_t earliestTime(std::span<const SharedAlertsMessage> messages) {
  std::uint64_t earliest = 0;
  for (const SharedAlertsMessage& message : messages) {
    const std::uint64_t time = message->timestamp();
    if (time != 0 && (earliest == 0 || time < earliest)) earliest = time;
  }
  return earliest;
}

bool isOlder(const AlertsMessage& message, const AlertsMessage& held) {
  return message.timestamp() != 0 && message.timestamp() < held.timestamp();
}

}  // namespace

Outcome<SharedAlertsMessage> updatedAlerts(const SharedAlertsMessage& held,
                                           const SharedAlertsMessage& message) {
  if (held && isOlder(*message, *held)) return held;
  if (!message->isDifference()) return message;
  const std::uint64_t heldTime = held ? held->timestamp() : 0;
  const Header header{.version = message->version(),
                      .isDifference = !held || held->isDifference(),
                      .timestamp = message->timestamp() == 0 ? heldTime : message->timestamp()};
  return readAlertsMessage(payloadOf(header, entitiesAfter(held.get(), *message).all()));
}

Outcome<SharedAlertsMessage> mergedAlerts(std::span<const SharedAlertsMessage> messages) {
  if (messages.size() == 1) return messages.front();
  Header header{.version = messages.front()->version(), .timestamp = earliestTime(messages)};
  std::deque<std::string> changed;
  std::vector<std::string_view> entities;
  for (std::size_t payload = 0; payload < messages.size(); ++payload) {
    header.isDifference |= messages[payload]->isDifference();
    for (const AlertsMessage::Entity& entity : messages[payload]->entities()) {
      if (entity.isDeleted) continue;
      const std::string id = qualifiedId(payload, entity.id);
      entities.push_back(id == entity.id ? entity.bytes : changed.emplace_back(withId(entity.bytes, id)));
    }
  }
  return readAlertsMessage(payloadOf(header, entities));
}

bool hasPlausibleTime(const AlertsMessage& message, Date received) {
  constexpr Seconds kTolerance{300};
  return Date(Seconds(static_cast<double>(message.timestamp()))) <= received + kTolerance;
}

Outcome<SharedAlertsMessage> withoutTime(const AlertsMessage& message) {
  std::vector<std::string_view> entities;
  for (const AlertsMessage::Entity& entity : message.entities()) entities.push_back(entity.bytes);
  return readAlertsMessage(
      payloadOf({.version = message.version(), .isDifference = message.isDifference()}, entities));
}

}  // namespace linewatch
