#include "ui/table_view_cell.h"

#include <utility>

namespace linewatch::ui {

TableViewCell::TableViewCell(TableViewCellStyle style, std::string reuseIdentifier)
    : style_(style), reuseIdentifier_(std::move(reuseIdentifier)), contentView_(std::make_shared<View>()) {
  becomeLayoutRoot();
  contentView_->setLaidOutByConstraints(true);
  addSubview(contentView_);
  LayoutConstraint::activate({contentView_->leadingAnchor().constraintEqualTo(leadingAnchor()),
                              contentView_->trailingAnchor().constraintEqualTo(trailingAnchor()),
                              contentView_->topAnchor().constraintEqualTo(topAnchor()),
                              contentView_->bottomAnchor().constraintEqualTo(bottomAnchor())});
}

void TableViewCell::setSeparatorStyle(SeparatorStyle style) {
  if (std::exchange(separatorStyle_, style) != style) setNeedsDisplay();
}

void TableViewCell::setHighlighted(bool highlighted) {
  if (std::exchange(highlighted_, highlighted) != highlighted) setNeedsDisplay();
}

void TableViewCell::setSelected(bool selected) {
  if (std::exchange(selected_, selected) != selected) setNeedsDisplay();
}

void TableViewCell::draw(Canvas& canvas) {
  if (highlighted_ || selected_) canvas.fillRect(bounds(), SemanticColor::highlightedBackground);
}

}  // namespace linewatch::ui
