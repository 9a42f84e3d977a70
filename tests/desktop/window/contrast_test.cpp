#include <QAbstractButton>
#include <QCheckBox>
#include <QComboBox>
#include <QImage>
#include <QLineEdit>
#include <QListWidget>
#include <QRadioButton>
#include <QStyleOptionButton>
#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "desktop/window/companion_test.h"
#include "desktop/window/line_choice_window.h"
#include "desktop/window/settings_window.h"
#include "desktop/window/window_colors.h"
#include "ui/artwork_image_view.h"
#include "ui/label.h"
#include "ui/transit_info_label_view.h"

namespace linewatch::desktop {
namespace {

constexpr double kTextContrast = 4.5;
constexpr double kSignContrast = 3;
/// Pixels per point: strokes of small letters have their full colour.
constexpr int kScale = 2;

/// A part of a window that has to be legible.
struct Part {
  std::string name;
  QRect rect;
  double contrast;
};

/// The contrast of the region's most frequent colour to the colour that differs most from it.
double contrastIn(const QImage& image, const QRect& region) {
  std::map<QRgb, int> counts;
  const QRect inside = region & image.rect();
  for (int y = inside.top(); y <= inside.bottom(); ++y) {
    for (int x = inside.left(); x <= inside.right(); ++x) ++counts[image.pixel(x, y)];
  }
  if (counts.empty()) return 0;
  const QRgb background =
      std::ranges::max_element(counts, {}, [](const auto& each) { return each.second; })->first;
  double most = 1;
  for (const auto& [color, count] : counts)
    most = std::max(most, contrastOf(QColor(background), QColor(color)));
  return most;
}

/// The mark of a check box or radio button, or a piece of a field's outline; null for other widgets.
QRect outlineOf(const QWidget& widget) {
  QStyleOptionButton option;
  option.initFrom(&widget);
  const auto indicator = [&](QStyle::SubElement mark) {
    return widget.style()->subElementRect(mark, &option, &widget);
  };
  if (qobject_cast<const QRadioButton*>(&widget)) return indicator(QStyle::SE_RadioButtonIndicator);
  if (qobject_cast<const QCheckBox*>(&widget)) return indicator(QStyle::SE_CheckBoxIndicator);
  const bool isField = qobject_cast<const QLineEdit*>(&widget) || qobject_cast<const QComboBox*>(&widget);
  return isField ? QRect(0, widget.height() / 2, 6, 6) : QRect();
}

void addOutlines(const QWidget& window, std::vector<Part>& parts) {
  const auto add = [&](const QWidget& widget, const QRect& rect) {
    parts.push_back({"outline of " + widget.accessibleName().toStdString(),
                     {widget.mapTo(&window, rect.topLeft()), rect.size()},
                     kSignContrast});
  };
  for (const QWidget* const widget : window.findChildren<QWidget*>()) {
    const QRect outline = outlineOf(*widget);
    if (widget->isVisible() && !outline.isEmpty()) add(*widget, outline);
    const auto* const list = qobject_cast<const QListWidget*>(widget);
    for (int row = 0; list && row < list->count(); ++row) {
      const QRect item = list->visualItemRect(list->item(row));
      add(*list->viewport(), {item.left(), item.top(), item.height(), item.height()});
    }
  }
}

void addWidgets(const QWidget& window, std::vector<Part>& parts) {
  for (const QWidget* const widget : window.findChildren<QWidget*>()) {
    const auto* const label = qobject_cast<const QLabel*>(widget);
    const auto* const button = qobject_cast<const QAbstractButton*>(widget);
    const QString text = label ? label->text() : button ? button->text() : QString();
    const bool isSign = dynamic_cast<const ArtworkStrip*>(widget) != nullptr;
    if (!widget->isVisible() || (text.isEmpty() && !isSign)) continue;
    parts.push_back({isSign ? "shields" : text.toStdString(),
                     {widget->mapTo(&window, QPoint()), widget->size()},
                     isSign ? kSignContrast : kTextContrast});
  }
}

/// Images that are faint on purpose stand beside a text that says the same.
void addViews(const ui::View& view, const ui::View& root, const QPoint& origin, std::vector<Part>& parts) {
  if (view.isHidden()) return;
  const auto* const label = dynamic_cast<const ui::Label*>(&view);
  const auto* const image = dynamic_cast<const ui::ArtworkImageView*>(&view);
  const bool isText = label && !label->text().empty();
  const bool isSign = (image && image->image() && image->alpha() == 1) ||
                      dynamic_cast<const ui::TransitInfoLabelView*>(&view);
  const ui::Rect rect = view.convertRectTo(view.bounds(), root);
  if (isText || isSign)
    parts.push_back({isText ? label->text() : "artwork",
                     QRectF(rect.x, rect.y, rect.width, rect.height).toRect().translated(origin),
                     isText ? kTextContrast : kSignContrast});
  for (const auto& subview : view.subviews()) addViews(*subview, root, origin, parts);
}

class ContrastTest : public CompanionTest {
 protected:
  static std::shared_ptr<const TransitLineFields> cityLine(std::uint64_t muid, const std::string& name) {
    const auto shield = std::make_shared<const TransitArtworkDataSource>(artwork(name));
    return std::make_shared<const TransitLineFields>(
        TransitLineFields{.muid = muid, .name = name, .artwork = shield});
  }
  ~ContrastTest() override { QApplication::setPalette(QPalette()); }

