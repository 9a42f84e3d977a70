#include "feeds/alerts/held_alerts.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include <protozero/pbf_writer.hpp>

// Changes are applied to the bytes: the entities of both messages are written as one payload, which is then
// decoded like a received one. So one decoded message is held, however many changes came, and its payload can
// be cached.

namespace linewatch {

namespace {

/// The bytes of entities by id, in the order in which the ids first came. Several entities may share an id.
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
