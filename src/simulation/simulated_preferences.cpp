#include "simulation/simulated_preferences.h"

#include <algorithm>
#include <type_traits>
#include <utility>

namespace linewatch::simulation {

namespace {

/// An object lives in the process and cannot be written; everything else can.
bool canBeWritten(const Value& value) {
  return std::visit(
      [](const auto& contents) {
        using Contents = std::decay_t<decltype(contents)>;
        if constexpr (std::is_same_v<Contents, Array>) {
          return std::ranges::all_of(contents, canBeWritten);
        } else if constexpr (std::is_same_v<Contents, Dictionary>) {
          return std::ranges::all_of(contents, [](const auto& entry) { return canBeWritten(entry.second); });
        } else {
          return !std::is_same_v<Contents, std::shared_ptr<const Object>>;
        }
      },
      value.storage());
}

}  // namespace

std::optional<Value> SimulatedPreferencesStore::objectForKey(std::string_view key) const {
  const Dictionary& values = storage_->suite(suite_);
  const auto entry = values.find(std::string(key));
  return entry == values.end() ? std::nullopt : std::optional(entry->second);
}

bool SimulatedPreferencesStore::setObject(Value value, std::string_view key) {
  if (!canBeWritten(value)) {
    const std::string text = "The value for the preferences key " + std::string(key) + " cannot be written.";
    backstage_->transcript->record("log", {{"level", "error"}, {"text", text}});
    return false;
  }
  storage_->suite(suite_).insert_or_assign(std::string(key), std::move(value));
  backstage_->transcript->record("preferencesSet", {{"key", key}});
  return true;
}

void SimulatedPreferencesStore::removeObject(std::string_view key) {
  storage_->suite(suite_).erase(std::string(key));
  backstage_->transcript->record("preferencesRemoved", {{"key", key}});
}

}  // namespace linewatch::simulation
