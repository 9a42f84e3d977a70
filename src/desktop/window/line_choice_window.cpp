#include "desktop/window/line_choice_window.h"

#include <QBoxLayout>
#include <QButtonGroup>
#include <QLabel>
#include <QRadioButton>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QStringList>
#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "desktop/window/action_button.h"
#include "desktop/window/action_list.h"
#include "desktop/window/control_style.h"
#include "desktop/window/notify_choice.h"
#include "desktop/window/window_colors.h"
#include "shared/failure.h"

namespace linewatch::desktop {

namespace {

using Stops = LineChoice::Stops;

// Points.
constexpr QSize kChoiceSize(400, 560);
constexpr int kStopsIndent = 20;
/// More stops scroll.
constexpr int kMostShownStops = 8;
constexpr std::size_t kMostDestinations = 3;
/// The ids of a stop in the list.
constexpr int kStopIdsRole = Qt::UserRole;

/// E.g. "To Zoo, Harbour"; a number when the timetable names no destination.
QString directionInWords(std::uint8_t direction, const LineStops* stops, const WindowTexts& texts) {
  if (!stops || stops->destinations.at(direction).empty())
    return texts("OnlyDirection", {std::to_string(direction)});
  std::vector<std::string> names = stops->destinations.at(direction);
  if (names.size() > kMostDestinations) names.resize(kMostDestinations);
  return texts("TowardsDestination", {texts.withCommas(names).toStdString()});
}

/// An "&" in a name would otherwise be taken for a shortcut.
QString withoutMnemonic(QString text) { return text.replace(QLatin1Char('&'), QLatin1String("&&")); }

}  // namespace

QString choiceInWords(const LineChoice& choice, const LineStops* stops, const WindowTexts& texts) {
  QStringList words;
  if (choice.stops == Stops::chosen) words << texts("SomeStops", {std::uint64_t{choice.stopIds.size()}});
  if (choice.stops == Stops::none) words << texts("NoStops");
  if (choice.direction)
    words << (stops ? directionInWords(*choice.direction, stops, texts) : texts("OneDirection"));
  return words.join(QStringLiteral(" · "));
}

LineChoiceWindow::LineChoiceWindow(SharedWindowTexts texts, const QString& line, LineChoice choice,
                                   Chosen chosen)
    : CompanionWindow(std::move(texts)), choice_(std::move(choice)), chosen_(std::move(chosen)) {
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowTitle(line);
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addWidget(makeScroller(), 1);
  column_->addWidget(makeLabel(line, font(kWindowTitleSize, QFont::DemiBold)));
  addDirections(*column_);
  addStops(*column_);
  column_->addStretch(1);
  // Made last, so that it comes last by the Tab key.
  layout->addLayout(makeBottom());
  resizeWithText(*this, kChoiceSize);
}

QWidget* LineChoiceWindow::makeScroller() {
  auto* const content = new QWidget;
  content->setAutoFillBackground(true);
  column_ = new QVBoxLayout(content);
  column_->setContentsMargins(kWindowMargin, kWindowMargin, kWindowMargin, kWindowMargin);
  column_->setSpacing(kWindowGap);
  auto* const scroller = new QScrollArea;
  scroller->setFrameShape(QFrame::NoFrame);
  scroller->setWidgetResizable(true);
  scroller->setFocusPolicy(Qt::NoFocus);
  scroller->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  scroller->setWidget(content);
  return scroller;
}

QLayout* LineChoiceWindow::makeBottom() {
  auto* const done = new ActionButton(texts()("Done"), ActionButton::Emphasis::primary);
  connect(done, &QAbstractButton::clicked, this, [this] { close(); });
  auto* const bottom = new QHBoxLayout;
  constexpr int kSide = kWindowMargin - kButtonRing;
  bottom->setContentsMargins(kSide, kWindowGap, kSide, kSide);
  bottom->addStretch();
  bottom->addWidget(done);
  return bottom;
}

void LineChoiceWindow::addNotifications(NotifyChoice* choice) {
  // Above the stretch.
  column_->insertWidget(column_->count() - 1, choice);
  QWidget* before = list_;
  for (auto* const part : choice->findChildren<QWidget*>()) {
    if (part->focusPolicy() == Qt::NoFocus) continue;
    setTabOrder(before, part);
    before = part;
  }
  resizeWithText(*this, kChoiceSize + QSize(0, choice->sizeHint().height()));
}

void LineChoiceWindow::addDirections(QVBoxLayout& layout) {
  auto* const heading = makeLabel(texts()("Direction"), font(kWindowNoteSize, QFont::DemiBold), Tone::faint);
  heading->setContentsMargins(0, kWindowMargin, 0, 0);
  layout.addWidget(heading);
  auto* const group = new QButtonGroup(this);
  const auto add = [&](const QString& text, std::optional<std::uint8_t> direction) {
    auto* const radio = new QRadioButton(text);
    setControlStyle(*radio);
    radio->setFont(font(kWindowNameSize));
    radio->setChecked(choice_.direction == direction);
    connect(radio, &QRadioButton::clicked, this, [this, direction] { chooseDirection(direction); });
    group->addButton(radio);
    layout.addWidget(radio);
    return radio;
  };
  add(texts()("BothDirections"), std::nullopt);
  for (const std::uint8_t direction : {std::uint8_t{0}, std::uint8_t{1}})
    directions_[direction] = add(directionInWords(direction, nullptr, texts()), direction);
}

void LineChoiceWindow::addStops(QVBoxLayout& layout) {
  auto* const heading =
      makeLabel(texts()("NoticesOfStops"), font(kWindowNoteSize, QFont::DemiBold), Tone::faint);
  heading->setContentsMargins(0, kWindowMargin, 0, 0);
  layout.addWidget(heading);
  auto* const group = new QButtonGroup(this);
  for (const auto& [name, stops] : {std::pair("AllStops", Stops::all), std::pair("NoStops", Stops::none),
                                    std::pair("OnlyTheseStops", Stops::chosen)}) {
    auto* const radio = new QRadioButton(texts()(name));
    setControlStyle(*radio);
    radio->setFont(font(kWindowNameSize));
    radio->setChecked(choice_.stops == stops);
    connect(radio, &QRadioButton::clicked, this, [this, wanted = stops] { chooseStops(wanted); });
    group->addButton(radio);
    layout.addWidget(radio);
    someStops_ = radio;
  }
  note_ = makeLabel(texts()("LoadingStops"), font(kWindowNoteSize), Tone::faint);
  layout.addWidget(note_);
  auto* const list = new ActionList<QListWidget>;
  list_ = list;
  list_->setFrameShape(QFrame::NoFrame);
  list_->hide();
  setControlStyle(*list_);
  list_->setFont(font(kWindowNameSize));
  list_->setAccessibleName(texts()("NoticesOfStops"));
  list->setRowAction([this](const QModelIndex& index) {
    const bool isChecked = index.data(Qt::CheckStateRole).toInt() == Qt::Checked;
    list_->item(index.row())->setCheckState(isChecked ? Qt::Unchecked : Qt::Checked);
  });
  list_->setEnabled(choice_.stops == Stops::chosen);
  connect(list_, &QListWidget::itemChanged, this, [this] { stopsDidChange(); });
  // The stops belong to the last of the buttons above.
  auto* const indented = new QHBoxLayout;
  indented->addSpacing(kStopsIndent);
  indented->addWidget(list_);
  layout.addLayout(indented);
}

/// Stops that the timetable no longer has are left out, and lost with the next change of the stops.
void LineChoiceWindow::showStops(const Outcome<LineStops>& stops) {
  const bool hasStops = stops && !stops->stops.empty();
  note_->setVisible(!hasStops);
  if (!stops) note_->setText(QString::fromStdString(texts().reason(stops.error())));
  if (!hasStops) {
    if (stops) note_->setText(texts()("NoStopsKnown"));
    return;
  }
  for (const std::uint8_t direction : {std::uint8_t{0}, std::uint8_t{1}})
    directions_[direction]->setText(withoutMnemonic(directionInWords(direction, &*stops, texts())));
  const QSignalBlocker blocker(list_);
  list_->clear();
  for (const LineStops::Stop& stop : stops->stops) {
    QStringList ids;
    for (const std::string& id : stop.ids) ids << QString::fromStdString(id);
    const bool isChosen = std::ranges::any_of(stop.ids, [this](const std::string& id) {
      return std::ranges::find(choice_.stopIds, id) != choice_.stopIds.end();
    });
    auto* const item = new QListWidgetItem(QString::fromStdString(stop.name), list_);
    item->setData(kStopIdsRole, ids);
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsUserCheckable);
    item->setCheckState(isChosen ? Qt::Checked : Qt::Unchecked);
  }
  const int shown = std::min(list_->count(), kMostShownStops);
  list_->setFixedHeight(shown * list_->sizeHintForRow(0));
  list_->show();
}

