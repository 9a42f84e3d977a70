#include "platform/preferences_store.h"

namespace linewatch {

namespace {

struct AsBool {
  bool operator()(bool value) const { return value; }
  bool operator()(std::int64_t value) const { return value != 0; }
  bool operator()(std::uint64_t value) const { return value != 0; }
  bool operator()(double value) const { return value != 0; }
  bool operator()(const std::string& value) const {
    return !value.empty() && std::string_view("YyTt123456789").find(value.front()) != std::string_view::npos;
  }
  template <class T>
  bool operator()(const T&) const {
    return false;
  }
};

}  // namespace

bool PreferencesStore::boolForKey(std::string_view key) const {
  const auto value = objectForKey(key);
  return value && std::visit(AsBool{}, value->storage());
}

}  // namespace linewatch
