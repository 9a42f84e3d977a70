#include "feeds/alerts/held_alerts.h"

#include <cstdint>
#include <unordered_map>
#include <utility>
#include <vector>

#include <protozero/pbf_writer.hpp>

// Changes are made on the bytes: the entities of both payloads are put together into a payload that says
// everything and is read like any other. So one decoded message is all there is to hold, however many changes
// came.

namespace linewatch {

namespace {

/// Entities by id, in the order in which their ids first came. An id may stand for several.
class EntitiesById {
 public:
  void add(const AlertsMessage::Entity& entity) { entitiesOf(entity.id).push_back(entity.bytes); }
  void remove(std::string_view id) { entitiesOf(id).clear(); }
  template <class Operation>
  void forEach(Operation operation) const {
    for (const auto& entities : entities_) {
      for (const std::string_view bytes : entities) operation(bytes);
    }
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

std::string payloadOf(const AlertsMessage& changes, std::uint64_t timestamp, const EntitiesById& entities) {
  std::string header;
  protozero::pbf_writer headerWriter(header);
  headerWriter.add_string(1, changes.version());
  headerWriter.add_uint64(3, timestamp);

  std::string payload;
  protozero::pbf_writer writer(payload);
  writer.add_message(1, header);
  entities.forEach([&](std::string_view bytes) { writer.add_message(2, bytes.data(), bytes.size()); });
  return payload;
}

}  // namespace

Outcome<SharedAlertsMessage> updatedAlerts(const SharedAlertsMessage& held, std::string payload) {
  Outcome<SharedAlertsMessage> read = readAlertsMessage(std::move(payload));
  if (!read) return read;
  const AlertsMessage& message = **read;
  const bool isOlder = held && message.timestamp() != 0 && message.timestamp() < held->timestamp();
  if (isOlder) return held;
  if (!message.isDifference()) return read;
  const std::uint64_t timestamp = message.timestamp() == 0 && held ? held->timestamp() : message.timestamp();
  return readAlertsMessage(payloadOf(message, timestamp, entitiesAfter(held.get(), message)));
}

}  // namespace linewatch
