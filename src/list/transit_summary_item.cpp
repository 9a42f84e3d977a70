#include "list/transit_summary_item.h"

#include <algorithm>
#include <functional>
#include <utility>

#include "list/transit_artwork_equality.h"

namespace linewatch {

namespace {

bool sameArtworks(const std::optional<TransitArtworks>& a, const std::optional<TransitArtworks>& b) {
  if (!a || !b) return a.has_value() == b.has_value();
  return std::ranges::equal(*a, *b, [](const SharedArtwork& x, const SharedArtwork& y) {
    return TransitArtworkDataSourceIsEqual(x.get(), y.get());
  });
}

}  // namespace

RVTransitSummaryItem::RVTransitSummaryItem(std::optional<std::string> text,
                                           std::optional<TransitArtworks> artworks,
                                           std::shared_ptr<const RVUserActivityData> userActivityData)
    : primaryText_(std::move(text)),
      artworks_(std::move(artworks)),
      userActivityData_(std::move(userActivityData)) {}

bool RVTransitSummaryItem::isEqual(const Object& other) const {
  if (this == &other) return true;
  const auto* summary = dynamic_cast<const RVTransitSummaryItem*>(&other);
  return summary != nullptr && isEqualToSummaryItem(*summary);
}

bool RVTransitSummaryItem::isEqualToSummaryItem(const RVTransitSummaryItem& other) const {
  return primaryText_ == other.primaryText_ &&
         bothAbsentOrEqual(userActivityData_, other.userActivityData_) &&
         sameArtworks(artworks_, other.artworks_);
}

std::size_t RVTransitSummaryItem::hash() const {
  return (primaryText_ ? std::hash<std::string>{}(*primaryText_) : 0) ^ (artworks_ ? artworks_->size() : 0) ^
         hashOrZero(userActivityData_);
}

std::string RVTransitSummaryItem::description() const {
  return "<" + classNameOf(*this) + " | text: " + primaryText_.value_or("(null)") +
         " | artworks: " + std::to_string(artworks_ ? artworks_->size() : 0) +
         " | openable: " + (userActivityData_ ? userActivityData_->description() : "(null)") + ">";
}

}  // namespace linewatch
