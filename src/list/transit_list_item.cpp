#include "list/transit_list_item.h"

#include <utility>

namespace linewatch {

namespace {

/// The summary row as an object; null when there is none.
const Object* objectOf(const SummaryItem& summary) {
  struct {
    const Object* operator()(std::monostate) const { return nullptr; }
    const Object* operator()(const SharedTransitItem& item) const { return item.get(); }
    const Object* operator()(const std::shared_ptr<const RVTransitSummaryItem>& item) const {
      return item.get();
    }
  } visitor;
  return std::visit(visitor, summary);
}

}  // namespace

bool areEqual(const SummaryItem& a, const SummaryItem& b) {
  const Object* one = objectOf(a);
  const Object* other = objectOf(b);
  return one == other || (one && other && one->isEqual(*other));
}

RVTransitListItem::RVTransitListItem(SummaryItem summaryItem, std::optional<TransitItems> expandedItems)
    : summaryItem_(std::move(summaryItem)), expandedItems_(std::move(expandedItems)) {
  if (!objectOf(summaryItem_)) summaryItem_ = std::monostate();
  if (expandedItems_) std::erase(*expandedItems_, nullptr);
}

bool RVTransitListItem::isEqual(const Object& other) const {
  if (this == &other) return true;
  const auto* list = dynamic_cast<const RVTransitListItem*>(&other);
  return list != nullptr && isEqualToListItem(*list);
}

bool RVTransitListItem::isEqualToListItem(const RVTransitListItem& other) const {
  if (!areEqual(summaryItem_, other.summaryItem_)) return false;
  if (!expandedItems_ || !other.expandedItems_) return !expandedItems_ && !other.expandedItems_;
  return areEqual(*expandedItems_, *other.expandedItems_);
}

std::size_t RVTransitListItem::hash() const {
  const Object* summary = objectOf(summaryItem_);
  return (summary ? summary->hash() : 0) ^ (expandedItems_ ? expandedItems_->size() : 0);
}

std::string RVTransitListItem::description() const {
  const Object* summary = objectOf(summaryItem_);
  std::string text =
      "<" + classNameOf(*this) + " | summary: " + (summary ? summary->description() : "(null)");
  for (const SharedTransitItem& item : expandedItems_.value_or(TransitItems{}))
    text += " | " + item->description();
  return text + ">";
}

}  // namespace linewatch