void LineChoiceWindow::chooseDirection(std::optional<std::uint8_t> direction) {
  LineChoice choice = choice_;
  choice.direction = direction;
  choose(choice);
}

/// Nothing changes before the first stop has been chosen.
void LineChoiceWindow::chooseStops(Stops stops) {
  list_->setEnabled(stops == Stops::chosen);
  if (stops == Stops::chosen) return stopsDidChange();
  LineChoice choice = choice_;
  choice.stops = stops;
  choice.stopIds.clear();
  choose(choice);
}

void LineChoiceWindow::stopsDidChange() {
  LineChoice choice = choice_;
  choice.stopIds.clear();
  for (int row = 0; row < list_->count(); ++row) {
    if (list_->item(row)->checkState() != Qt::Checked) continue;
    for (const QString& id : list_->item(row)->data(kStopIdsRole).toStringList())
      choice.stopIds.push_back(id.toStdString());
  }
  choice.stops = choice.stopIds.empty() ? Stops::none : Stops::chosen;
  if (choice.stopIds.empty() && choice_.stops == Stops::all) return;
  choose(choice);
}

void LineChoiceWindow::choose(const LineChoice& choice) {
  if (choice == choice_) return;
  choice_ = choice;
  chosen_(choice_);
}

}  // namespace linewatch::desktop
