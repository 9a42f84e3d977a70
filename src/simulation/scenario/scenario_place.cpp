#include "simulation/scenario/scenario_place.h"

#include <algorithm>

#include "wire/json_text.h"

namespace linewatch::simulation {

namespace {

bool isPlain(char character) {
  return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
         (character >= '0' && character <= '9') || character == '_' || character == '-';
}

}  // namespace

void appendKey(std::string& path, std::string_view key) {
  if (key.empty() || !std::ranges::all_of(key, isPlain)) {
    path.append("[").append(jsonQuoted(key)).append("]");
  } else {
    path.append(path.empty() ? "" : ".").append(key);
  }
}

void appendIndex(std::string& path, std::size_t index) {
  path.append("[").append(std::to_string(index)).append("]");
}

std::string Place::path() const {
  if (within_ == nullptr) return {};
  std::string path = within_->path();
  if (index_) {
    appendIndex(path, *index_);
  } else {
    appendKey(path, key_);
  }
  return path;
}

}  // namespace linewatch::simulation
