#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ui/index_path.h"
#include "ui/row_heights.h"
#include "ui/table_view_cell.h"
#include "ui/view.h"
#include "ui/visual_effect_view.h"

namespace linewatch::ui {

class TableView;

/// The content of a table. Main thread.
class TableViewDataSource {
 public:
  virtual ~TableViewDataSource() = default;

  virtual std::size_t numberOfSectionsInTableView(TableView& /*tableView*/) { return 1; }
  virtual std::size_t tableViewNumberOfRowsInSection(TableView& tableView, std::size_t section) = 0;
  /// Called when the row becomes visible. Null leaves the row empty.
  virtual std::shared_ptr<TableViewCell> tableViewCellForRowAtIndexPath(TableView& tableView,
                                                                        const IndexPath& indexPath) = 0;
};

/// The behaviour of a table. Main thread.
class TableViewDelegate {
 public:
  virtual ~TableViewDelegate() = default;

  /// Used until the row becomes visible. Points.
  virtual double tableViewEstimatedHeightForRowAtIndexPath(TableView& /*tableView*/,
                                                           const IndexPath& /*indexPath*/) {
    return 44;
  }
  virtual bool tableViewShouldHighlightRowAtIndexPath(TableView& /*tableView*/,
                                                      const IndexPath& /*indexPath*/) {
    return true;
  }
  virtual void tableViewDidSelectRowAtIndexPath(TableView& /*tableView*/, const IndexPath& /*indexPath*/) {}
};

enum class RowAnimation : std::uint8_t { none, automatic };

/// A scrolling list of rows. A row is as high as its cell's constraints make it at the table's width. Only
/// visible rows have cells; a cell that scrolls out is reused. Main thread.
class TableView : public View {
 public:
  /// Makes a cell for a reuse identifier.
  using CellFactory = std::function<std::shared_ptr<TableViewCell>(TableViewCellStyle style,
                                                                   const std::string& reuseIdentifier)>;

  explicit TableView(const Rect& frame = {});
  ~TableView() override;

  /// Both are held weakly.
  void setDataSource(const std::shared_ptr<TableViewDataSource>& dataSource);
  void setDelegate(const std::shared_ptr<TableViewDelegate>& delegate);

  // ---- Cells ----

  void registerCell(const std::string& reuseIdentifier, CellFactory factory);
  /// A cell that is no longer visible, preferably the one that last showed the row, else a new one. For an
  /// identifier that was not registered it is a plain cell, and the first time is logged.
  std::shared_ptr<TableViewCell> dequeueReusableCell(const std::string& reuseIdentifier,
                                                     const IndexPath& indexPath);
  /// Null for a row that is not visible.
  std::shared_ptr<TableViewCell> cellForRow(const IndexPath& indexPath) const;
  /// From top to bottom, after layout.
  std::vector<IndexPath> indexPathsForVisibleRows() const;

  // ---- Rows ----

  std::size_t numberOfSections();
  std::size_t numberOfRowsInSection(std::size_t section);
  /// The data source is asked again at the next layout, or when a row is asked for before. The scroll offset
  /// stays, limited to the new content; a press on a row ends.
  void reloadData();
  void reloadSection(std::size_t section, RowAnimation animation);
  /// Called for every section that is reloaded. For the window.
  void setReloadHandler(std::function<void(std::size_t section, RowAnimation animation)> handler) {
    reloadHandler_ = std::move(handler);
  }
  /// Relative to the top of the first row; empty when there is no such row.
  Rect rectForRow(const IndexPath& indexPath);
  std::optional<IndexPath> indexPathForRowAtPoint(const Point& point);

  // ---- Scrolling ----

  double contentOffset() const { return contentOffset_; }
  /// Points scrolled down, limited to the content.
  void setContentOffset(double offset);
  double contentHeight();

  // ---- Appearance ----

  const EdgeInsets& separatorInset() const { return separatorInset_; }
  /// Measured from the row's edges. Left and right do not depend on the layout direction.
  void setSeparatorInset(const EdgeInsets& inset);
  void setSeparatorEffect(std::optional<VibrancyEffect> effect);
  /// Below the last row, with the height of its frame.
  void setTableFooterView(const std::shared_ptr<View>& view);

  // ---- Selection ----

  const std::optional<IndexPath>& indexPathForSelectedRow() const { return selected_; }
  void deselectRow(const IndexPath& indexPath, bool animated);
  /// Whether a press on the row highlights it, as the delegate decides.
  bool highlightsRow(const IndexPath& indexPath);
  /// Called before a row is selected. For the window.
  void setTapHandler(std::function<void(const IndexPath& indexPath)> handler) {
    tapHandler_ = std::move(handler);
  }
  /// Selects the row if it highlights; false otherwise.
  bool tapRow(const IndexPath& indexPath);

  bool handlePointer(PointerPhase phase, const Point& point) override;
  bool handleScroll(double deltaY) override;
  void layoutSubviews() override;

 protected:
  void descendantDidNeedLayout() override;
  void drawOverlay(Canvas& canvas) override;

 private:
  struct ShownRow {
    std::size_t row = 0;
    std::shared_ptr<TableViewCell> cell;
  };

  struct IdleCell {
    IndexPath lastShown;
    std::shared_ptr<TableViewCell> cell;
  };

  void loadRowsIfNeeded();
  void guessHeights(std::size_t count);
  std::size_t flatRow(const IndexPath& indexPath) const;
  IndexPath indexPathOf(std::size_t row) const;
  void makeIdle(ShownRow&& shown);
  void makeAllIdle();
  void layOutRows();
  std::shared_ptr<TableViewCell> cellFor(std::size_t row, std::vector<ShownRow>& before);
  double heightOf(TableViewCell& cell);
  void setMeasuredHeight(std::size_t row, double height);
  void placeFooter();
  void removeIdleCells();
  double offsetOnGrid() const;
  void clampContentOffset();
  void highlight(std::optional<IndexPath> indexPath);
  void showStateOf(TableViewCell& cell, const IndexPath& indexPath) const;
  void setCellFlag(const IndexPath& indexPath, void (TableViewCell::*set)(bool), bool value) const;

  std::weak_ptr<TableViewDataSource> dataSource_;
  std::weak_ptr<TableViewDelegate> delegate_;
  std::function<void(const IndexPath& indexPath)> tapHandler_;
  std::function<void(std::size_t, RowAnimation)> reloadHandler_;
  std::map<std::string, CellFactory> factories_;

  /// The number of rows before each section; the last element counts all rows.
  std::vector<std::size_t> sectionStarts_{0};
  RowHeights heights_;
  /// For each row, true when its height is the cell's and not an estimate.
  std::vector<bool> measured_;
  bool rowsLoaded_ = false;
  std::vector<ShownRow> shown_;
  std::map<std::string, std::vector<IdleCell>> idle_;

  double contentOffset_ = 0;
  bool layingOut_ = false;
  EdgeInsets separatorInset_;
  std::optional<VibrancyEffect> separatorEffect_;
  std::shared_ptr<View> footer_;
  std::optional<IndexPath> selected_;
  std::optional<IndexPath> highlighted_;
  std::optional<IndexPath> pressed_;
};

}  // namespace linewatch::ui
