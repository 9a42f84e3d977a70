#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "ui/view.h"

namespace linewatch::ui {

enum class TableViewCellStyle : std::uint8_t { plain };

enum class SeparatorStyle : std::uint8_t { none, singleLine };

/// A row of a table: a layout root whose content view fills it.
class TableViewCell : public View {
 public:
  TableViewCell(TableViewCellStyle style, std::string reuseIdentifier);

  TableViewCellStyle style() const { return style_; }
  const std::string& reuseIdentifier() const { return reuseIdentifier_; }
  View& contentView() { return *contentView_; }

  /// The separator below the row; a single line by default.
  SeparatorStyle separatorStyle() const { return separatorStyle_; }
  void setSeparatorStyle(SeparatorStyle style);

  bool isHighlighted() const { return highlighted_; }
  void setHighlighted(bool highlighted);
  bool isSelected() const { return selected_; }
  void setSelected(bool selected);

  void draw(Canvas& canvas) override;

 private:
  TableViewCellStyle style_;
  std::string reuseIdentifier_;
  std::shared_ptr<View> contentView_;
  SeparatorStyle separatorStyle_ = SeparatorStyle::singleLine;
  bool highlighted_ = false;
  bool selected_ = false;
};

}  // namespace linewatch::ui
