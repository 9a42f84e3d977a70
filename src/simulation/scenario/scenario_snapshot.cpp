#include "simulation/scenario/scenario_snapshot.h"

#include <utility>

#include "list/list_dictionary_form.h"
#include "list/transit_item_data_source_builder.h"
#include "presentation/fixed_height_cell.h"
#include "presentation/transit_summary_cell.h"
#include "widget/transit_incidents_view_controller.h"

namespace linewatch::simulation {

namespace {

/// Makes a table tall enough to show all its rows, and restores its frame at the end of the scope.
class Unrolled {
 public:
  explicit Unrolled(ui::TableView& table, double height) : table_(table), frame_(table.frame()) {
    table_.setFrame({frame_.x, frame_.y, frame_.width, height});
    table_.layoutIfNeeded();
  }
  ~Unrolled() { table_.setFrame(frame_); }
  Unrolled(const Unrolled&) = delete;
  Unrolled& operator=(const Unrolled&) = delete;

 private:
  ui::TableView& table_;
  ui::Rect frame_;
};

std::string_view kindOf(const ui::TableViewCell* cell) {
  if (dynamic_cast<const RVTransitSummaryCell*>(cell)) return "summary";
  return dynamic_cast<const FixedHeightCell*>(cell) ? "item" : "plain";
}

Dictionary viewsOf(const ui::TableViewCell* cell) {
  Dictionary views;
  if (const auto* known = dynamic_cast<const FixedHeightCell*>(cell)) {
    for (const auto& [name, rect] : known->namedRects()) {
      views.emplace(name, Array{rect.x, rect.y, rect.width, rect.height});
    }
  }
  return views;
}

Dictionary rowForm(ui::TableView& table, RVTransitIncidentDataSource& dataSource, std::size_t row) {
  const ui::IndexPath place{0, row};
  const auto cell = table.cellForRow(place);
  return {{"cell", kindOf(cell.get())},
          {"separator", cell && cell->separatorStyle() == ui::SeparatorStyle::singleLine},
          {"highlights", dataSource.tableViewShouldHighlightRowAtIndexPath(table, place)},
          {"item", dictionaryForm(dataSource._itemAtIndexPath(place))},
          {"views", viewsOf(cell.get())}};
}

Array rowForms(ui::TableView& table, RVTransitIncidentDataSource& dataSource) {
  const std::size_t rows = table.numberOfRowsInSection(0);
  // A row may be taller than the row height, but never by 1000 points.
  const Unrolled unrolled(table, (dataSource.rowHeight() + 1000) * static_cast<double>(rows));
  Array forms;
  for (std::size_t row = 0; row < rows; ++row) forms.emplace_back(rowForm(table, dataSource, row));
  return forms;
}

}  // namespace

Dictionary snapshotOf(RVTransitIncidentsViewController& controller) {
  RVTransitIncidentDataSource& dataSource = *controller.dataSource();
  const auto& list = dataSource.listItem();
  const std::uint64_t limit = dataSource.maxNumberOfRows();
  return {{"visible", controller.isVisible()},
          {"expanded", dataSource.isExpanded()},
          {"rowHeight", dataSource.rowHeight()},
          {"maxNumberOfRows", limit == kNoRowLimit ? noValue() : Value(limit)},
          {"artworkColumnWidth", dataSource.artworkColumnWidth()},
          {"list", list ? Value(dictionaryForm(*list)) : noValue()},
          {"rows", rowForms(*controller.tableView(), dataSource)}};
}

}  // namespace linewatch::simulation
