#include "desktop/window/row_surface.h"

#include <QAccessible>
#include <QPointingDevice>
#include <QTouchEvent>
#include <QWheelEvent>

#include "desktop/window/panel_test.h"

namespace linewatch::desktop {
namespace {

class RowSurfaceTest : public PanelTest {
 protected:
  void startExpanded(simulation::World world = cityWithAStrike(), std::uint64_t maxRows = 4) {
    startShown(std::move(world), maxRows);
    panel_->setExpanded(true);
    settle();
  }
  std::size_t opened() { return count("openUserActivity"); }
  double scrolledTo() { return panel_->controller().tableView()->contentOffset(); }

  using Fingers = QList<QEventPoint>;
  static QEventPoint finger(int id, QEventPoint::State state, const QPointF& point) {
    return {id, state, point, point};
  }
  void touch(QEvent::Type type, const Fingers& fingers) {
    static const QPointingDevice screen("screen", 1, QInputDevice::DeviceType::TouchScreen,
                                        QPointingDevice::PointerType::Finger,
                                        QInputDevice::Capability::Position, 2, 0);
    QTouchEvent event(type, &screen, Qt::NoModifier, fingers);
    QApplication::sendEvent(&rows(), &event);
  }
  void touch(QEvent::Type type, const QPointF& point) {
    const auto state = type == QEvent::TouchBegin    ? QEventPoint::Pressed
                       : type == QEvent::TouchUpdate ? QEventPoint::Updated
                                                     : QEventPoint::Released;
    touch(type, Fingers{finger(1, state, point)});
  }
};

TEST_F(RowSurfaceTest, AClickOpensARowUnlessItIsDraggedAway) {
  startExpanded();
  click(rows(), middleOf(0));
  EXPECT_EQ(opened(), 1U);
  mouse(rows(), QEvent::MouseButtonPress, middleOf(0));
  mouse(rows(), QEvent::MouseMove, middleOf(1));
  mouse(rows(), QEvent::MouseButtonRelease, middleOf(1));
  EXPECT_EQ(opened(), 1U) << "it was dragged away";
  click(rows(), middleOf(2));
  EXPECT_EQ(openedURLs_.size(), 1U);
}

TEST_F(RowSurfaceTest, KeysSelectAndOpenRows) {
  startExpanded();
  EXPECT_EQ(rows().currentRow(), 0U);
  press(rows(), Qt::Key_Down);
  press(rows(), Qt::Key_Down);
  press(rows(), Qt::Key_Down);
  EXPECT_EQ(rows().currentRow(), 2U) << "the last row";
  press(rows(), Qt::Key_Up);
  press(rows(), Qt::Key_Return);
  press(rows(), Qt::Key_Space);
  EXPECT_EQ(opened(), 2U);
  press(rows(), Qt::Key_Home);
  EXPECT_EQ(rows().currentRow(), 0U);
  panel_->setExpanded(false);
  settle();
  EXPECT_EQ(rows().currentRow(), 0U);
}

TEST_F(RowSurfaceTest, HighlightsHoveredAndPressedRows) {
  startExpanded();
  const QPoint spot(rows().width() / 2, rows().rectOf(0).top() + 4);
  const auto color = [&] { return rows().grab().toImage().pixelColor(spot); };
  const QColor idle = color();
  mouse(rows(), QEvent::MouseMove, spot);
  const QColor hovered = color();
  EXPECT_NE(hovered, idle);
  mouse(rows(), QEvent::MouseButtonPress, spot);
  EXPECT_NE(color(), hovered);
  mouse(rows(), QEvent::MouseButtonRelease, spot);
  EXPECT_EQ(color(), hovered);
  QEvent leave(QEvent::Leave);
  QApplication::sendEvent(&rows(), &leave);
  EXPECT_EQ(color(), idle);
}

TEST_F(RowSurfaceTest, HoverFollowsChangesUnderARestingMouse) {
  auto world = cityWithAStrike();
  world.service.answer = simulation::WorldService::Answer::error;
  startShown(world);
  const auto shape = [this] {
    rows().grab();
    return rows().cursor().shape();
  };
  mouse(rows(), QEvent::MouseMove, middleOf(0));
  EXPECT_EQ(shape(), Qt::ArrowCursor) << "an error row opens nothing";
  change([](auto& changed) { changed.service.answer = simulation::WorldService::Answer::lines; });
  panel_->requestUpdate();
  advance(1);
  EXPECT_EQ(shape(), Qt::PointingHandCursor);
  change([](auto& changed) { changed.service.answer = simulation::WorldService::Answer::error; });
  panel_->requestUpdate();
  advance(1);
  EXPECT_EQ(shape(), Qt::ArrowCursor);
}

TEST_F(RowSurfaceTest, TheWheelScrolls) {
  startExpanded(cityOf(40), 100);
  const QPointF point(20, 20);
  QWheelEvent down(point, rows().mapToGlobal(point), {}, {0, -240}, Qt::NoButton, Qt::NoModifier,
                   Qt::NoScrollPhase, false);
  QApplication::sendEvent(&rows(), &down);
  EXPECT_EQ(scrolledTo(), 110);
  QWheelEvent up(point, rows().mapToGlobal(point), {0, 30}, {0, 240}, Qt::NoButton, Qt::NoModifier,
                 Qt::NoScrollPhase, false);
  QApplication::sendEvent(&rows(), &up);
  EXPECT_EQ(scrolledTo(), 80) << "a device that reports pixels scrolls by pixels";
}

TEST_F(RowSurfaceTest, AFingerTapsOrScrolls) {
  startExpanded(cityOf(40), 100);
  touch(QEvent::TouchBegin, {50, 300});
  touch(QEvent::TouchEnd, {50, 301});
  EXPECT_EQ(opened(), 1U);
  touch(QEvent::TouchBegin, {50, 300});
  touch(QEvent::TouchUpdate, {50, 200});
  touch(QEvent::TouchUpdate, {50, 150});
  touch(QEvent::TouchEnd, {50, 150});
  EXPECT_EQ(scrolledTo(), 150);
  EXPECT_EQ(opened(), 1U);
  EXPECT_EQ(rows().currentRow(), 2U) << "the touched row is the current one";

  using enum QEventPoint::State;
  touch(QEvent::TouchBegin, {50, 300});
  touch(QEvent::TouchUpdate, {finger(2, Pressed, {90, 20}), finger(1, Updated, {50, 290})});
  EXPECT_EQ(scrolledTo(), 160) << "only the first finger counts, in any order";
  touch(QEvent::TouchUpdate, {finger(1, Released, {50, 290}), finger(2, Updated, {90, 10})});
  touch(QEvent::TouchUpdate, {finger(2, Updated, {90, 200})});
  touch(QEvent::TouchEnd, {finger(2, Released, {90, 200})});
  EXPECT_EQ(scrolledTo(), 160);
  EXPECT_EQ(opened(), 1U);
}

TEST_F(RowSurfaceTest, RowsAreAccessible) {
  auto world = cityWithAStrike();
  world.lines["A"].alternateArtwork = TransitArtworkDataSource{
      .shieldDataSource = ShieldDataSource{.shieldText = "A"}, .accessibilityText = "Line A"};
  startExpanded(world);
  QAccessibleInterface* const list = QAccessible::queryAccessibleInterface(&rows());
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(list->role(), QAccessible::List);
  EXPECT_EQ(list->text(QAccessible::Name), "Advisories");
  ASSERT_EQ(list->childCount(), 3);
  QAccessibleInterface* const row = list->child(0);
  EXPECT_EQ(row->role(), QAccessible::ListItem);
  EXPECT_EQ(row->text(QAccessible::Name), "Line A, Strike");
  EXPECT_EQ(list->child(2)->text(QAccessible::Name), "LineWatch_GoodService_Title")
      << "its image is not a shield";
  EXPECT_EQ(row->text(QAccessible::Description), "Few trains");
  EXPECT_EQ(row->parent(), list);
  EXPECT_EQ(list->indexOfChild(list->child(2)), 2);
  EXPECT_EQ(list->child(1)->rect().top() - row->rect().top(), 110);
  EXPECT_EQ(list->childAt(row->rect().center().x(), row->rect().center().y()), row);
  auto* const actions = row->actionInterface();
  ASSERT_NE(actions, nullptr);
  EXPECT_TRUE(actions->actionNames().contains(QAccessibleActionInterface::pressAction()));
  actions->doAction(QAccessibleActionInterface::pressAction());
  EXPECT_EQ(opened(), 1U);
  list->child(1)->actionInterface()->doAction(QAccessibleActionInterface::setFocusAction());
  EXPECT_EQ(rows().currentRow(), 1U);
}

TEST_F(RowSurfaceTest, ARemovedRowIsInvalidForAssistiveTechnology) {
  startExpanded();
  QAccessibleInterface* const list = QAccessible::queryAccessibleInterface(&rows());
  QAccessibleInterface* const last = list->child(2);
  ASSERT_TRUE(last->isValid());
  panel_->setExpanded(false);
  settle();
  EXPECT_EQ(list->childCount(), 1);
  EXPECT_FALSE(last->isValid());
  EXPECT_TRUE(last->text(QAccessible::Name).isEmpty());
  EXPECT_EQ(list->child(2), nullptr);
  EXPECT_EQ(list->child(0)->text(QAccessible::Name), "LineWatch_Summary_advisory_count(2)");
}

TEST_F(RowSurfaceTest, TheSummaryNamesAtMostTwelveShields) {
  auto world = cityOf(14);
  for (int i = 0; i < 14; ++i) {
    const std::string name = "L" + std::to_string(i);
    world.lines[name].alternateArtwork =
        TransitArtworkDataSource{.shieldDataSource = ShieldDataSource{.shieldText = name}};
  }
  startShown(world);
  EXPECT_EQ(rows().wordsOf(0).description.toStdString(),
            "L0, L1, L2, L3, L4, L5, L6, L7, L8, L9, L10, L11, "
            "Transit_Incident_Not_Displayed_Incidents(2)");
}

}  // namespace
}  // namespace linewatch::desktop
