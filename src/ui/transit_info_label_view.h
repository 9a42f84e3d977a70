#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ui/artwork_cache.h"
#include "ui/color.h"
#include "ui/font.h"
#include "ui/image.h"
#include "ui/text_engine.h"
#include "ui/view.h"

namespace linewatch::ui {

/// A line of shields and icons in reading order. When not all of them fit, it ends in a text that counts the
/// items left out.
class TransitInfoLabelView final : public View {
 public:
  using Items = std::vector<SharedArtwork>;
  /// The text for a number of items left out.
  using TruncationText = std::function<std::string(std::uint64_t leftOutCount)>;

  TransitInfoLabelView() { setClipsToBounds(true); }

  const Items& labelItems() const { return items_; }
  void setLabelItems(Items items);
  /// Makes the images of the items; nothing is shown without a cache.
  const std::shared_ptr<ArtworkDataSourceCache>& artworkCache() const { return cache_; }
  void setArtworkCache(std::shared_ptr<ArtworkDataSourceCache> cache);

  void setShieldSize(std::int64_t size);
  void setIconSize(std::int64_t size);
  /// Points.
  void setSpaceBetweenShields(double space);
  /// Points; absent: 4096.
  void setMaximumWidth(std::optional<double> width);

  /// Without one, items that do not fit are left out without a text.
  void setTruncationText(TruncationText text);
  void setTextColor(const Color& color);

  // ---- The row as shown ----

  std::size_t shownItemCount();
  /// Empty when all items are shown.
  const std::string& shownText();

  std::optional<double> intrinsicWidth() override;
  std::optional<double> intrinsicHeight(double width) override;
  std::optional<double> firstBaselineFromTop() override;
  double lastBaselineFromBottom() override;
  void draw(Canvas& canvas) override;

 private:
  /// The items shown and their places, measured from the leading edge.
  struct Row {
    struct Piece {
      /// Null when nothing of the item can be drawn.
      std::shared_ptr<const Image> image;
      double leading = 0;
      Size size;
    };
    std::vector<Piece> pieces;
    std::string text;
    std::shared_ptr<const TextLayout> textLayout;
    double textLeading = 0;
    double width = 0;
    double height = 0;
    double baseline = 0;
    /// The scale, direction and text size that the row was made for.
    double scale = 0;
    LayoutDirection direction = LayoutDirection::leftToRight;
    TextSizeCategory textSize = kDefaultTextSizeCategory;
  };

  /// The row's texts and images grow up to a limit, so that they stay clear of the text above them.
  static TextSizeCategory rowTextSize();
  static Font fontAt(TextSizeCategory textSize) { return Font(TextStyle::subheadline, {}, textSize); }
  const Row& row();
  Row makeRow();
  std::shared_ptr<const Image> imageOf(const SharedArtwork& item, TextSizeCategory textSize) const;
  void addPieces(Row& row, double limit);
  void makeRoomForText(Row& row, double limit);
  std::shared_ptr<const TextLayout> layOutText(const Row& row, double width) const;
  void setHeights(Row& row) const;
  void contentDidChange();

  Items items_;
  std::shared_ptr<ArtworkDataSourceCache> cache_;
  std::int64_t shieldSize_ = 3;
  std::int64_t iconSize_ = 3;
  double space_ = 0;
  std::optional<double> maximumWidth_;
  TruncationText truncationText_;
  Color textColor_ = SemanticColor::label;
  std::optional<Row> row_;
};

}  // namespace linewatch::ui
