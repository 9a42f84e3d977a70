#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "presentation/dynamic_type_value.h"
#include "presentation/visual_effect_wrapping_view.h"
#include "ui/label.h"
#include "ui/layout/layout_guide.h"
#include "ui/stack_view.h"
#include "ui/table_view_cell.h"

namespace linewatch {

/// A part of a cell: the name of its field and its rectangle in the cell's coordinates.
struct NamedRect {
  std::string_view name;
  ui::Rect rect;

  bool operator==(const NamedRect&) const = default;
};

/// The common part of the widget's cells: a row of a given height with a block of text in its vertical
/// middle, 16 points from the sides. The block begins with the primary label; its top is about the height of
/// a capital letter above the label's first baseline. Fonts and distances follow the text size. Main thread.
class FixedHeightCell : public ui::TableViewCell {
 public:
  /// Points; 110 until it is set.
  double rowHeight() const { return rowHeightConstraint_->constant(); }
  void setRowHeight(double rowHeight) { rowHeightConstraint_->setConstant(rowHeight); }

  const std::shared_ptr<ui::Label>& primaryLabel() const { return primaryLabel_; }

  /// The font of the primary label at the present text size.
  virtual ui::Font _primaryFont() const = 0;
  /// The visible parts after the last layout.
  std::vector<NamedRect> namedRects() const;

 protected:
  /// Restricts the constructor to `makeCell`.
  class Key {
    friend FixedHeightCell;
    Key() = default;
  };
  using Constraints = std::vector<ui::SharedConstraint>;

  FixedHeightCell(Key, ui::TableViewCellStyle style, std::string reuseIdentifier);

  /// Builds a cell and registers it for text size changes.
  template <class Cell>
  static std::shared_ptr<Cell> makeCell(ui::TableViewCellStyle style, std::string reuseIdentifier) {
    auto cell = std::make_shared<Cell>(Key(), style, std::move(reuseIdentifier));
    const std::shared_ptr<FixedHeightCell> base = cell;
    base->self_ = base;
    base->_createSubviews();
    ui::LayoutConstraint::activate(base->_initialConstraints());
    base->keepBaselineOffsetFitting();
    return cell;
  }

  virtual void _createSubviews() = 0;
  /// The constraints that are active from the start.
  virtual Constraints _initialConstraints() = 0;
  /// From the block's top to the first baseline, in points.
  virtual double firstBaselineOffset() const = 0;
  virtual void addNamedRects(std::vector<NamedRect>& rects) const = 0;
  void _updatePrimaryLabelToContentGuideConstaint();

  /// Asks the cell for its font each time; gives none once the cell is destroyed.
  template <class Cell>
  FontProvider fontProvider(ui::Font (Cell::*font)() const) const {
    return [weakSelf = self_, font]() -> std::optional<ui::Font> {
      const auto self = weakSelf.lock();
      if (!self) return std::nullopt;
      return (static_cast<const Cell&>(*self).*font)();
    };
  }
  FontProvider primaryFontProvider() const { return fontProvider(&FixedHeightCell::_primaryFont); }

  /// Adds the guide, the stack with a spacing of 0, and the primary label as the stack's first view.
  void createCommonSubviews();
  /// Adds a wrapper with the label at the stack's end; the label gets the provider's font.
  std::shared_ptr<VisualEffectWrappingView> addWrappedLabel(const std::shared_ptr<ui::Label>& label,
                                                            ui::VibrancyEffect effect,
                                                            FontProvider fontProvider);
  /// The constraints of the row's height and of the guide in the row.
  Constraints commonConstraints();

  void addRect(std::vector<NamedRect>& rects, std::string_view name, const ui::View& view) const;
  void addRect(std::vector<NamedRect>& rects, std::string_view name, const ui::LayoutGuide& guide) const;

  std::shared_ptr<ui::StackView> stackView_;
  std::shared_ptr<ui::LayoutGuide> contentGuide_;
  std::shared_ptr<VisualEffectWrappingView> vibrancyViewForPrimaryLabel_;
  ui::SharedConstraint rowHeightConstraint_;
  ui::SharedConstraint primaryLabelToContentGuideConstraint_;
  std::shared_ptr<ui::Label> primaryLabel_;

 private:
  void keepBaselineOffsetFitting();

  std::weak_ptr<FixedHeightCell> self_;
};

}  // namespace linewatch
