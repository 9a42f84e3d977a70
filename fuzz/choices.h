#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace linewatch {

/// Takes the choices of a structured input from its bytes, in order. At the end all choices are 0.
class Choices {
 public:
  Choices(const std::uint8_t* data, std::size_t size) : rest_(reinterpret_cast<const char*>(data), size) {}

  bool isAtEnd() const { return rest_.empty(); }
  std::uint8_t byte() {
    if (rest_.empty()) return 0;
    const auto taken = static_cast<std::uint8_t>(rest_.front());
    rest_.remove_prefix(1);
    return taken;
  }
  /// Between `low` and `high`, both included.
  int number(int low, int high) { return low + byte() % (high - low + 1); }
  std::int64_t integer() {
    std::int64_t value = 0;
    const std::string_view bytes = text(sizeof value);
    std::memcpy(&value, bytes.data(), bytes.size());
    return value;
  }
  std::string_view text(std::size_t length) {
    const std::string_view taken = rest_.substr(0, length);
    rest_.remove_prefix(taken.size());
    return taken;
  }
  /// Up to the next NUL, which is dropped.
  std::string_view text() {
    const std::string_view taken = rest_.substr(0, rest_.find('\0'));
    rest_.remove_prefix(std::min(taken.size() + 1, rest_.size()));
    return taken;
  }

 private:
  std::string_view rest_;
};

}  // namespace linewatch
