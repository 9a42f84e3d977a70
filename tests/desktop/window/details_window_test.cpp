#include "desktop/window/details_window.h"

#include "desktop/window/companion_test.h"
#include "desktop/window/link_button.h"

namespace linewatch::desktop {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

TEST_F(CompanionTest, ShowsTheLineOfARow) {
  startCompanion();
  ASSERT_TRUE(openRow(activityOfRow(0)));
  const auto* const details = window<DetailsWindow>();
  ASSERT_NE(details, nullptr);
  EXPECT_EQ(details->windowTitle(), "A");
  const QStringList labels = labelsOf(*details);
  EXPECT_THAT(labels, Contains("Metro"));
  EXPECT_THAT(labels, Not(Contains("A"))) << "the shield says it already";
  EXPECT_THAT(labels, Contains("Strike"));
  EXPECT_THAT(labels, Contains("No service"));
  EXPECT_THAT(labels, Contains("Few trains run.\n\nMore <b>buses</b> do."));
  EXPECT_TRUE(labels.filter("Until ").size() == 1) << labels.join("|").toStdString();
  for (const QLabel* label : details->findChildren<QLabel*>()) EXPECT_EQ(label->textFormat(), Qt::PlainText);
  press(*details->findChild<LinkButton*>(), Qt::Key_Return);
  EXPECT_THAT(openedLinks_, ElementsAre("https://example.org/strike"));
}

TEST_F(CompanionTest, AddsAffectedLinesWhenTheyAreFound) {
  startCompanion();
  openRow(activityOfRow(0));
  EXPECT_THAT(askedLines_, ElementsAre(11U));
  const auto lineCalled = [](std::uint64_t muid, const std::string& name) {
    const auto shield = std::make_shared<const TransitArtworkDataSource>(artwork(name));
    return std::make_shared<const TransitLineFields>(
        TransitLineFields{.muid = muid, .name = name, .artwork = shield});
  };
  const auto strips = [] { return stripsOf(*window<DetailsWindow>()); };
  const auto findOfFirst = findLines_;
  findLines_({{11, {lineCalled(1, "A")}}});
  EXPECT_EQ(strips().size(), 1U) << "the line of the window itself is left out";
  const int height = window<DetailsWindow>()->height();
  findLines_({{11, {lineCalled(1, "A"), lineCalled(2, "B")}}, {99, {}}});
  ASSERT_EQ(strips().size(), 2U);
  EXPECT_EQ(strips().back()->accessibleName(), "Affected lines: A, B");
  EXPECT_GT(window<DetailsWindow>()->height(), height);
  openRow(activityOfRow(1));
  findOfFirst({{12, {lineCalled(1, "A"), lineCalled(2, "B")}}});
  EXPECT_EQ(strips().size(), 1U) << "an answer for earlier content is ignored";
}

TEST_F(CompanionTest, ShowsTheIncidentsOfTheSummary) {
  startCompanion();
  ASSERT_TRUE(openRow(activityOfSummary()));
  const auto* const details = window<DetailsWindow>();
  EXPECT_EQ(details->windowTitle(), "2 Advisories");
  EXPECT_THAT(labelsOf(*details), Contains("Strike"));
  EXPECT_THAT(labelsOf(*details), Contains("Works"));
  EXPECT_THAT(askedLines_, ElementsAre(11U, 12U));
  EXPECT_EQ(details->findChildren<LinkButton*>().size(), 1) << "only web pages get a link";
}

}  // namespace
}  // namespace linewatch::desktop
