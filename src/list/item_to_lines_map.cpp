#include "list/item_to_lines_map.h"

#include <cstdint>
#include <functional>
#include <string>

#include "shared/hash_mixing.h"

namespace linewatch {

namespace {

std::uint64_t hashOfText(const OptionalText& text) { return text ? std::hash<std::string>{}(*text) : 0; }

}  // namespace

std::size_t TransitItemHash::operator()(const SharedTransitItem& item) const {
  std::uint64_t hash = hashOfText(item->primaryText());
  hash = mixedHash(hash, hashOfText(item->secondaryText()));
  hash = mixedHash(hash, hashOrZero(item->artwork()));
  hash = mixedHash(hash, hashOrZero(item->openable()));
  return mixedHash(hash, item->displayArtwork() ? 1 : 0);
}

}  // namespace linewatch
