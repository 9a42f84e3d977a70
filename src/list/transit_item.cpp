#include "list/transit_item.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <functional>
#include <typeinfo>
#include <utility>

#include "shared/hash_mixing.h"
#include "shared/number_hash.h"

namespace linewatch {

namespace {

const std::size_t kHashOfTrue = hashOfNumber(std::uint64_t{1});

std::size_t hashOrZero(const SharedText& text) { return *text ? std::hash<std::string>{}(**text) : 0; }

std::string addressOf(const void* object) {
  char text[32];
  std::snprintf(text, sizeof text, "%p", object);
  return text;
}

template <class T>
std::string describe(const std::shared_ptr<const T>& object) {
  return object ? object->description() : "(null)";
}

}  // namespace

RVTransitItem::RVTransitItem(SharedText primaryText, SharedText secondaryText,
                             std::shared_ptr<const RVConfiguredArtwork> artwork, bool displayArtwork,
                             std::shared_ptr<const RVOpenable> openable)
    : primaryText_(std::move(primaryText)),
      secondaryText_(std::move(secondaryText)),
      artwork_(std::move(artwork)),
      displayArtwork_(displayArtwork),
      openable_(std::move(openable)) {
  tableHash_ = mixedHash(
      mixedHash(mixedHash(hashOrZero(primaryText_), hashOrZero(secondaryText_)), hashOrZero(artwork_)),
      hashOrZero(openable_));
}

std::size_t RVTransitItem::hash() const {
  return hashOrZero(primaryText_) ^ hashOrZero(secondaryText_) ^ hashOrZero(artwork_) ^
         (displayArtwork_ ? kHashOfTrue : 0) ^ hashOrZero(openable_);
}

std::shared_ptr<const RVTransitItem> RVTransitItem::copyWithZone() const {
  return std::make_shared<const RVTransitItem>(primaryText_, secondaryText_, artwork_, displayArtwork_,
                                               openable_);
}

bool RVTransitItem::isEqual(const Object& other) const {
  if (this == &other) return true;
  if (typeid(*this) != typeid(RVTransitItem) || typeid(other) != typeid(RVTransitItem)) return false;
  return isEqualToTransitItem(static_cast<const RVTransitItem&>(other));
}

bool RVTransitItem::isEqualToTransitItem(const RVTransitItem& other) const {
  return bothAbsentOrEqual(artwork_, other.artwork_) && displayArtwork_ == other.displayArtwork_ &&
         primaryText_ == other.primaryText_ && secondaryText_ == other.secondaryText_ &&
         bothAbsentOrEqual(openable_, other.openable_);
}

std::string RVTransitItem::description() const {
  return "<" + classNameOf(*this) + ":" + addressOf(this) + " | text: " + primaryText_->value_or("(null)") +
         " | subtext: " + secondaryText_->value_or("(null)") + " | artwork: " + describe(artwork_) +
         " | showArtwork?: " + (displayArtwork_ ? "YES" : "NO") + " | openable: " + describe(openable_) + ">";
}

bool areEqual(const TransitItems& a, const TransitItems& b) {
  return std::ranges::equal(a, b, [](const auto& x, const auto& y) { return bothAbsentOrEqual(x, y); });
}

}  // namespace linewatch
