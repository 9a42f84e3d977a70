#include "desktop/window/line_choice_menu.h"

#include <QAction>
#include <QActionGroup>
#include <QStringList>
#include <cstdint>
#include <string>
#include <utility>

namespace linewatch::desktop {

namespace {

using Stops = LineChoice::Stops;

/// More ids than this would make a menu entry too wide.
constexpr std::size_t kMostNamedStops = 5;

QString chosenStops(const LineChoice& choice, const WindowTexts& texts) {
  QStringList ids;
  for (const std::string& id : choice.stopIds) {
    if (static_cast<std::size_t>(ids.size()) == kMostNamedStops) {
      ids << QStringLiteral("…");
      break;
    }
    ids << QString::fromStdString(id);
  }
  return texts("ChosenStops", {ids.join(QStringLiteral(", ")).toStdString()});
}

QString oneDirection(std::uint8_t direction, const WindowTexts& texts) {
  return texts("OnlyDirection", {std::to_string(direction)});
}

LineChoice withStops(LineChoice choice, Stops stops) {
  choice.stops = stops;
  if (stops != Stops::chosen) choice.stopIds.clear();
  return choice;
}

LineChoice withDirection(LineChoice choice, std::optional<std::uint8_t> direction) {
  choice.direction = direction;
  return choice;
}

}  // namespace

QString choiceInWords(const LineChoice& choice, const WindowTexts& texts) {
  QStringList words;
  if (choice.stops == Stops::chosen) words << chosenStops(choice, texts);
  if (choice.stops == Stops::none) words << texts("NoStops");
  if (choice.direction) words << oneDirection(*choice.direction, texts);
  return words.join(QStringLiteral(" · "));
}

LineChoiceMenu::LineChoiceMenu(const LineChoice& choice, const WindowTexts& texts, Chosen chosen,
                               QWidget* parent)
    : QMenu(parent), present_(choice), chosen_(std::move(chosen)) {
  setAttribute(Qt::WA_DeleteOnClose);
  auto& stops = *new QActionGroup(this);
  add(texts("AllStops"), withStops(choice, Stops::all), stops);
  if (choice.stops == Stops::chosen) add(chosenStops(choice, texts), choice, stops);
  add(texts("NoStops"), withStops(choice, Stops::none), stops);
  addSeparator();
  auto& directions = *new QActionGroup(this);
  add(texts("BothDirections"), withDirection(choice, std::nullopt), directions);
  for (const std::uint8_t direction : {std::uint8_t{0}, std::uint8_t{1}})
    add(oneDirection(direction, texts), withDirection(choice, direction), directions);
}

void LineChoiceMenu::add(const QString& text, const LineChoice& choice, QActionGroup& group) {
  // An "&" in a stop's id would otherwise be taken for a shortcut.
  QAction* const action = addAction(QString(text).replace(QLatin1Char('&'), QLatin1String("&&")));
  action->setCheckable(true);
  group.addAction(action);
  action->setChecked(choice == present_);
  connect(action, &QAction::triggered, this, [this, choice] {
    if (choice != present_) chosen_(choice);
  });
}

}  // namespace linewatch::desktop
