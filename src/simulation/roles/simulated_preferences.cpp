#include "simulation/roles/simulated_preferences.h"

#include <algorithm>
#include <utility>

namespace linewatch::simulation {

namespace {

/// Whether a value can be written. Only an object of the process cannot.
struct CanBeWritten {
  bool operator()(const std::shared_ptr<const Object>&) const { return false; }
  bool operator()(const Array& array) const { return std::ranges::all_of(array, *this); }
  bool operator()(const Dictionary& dictionary) const {
    return std::ranges::all_of(dictionary, [this](const auto& entry) { return (*this)(entry.second); });
  }
  bool operator()(const Value& value) const { return std::visit(*this, value.storage()); }
  template <class Scalar>
  bool operator()(const Scalar&) const {
    return true;
  }
};

}  // namespace

std::optional<Value> SimulatedPreferencesStore::objectForKey(std::string_view key) const {
  const Dictionary& values = storage_->suite(suite_);
  const auto entry = values.find(key);
  return entry == values.end() ? std::nullopt : std::optional(entry->second);
}

bool SimulatedPreferencesStore::setObject(Value value, std::string_view key) {
  if (!CanBeWritten{}(value)) {
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