  void expectLegible(QWidget& window, std::vector<Part> parts, const std::string& where) {
    QImage image(window.size() * kScale, QImage::Format_RGB32);
    image.setDevicePixelRatio(kScale);
    window.render(&image);
    image.setDevicePixelRatio(1);
    EXPECT_GE(parts.size(), 4U) << where;
    for (const Part& part : parts) {
      const QRect pixels(part.rect.topLeft() * kScale, part.rect.size() * kScale);
      EXPECT_GE(contrastIn(image, pixels), part.contrast) << part.name << ", " << where;
    }
  }
  void expectPanelLegible(const std::string& where) {
    std::vector<Part> parts;
    addWidgets(*panel_, parts);
    const ui::View& root = panel_->controller().view();
    addViews(root, root, boundsOf(rows()).topLeft(), parts);
    expectLegible(*panel_, parts, where);
  }
  void expectDetailsLegible(const std::string& where) {
    auto& details = *window<DetailsWindow>();
    std::vector<Part> parts;
    addWidgets(details, parts);
    expectLegible(details, parts, where);
  }
};

TEST_F(ContrastTest, EveryTextAndSignIsLegibleInEveryAppearance) {
  startCompanion();
  feedNews_.states = {{.feed = "City Buses", .kind = FeedState::Kind::unreachable}};
  panel_->requestUpdate();
  advance(1);
  openRow(activityOfRow(0));
  find({{11, {.lines = {cityLine(1, "A"), cityLine(2, "B")}, .severity = AlertSeverity::severe}}});
  press(*window<DetailsWindow>()->findChild<QAbstractButton*>(), Qt::Key_Return);
  for (const auto appearance : {ui::Appearance::light, ui::Appearance::dark,
                                ui::Appearance::lightHighContrast, ui::Appearance::darkHighContrast}) {
    QApplication::setPalette(windowPalette(appearance));
    settle();
    EXPECT_EQ(appearanceOf(panel_->palette()), appearance);
    const std::string where = "appearance " + std::to_string(static_cast<int>(appearance));
    for (const bool isExpanded : {true, false}) {
      panel_->setExpanded(isExpanded);
      settle();
      expectPanelLegible(where);
    }
    mouse(rows(), QEvent::MouseMove, middleOf(0));
    expectPanelLegible(where + ", under the mouse");
    mouse(rows(), QEvent::MouseButtonPress, middleOf(0));
    expectPanelLegible(where + ", pressed");
    mouse(rows(), QEvent::MouseButtonRelease, {-1, -1});
    expectDetailsLegible(where);
  }
}

TEST_F(ContrastTest, EveryMarkAndOutlineOfAControlIsLegible) {
  start();
  const auto texts = std::make_shared<const WindowTexts>(*UserLocale::parse("en"));
  SettingsWindow settings(texts, {.find = [](const Setting&) { return SettingValue{"false"}; },
                                  .set = [](const Setting&, const std::string&) { return std::nullopt; },
                                  .faults = [] { return std::vector<std::string>(); }});
  settings.present();
  settings.resize(400, 2000);
  LineChoiceWindow choice(texts, "Harbour", {.stops = LineChoice::Stops::chosen, .stopIds = {"a"}},
                          [](const LineChoice&) {});
  choice.showStops(LineStops{.stops = {{{"a"}, "Pier"}, {{"b"}, "Zoo"}}});
  choice.present();
  for (const auto appearance : {ui::Appearance::light, ui::Appearance::dark,
                                ui::Appearance::lightHighContrast, ui::Appearance::darkHighContrast}) {
    QApplication::setPalette(windowPalette(appearance));
    settle();
    for (QWidget* const window : {static_cast<QWidget*>(&settings), static_cast<QWidget*>(&choice)}) {
      std::vector<Part> parts;
      addWidgets(*window, parts);
      addOutlines(*window, parts);
      expectLegible(*window, parts, "appearance " + std::to_string(static_cast<int>(appearance)));
    }
  }
}

TEST_F(ContrastTest, ThePictureOfGoodServiceIsLegible) {
  auto world = cityWithAStrike();
  world.favorites = {{.line = "C"}};
  startShown(world);
  for (const auto appearance : {ui::Appearance::light, ui::Appearance::dark}) {
    QApplication::setPalette(windowPalette(appearance));
    settle();
    expectPanelLegible("good service");
  }
}

}  // namespace
}  // namespace linewatch::desktop
