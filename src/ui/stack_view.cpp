#include "ui/stack_view.h"

#include <algorithm>
#include <utility>

namespace linewatch::ui {

void StackView::addArrangedSubview(const std::shared_ptr<View>& view) {
  insertArrangedSubview(view, arranged_.size());
}

void StackView::insertArrangedSubview(const std::shared_ptr<View>& view, std::size_t index) {
  if (!view || isDescendantOf(*view)) return;
  // The one given may be among the arranged ones.
  // NOLINTNEXTLINE(performance-unnecessary-copy-initialization): keeps the view alive
  const std::shared_ptr<View> added = view;
  std::erase(arranged_, added);
  arranged_.insert(arranged_.begin() + static_cast<std::ptrdiff_t>(std::min(index, arranged_.size())), added);
  added->setLaidOutByConstraints(true);
  addSubview(added);
  forgetLinks();
  rearrange();
}

void StackView::setSpacing(double spacing) {
  if (spacing == spacing_) return;
  spacing_ = spacing;
  for (const Link& link : links_) {
    if (link.before != nullptr && link.after != nullptr) link.constraint->setConstant(spacing);
  }
}

void StackView::setAlignment(StackAlignment alignment) {
  if (std::exchange(alignment_, alignment) == alignment) return;
  forgetLinks();
  rearrange();
}

void StackView::setBaselineRelativeArrangement(bool relative) {
  if (std::exchange(baselineRelative_, relative) == relative) return;
  forgetLinks();
  rearrange();
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
  const bool isArranged = std::any_of(arranged_.begin(), arranged_.end(),
                                      [&](const auto& view) { return view.get() == &subview; });
  if (isArranged) rearrange();
}

std::vector<View*> StackView::shownViews() const {
  std::vector<View*> shown;
  for (const auto& view : arranged_) {
    if (!view->isHidden() && view->superview() == this) shown.push_back(view.get());
  }
  return shown;
}

// Links that are still wanted stay as they are, so that hiding a view changes nothing but its neighbours'
// links.
void StackView::rearrange() {
  std::vector<View*> row = shownViews();
  std::vector<SharedConstraint> wanted;
  if (!row.empty()) {
    row.insert(row.begin(), nullptr);
    row.push_back(nullptr);
    for (std::size_t i = 1; i < row.size(); ++i) wanted.push_back(linkBetween(row[i - 1], row[i]));
  }
  for (const Link& link : links_) {
    if (std::find(wanted.begin(), wanted.end(), link.constraint) == wanted.end())
      link.constraint->setActive(false);
  }
  LayoutConstraint::activate(wanted);
  if (across_.empty()) {
    for (const auto& view : arranged_) addAcross(*view);
    LayoutConstraint::activate(across_);
  }
}

SharedConstraint StackView::linkBetween(View* before, View* after) {
  const auto known = std::find_if(links_.begin(), links_.end(), [&](const Link& link) {
    return link.before == before && link.after == after;
  });
  if (known != links_.end()) return known->constraint;
  return links_.emplace_back(Link{before, after, makeLink(before, after)}).constraint;
}

SharedConstraint StackView::makeLink(View* before, View* after) const {
  if (axis_ == Axis::horizontal) {
    if (before == nullptr) return after->leadingAnchor().constraintEqualTo(leadingAnchor());
    if (after == nullptr) return trailingAnchor().constraintEqualTo(before->trailingAnchor());
    return after->leadingAnchor().constraintEqualTo(before->trailingAnchor(), spacing_);
  }
  if (before == nullptr) return after->topAnchor().constraintEqualTo(topAnchor());
  if (after == nullptr) return bottomAnchor().constraintEqualTo(before->bottomAnchor());
  if (!baselineRelative_) return after->topAnchor().constraintEqualTo(before->bottomAnchor(), spacing_);
  return after->firstBaselineAnchor().constraintEqualTo(before->lastBaselineAnchor(), spacing_);
}

void StackView::addAcross(View& view) {
  const auto add = [this](auto low, auto middle, auto high, auto ownLow, auto ownMiddle, auto ownHigh) {
    const bool fill = alignment_ == StackAlignment::fill;
    const auto place = [this](SharedConstraint constraint) { across_.push_back(std::move(constraint)); };
    if (alignment_ == StackAlignment::center) place(middle.constraintEqualTo(ownMiddle));
    place(fill || alignment_ == StackAlignment::leading ? low.constraintEqualTo(ownLow)
                                                        : low.constraintGreaterThanOrEqualTo(ownLow));
    place(fill || alignment_ == StackAlignment::trailing ? high.constraintEqualTo(ownHigh)
                                                         : high.constraintLessThanOrEqualTo(ownHigh));
  };
  if (axis_ == Axis::vertical) {
    add(view.leadingAnchor(), view.centerXAnchor(), view.trailingAnchor(), leadingAnchor(), centerXAnchor(),
        trailingAnchor());
  } else {
    add(view.topAnchor(), view.centerYAnchor(), view.bottomAnchor(), topAnchor(), centerYAnchor(),
        bottomAnchor());
  }
}

void StackView::forgetLinks() {
  for (const Link& link : links_) link.constraint->setActive(false);
  links_.clear();
  LayoutConstraint::deactivate(across_);
  across_.clear();
}

}  // namespace linewatch::ui
