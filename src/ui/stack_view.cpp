#include "ui/stack_view.h"

#include <algorithm>

namespace linewatch::ui {

void StackView::addArrangedSubview(const std::shared_ptr<View>& view) {
  if (!view || isDescendantOf(*view) || view->superview() == this) return;
  arranged_.push_back(view);
  view->setLaidOutByConstraints(true);
  addSubview(view);
  LayoutConstraint::activate({view->leadingAnchor().constraintEqualTo(leadingAnchor()),
                              view->trailingAnchor().constraintEqualTo(trailingAnchor())});
  rearrange();
}

void StackView::setSpacing(double spacing) {
  if (spacing == spacing_) return;
  spacing_ = spacing;
  for (const Link& link : links_) {
    if (link.above != nullptr && link.below != nullptr) link.constraint->setConstant(spacing);
  }
}

View& StackView::viewForFirstBaselineLayout() {
  const auto shown = shownViews();
  return shown.empty() ? *this : *shown.front();
}

View& StackView::viewForLastBaselineLayout() {
  const auto shown = shownViews();
  return shown.empty() ? *this : *shown.back();
}

void StackView::shownSubviewsDidChange(View& subview) {
  const auto place = std::find_if(arranged_.begin(), arranged_.end(),
                                  [&](const auto& view) { return view.get() == &subview; });
  if (place == arranged_.end()) return;
  if (subview.superview() != this) {
    arranged_.erase(place);
    std::erase_if(links_, [&](const Link& link) { return link.above == &subview || link.below == &subview; });
  }
  rearrange();
}

std::vector<View*> StackView::shownViews() const {
  std::vector<View*> shown;
  for (const auto& view : arranged_) {
    if (!view->isHidden()) shown.push_back(view.get());
  }
  return shown;
}

// Links between views that stay neighbours stay active, so that the layout has less to solve.
void StackView::rearrange() {
  std::vector<View*> column = shownViews();
  std::vector<SharedConstraint> wanted;
  if (!column.empty()) {
    column.insert(column.begin(), nullptr);
    column.push_back(nullptr);
    for (std::size_t i = 1; i < column.size(); ++i) wanted.push_back(linkBetween(column[i - 1], column[i]));
  }
  for (const Link& link : links_) {
    if (std::find(wanted.begin(), wanted.end(), link.constraint) == wanted.end())
      link.constraint->setActive(false);
  }
  LayoutConstraint::activate(wanted);
}

SharedConstraint StackView::linkBetween(View* above, View* below) {
  const auto known = std::find_if(links_.begin(), links_.end(), [&](const Link& link) {
    return link.above == above && link.below == below;
  });
  if (known != links_.end()) return known->constraint;
  return links_.emplace_back(Link{above, below, makeLink(above, below)}).constraint;
}

SharedConstraint StackView::makeLink(View* above, View* below) const {
  if (above == nullptr) return below->topAnchor().constraintEqualTo(topAnchor());
  if (below == nullptr) return bottomAnchor().constraintEqualTo(above->bottomAnchor());
  return below->firstBaselineAnchor().constraintEqualTo(above->lastBaselineAnchor(), spacing_);
}

}  // namespace linewatch::ui
