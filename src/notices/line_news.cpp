#include "notices/line_news.h"

#include <string_view>

namespace linewatch::notices {

namespace {

bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isFiller(char c) { return isSpace(c) || std::string_view(".,;:!-").find(c) != std::string_view::npos; }

std::string_view withoutFillers(std::string_view text) {
  while (!text.empty() && isFiller(text.front())) text.remove_prefix(1);
  while (!text.empty() && isFiller(text.back())) text.remove_suffix(1);
  return text;
}

/// FNV-1a. Without numbers each of them counts as the digit 0.
class ContentHash {
 public:
  explicit ContentHash(bool hasNumbers) : hasNumbers_(hasNumbers) {}

  void add(char c) { state_ = (state_ ^ static_cast<unsigned char>(c)) * 0x100000001B3U; }
  void addText(std::string_view text) {
    char previous = 'x';
    for (const char c : withoutFillers(text)) {
      const char read = reading(c);
      if ((read != ' ' && (read != '0' || hasNumbers_)) || read != previous) add(read);
      previous = read;
    }
    add('\0');
  }
  std::uint64_t value() const { return state_; }

 private:
  char reading(char c) const {
    if (isSpace(c)) return ' ';
    if (isDigit(c) && !hasNumbers_) return '0';
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  }

  bool hasNumbers_;
  std::uint64_t state_ = 0xCBF29CE484222325U;
};

std::uint64_t hashOf(const IncidentNews& incident, bool hasNumbers) {
  ContentHash hash(hasNumbers);
  hash.addText(incident.title);
  hash.addText(incident.summary);
  hash.add(static_cast<char>(incident.severity));
  hash.add(incident.isBlocking ? '\1' : '\0');
  return hash.value();
}

}  // namespace

std::uint64_t contentOf(const IncidentNews& incident) { return hashOf(incident, true); }
std::uint64_t gistOf(const IncidentNews& incident) { return hashOf(incident, false); }

}  // namespace linewatch::notices
