#include "notices/line_news.h"

#include <string_view>

namespace linewatch::notices {

namespace {

bool isSpace(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }
bool isFiller(char c) { return isSpace(c) || std::string_view(".,;:!-").find(c) != std::string_view::npos; }

std::string_view withoutFillers(std::string_view text) {
  while (!text.empty() && isFiller(text.front())) text.remove_prefix(1);
  while (!text.empty() && isFiller(text.back())) text.remove_suffix(1);
  return text;
}

/// FNV-1a.
class ContentHash {
 public:
  void add(char c) { state_ = (state_ ^ static_cast<unsigned char>(c)) * 0x100000001B3U; }
  void addText(std::string_view text) {
    bool wasSpace = false;
    for (const char c : withoutFillers(text)) {
      if (!isSpace(c)) add(c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c);
      if (isSpace(c) && !wasSpace) add(' ');
      wasSpace = isSpace(c);
    }
    add('\0');
  }
  std::uint64_t value() const { return state_; }

 private:
  std::uint64_t state_ = 0xCBF29CE484222325U;
};

}  // namespace

std::uint64_t contentOf(const IncidentNews& incident) {
  ContentHash hash;
  hash.addText(incident.title);
  hash.addText(incident.summary);
  hash.add(static_cast<char>(incident.severity));
  hash.add(incident.isBlocking ? '\1' : '\0');
  return hash.value();
}

}  // namespace linewatch::notices
