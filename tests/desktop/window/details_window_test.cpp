#include "desktop/window/details_window.h"

#include <QDateTime>
#include <QScrollBar>
#include <QTextDocument>
#include <QTimer>
#include <QWheelEvent>
#include <algorithm>
#include <chrono>
#include <utility>

#include <time.h>

#include "desktop/window/companion_test.h"
#include "desktop/window/link_button.h"

namespace linewatch::desktop {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

class DetailsWindowTest : public CompanionTest {
 protected:
  std::shared_ptr<const TransitLineFields> line(std::uint64_t muid, const std::string& name) {
    const auto shield = std::make_shared<const TransitArtworkDataSource>(artwork(name));
    return std::make_shared<const TransitLineFields>(
        TransitLineFields{.muid = muid, .name = name, .artwork = shield});
  }
  /// Opens line "A" with these incidents.
  void openLine(const std::vector<TransitIncidentFields>& incidents) { openLine(recordsOf(incidents)); }
  static TransitIncidents recordsOf(const std::vector<TransitIncidentFields>& incidents) {
    TransitIncidents records;
    for (const TransitIncidentFields& fields : incidents)
      records.push_back(std::make_shared<const TransitIncidentRecord>(fields));
    return records;
  }
  void openLine(TransitIncidents incidents) {
    EXPECT_FALSE(errorOfOpening(activityOf(std::move(incidents))));
  }
  UserActivity activityOf(TransitIncidents incidents) {
    RovaActivity record;
    record.setLineItem(std::make_shared<TransitStorageLineItem>(
        TransitLineRecord(TransitLineFields{.muid = 1, .name = "A"}, std::move(incidents))));
    return {*activityOfRow(0).activityType(), {{kActivityRecordKey, record.data()}}};
  }
  DetailsWindow& details() { return *window<DetailsWindow>(); }
  QStringList labels() { return labelsOf(details()); }
  Date now() { return platform_->mainLoop().now(); }
};

TEST_F(DetailsWindowTest, ShowsTheLineOfARow) {
  startCompanion();
  ASSERT_TRUE(openRow(activityOfRow(0)));
  EXPECT_EQ(details().windowTitle(), "A");
  EXPECT_THAT(labels(), Contains("Metro"));
  EXPECT_THAT(labels(), Not(Contains("A"))) << "the shield says it already";
  EXPECT_THAT(labels(), Contains("Strike"));
  EXPECT_THAT(labels(), Contains("No service"));
  EXPECT_THAT(labels(), Contains("Few trains run.\n\nMore <b>buses</b> do."));
  EXPECT_TRUE(labels().filter("Until ").size() == 1) << labels().join("|").toStdString();
  for (const QLabel* label : details().findChildren<QLabel*>()) EXPECT_EQ(label->textFormat(), Qt::PlainText);
  press(*details().findChild<LinkButton*>(), Qt::Key_Return);
  EXPECT_THAT(openedLinks_, ElementsAre("https://example.org/strike"));
  EXPECT_TRUE(labels().filter("could not be opened").empty());
}

TEST_F(DetailsWindowTest, ReportsLinksThatCannotBeOpened) {
  startCompanion();
  linksOpen_ = false;
  openRow(activityOfRow(0));
  auto& link = *details().findChild<LinkButton*>();
  press(link, Qt::Key_Return);
  EXPECT_THAT(labels(), Contains("This page could not be opened: https://example.org/strike"));
  linksOpen_ = true;
  press(link, Qt::Key_Return);
  EXPECT_TRUE(labels().filter("could not be opened").empty());

  openRow(activityOfRow(1));
  EXPECT_EQ(details().findChild<LinkButton*>(), nullptr) << "only web pages get a link";
  EXPECT_THAT(labels(), Contains("This link is not a web page and cannot be opened: file:///etc/passwd"));
}

TEST_F(DetailsWindowTest, AddsFactsFromTheFeeds) {
  startCompanion();
  openRow(activityOfRow(0));
  EXPECT_THAT(askedIncidents_, ElementsAre(11U));
  const auto strips = [&] { return stripsOf(details()); };
  const auto foundOfFirst = found_;
  find({{11, {.lines = {line(1, "A")}}}});
  EXPECT_EQ(strips().size(), 1U) << "the line of the window itself is left out";
  const int height = details().height();
  FoundIncident strike{.lines = {line(1, "A"), line(2, "B")},
                       .severity = AlertSeverity::severe,
                       .cause = AlertCause::strike,
                       .effect = AlertEffect::noService,
                       .stops = {"Harbour", "Zoo"},
                       .isOneDirectionOnly = true};
  find({{11, strike}, {99, {}}});
  ASSERT_EQ(strips().size(), 2U);
  EXPECT_EQ(strips().back()->accessibleName(), "Affected lines: A, B");
  EXPECT_THAT(labels(), Contains("Severe · No service · In one direction only"))
      << "the title says the cause, and the record the effect";
  EXPECT_THAT(labels(), Contains("Stops: Harbour, Zoo"));
  EXPECT_GT(details().height(), height);

  openRow(activityOfRow(1));
  find(foundOfFirst, {{12, {.lines = {line(1, "A"), line(2, "B")}}}});
  EXPECT_EQ(strips().size(), 1U) << "an answer for earlier content is ignored";
}

TEST_F(DetailsWindowTest, NamesTheFirstOfThousandsOfLines) {
  startCompanion();
  openRow(activityOfRow(0));
  FoundIncident found;
  for (std::uint64_t i = 0; i < 1000; ++i) found.lines.push_back(line(i + 1, std::to_string(i)));
  find({{11, found}});
  EXPECT_THAT(labels(), Contains("and 960 more lines"));
  EXPECT_TRUE(stripsOf(details()).back()->accessibleName().endsWith("57, 58, 59 and 940 more"));
}

TEST_F(DetailsWindowTest, ShowsTheIncidentsOfTheSummary) {
  startCompanion();
  ASSERT_TRUE(openRow(activityOfSummary()));
  EXPECT_EQ(details().windowTitle(), "2 Advisories");
  EXPECT_THAT(labels(), Contains("Strike"));
  EXPECT_THAT(labels(), Contains("Works"));
  EXPECT_THAT(askedIncidents_, ElementsAre(11U, 12U));
}

TEST_F(DetailsWindowTest, GroupsIncidentsByTime) {
  startCompanion();
  const Seconds day(86400);
  openLine({{.muid = 1, .startDate = now() + 3 * day, .title = "In three days"},
            {.muid = 2, .startDate = now() + 8 * day, .title = "In eight days"},
            {.muid = 3, .startDate = now() - day, .endDate = now() - Seconds(1), .title = "Yesterday"},
            {.muid = 4, .startDate = now() + day, .title = "Tomorrow"},
            {.muid = 5, .endDate = now() + day, .title = "Now"}});
  const QStringList all = labels();
  QStringList order;
  for (const QString& label : all) {
    if (!label.startsWith("From ") && !label.contains(" to ") && !label.startsWith("Until "))
      order.append(label);
  }
  EXPECT_THAT(order, ElementsAre("A", "Now", "Coming up", "Tomorrow", "In three days", "Later",
                                 "In eight days", "Ended", "Yesterday"));
  openLine({{.muid = 4, .startDate = now() + day, .title = "Tomorrow"}});
  EXPECT_THAT(labels(), Contains("No advisories are known for this line."));
  EXPECT_THAT(labels(), Contains("Coming up"));
}

TEST_F(DetailsWindowTest, ShowsNothingTwice) {
  startCompanion();
  openLine({{.muid = 1, .title = "Line A closed", .fullDescription = "Line A closed. Stops Zoo and Hills."},
            {.muid = 2, .title = "Works", .summary = "works."}});
  find({{1, {.effect = AlertEffect::detour, .stops = {"Zoo", "Hills"}}}});
  EXPECT_THAT(labels(), ElementsAre("A", "Line A closed", "Until further notice", "Stops Zoo and Hills.",
                                    "Works", "Until further notice", "Detour"));
}

TEST_F(DetailsWindowTest, ShowsTheWholeNameAtTheLargestTextSize) {
  startCompanion();
  change([](simulation::World& world) {
    world.textSize = ui::TextSizeCategory::AX5;
    world.lines["A"].name = "Harbour – Hills – Central – Zoo";
  });
  panel_->requestUpdate();
  advance(1);
  openRow(activityOfRow(0));
  for (const QLabel* const label : details().findChildren<QLabel*>())
    EXPECT_GE(label->height(), label->heightForWidth(label->width())) << label->text().toStdString();
}

TEST_F(DetailsWindowTest, PeriodsHaveShortDates) {
  const WindowTexts texts(*UserLocale::parse("en"));
  const auto at = [](int day, int hour) {
    return Date(Seconds(static_cast<double>(QDateTime({2026, 11, day}, {hour, 0}).toSecsSinceEpoch())));
  };
  const Date now = at(24, 8);
  EXPECT_EQ(texts.period(at(24, 9), at(24, 10), now), "9:00 AM to 10:00 AM");
  EXPECT_EQ(texts.period(at(26, 9), at(26, 10), now), "Thu, Nov 26, 9:00 AM to 10:00 AM");
  EXPECT_EQ(texts.period(at(23, 9), at(24, 10), now), "Mon, Nov 23, 9:00 AM to Tue, Nov 24, 10:00 AM");
  EXPECT_EQ(texts.period(at(23, 9), std::nullopt, now + Seconds(366 * 86400.0)),
            "From Nov 23, 2026, 9:00 AM");
  EXPECT_EQ(texts.period(std::nullopt, std::nullopt, now), "Until further notice");
}

/// Measures the longest turn of the main thread's event loop.
class Heartbeat {
 public:
  using Clock = std::chrono::steady_clock;

  Heartbeat() {
    QObject::connect(&timer_, &QTimer::timeout, [this] { beat(); });
    timer_.start(0);
  }
  /// The turn that runs now counts too.
  double longestMilliseconds() {
    beat();
    return longest_;
  }
  /// In processor time of the thread, which does not grow while other programs use the processor.
  double longestBusyMilliseconds() {
    beat();
    return longestBusy_;
  }

 private:
  void beat() {
    const auto now = Clock::now();
    longest_ = std::max(longest_, std::chrono::duration<double, std::milli>(now - last_).count());
    last_ = now;
    const double busy = busyMilliseconds();
    longestBusy_ = std::max(longestBusy_, busy - lastBusy_);
    lastBusy_ = busy;
  }
  static double busyMilliseconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
  }

  QTimer timer_;
  Clock::time_point last_ = Clock::now();
  double longest_ = 0;
  double lastBusy_ = busyMilliseconds();
  double longestBusy_ = 0;
};

class LargeDetailsTest : public DetailsWindowTest {
 protected:
  // Milliseconds of processor time. An optimised build needs 25; sanitizers need more.
  static constexpr double kLongestTurn = 1000;

  static void expectMoments(Heartbeat& heartbeat, const std::string& what) {
    EXPECT_LT(heartbeat.longestBusyMilliseconds(), kLongestTurn) << what;
    RecordProperty(what + "Milliseconds", std::to_string(heartbeat.longestMilliseconds()));
    RecordProperty(what + "BusyMilliseconds", std::to_string(heartbeat.longestBusyMilliseconds()));
  }
  /// Scrolls by wheel, by page and to both ends.
  void scrollAround() {
    auto& column = *details().findChild<DetailsColumn*>();
    QScrollBar& bar = *column.verticalScrollBar();
    const auto turn = [] { QCoreApplication::processEvents(); };
    for (int i = 0; i < 60; ++i) {
      if (i % 2 == 0) bar.setValue(bar.value() + 120);
      if (i % 2 == 1) bar.triggerAction(QAbstractSlider::SliderPageStepAdd);
      turn();
    }
    for (int i = 1; i < 20; ++i) {
      bar.setValue(bar.maximum() / 20 * i);
      turn();
    }
    waitForDetails();
    press(column, Qt::Key_End);
    waitForDetails();
  }
  /// Opens and scrolls, and checks that no turn of the event loop takes long.
  void openAndScroll(const std::vector<TransitIncidentFields>& incidents) {
    startCompanion();
    // The first window and the first text of a process load the style and fonts.
    openRow(activityOfRow(0));
    const UserActivity activity = activityOf(recordsOf(incidents));
    Heartbeat heartbeat;
    EXPECT_FALSE(errorOfDecoding(activity));
    scrollAround();
    expectMoments(heartbeat, "scrolling");
  }
  std::size_t widgets() { return static_cast<std::size_t>(details().findChildren<QWidget*>().size()); }
};

std::string wordsOf(std::size_t bytes) {
  std::string words;
  for (std::size_t i = 0; words.size() < bytes; ++i)
    words +=
        "Trains of line " + std::to_string(i) + (i % 40 == 39 ? " end at the harbour.\n\n" : " are late, ");
  return words + "THE END";
}

TEST_F(LargeDetailsTest, ThousandsOfIncidentsDoNotBlockTheMainThread) {
  std::vector<TransitIncidentFields> incidents;
  for (std::uint64_t i = 0; i < 4000; ++i) {
    incidents.push_back({.muid = i + 1,
                         .title = "Incident " + std::to_string(i),
                         .fullDescription = wordsOf(300),
                         .infoURL = "https://example.org/"});
  }
  openAndScroll(incidents);
  EXPECT_THAT(labels(), Contains("Incident 3999")) << "the last one is shown at the end";
  EXPECT_LT(widgets(), 600U) << "only those near the visible range have widgets";
  Heartbeat heartbeat;
  FoundIncidents found;
  for (std::uint64_t i = 0; i < 4000; ++i)
    found[i + 1] = {.lines = {line(1, "A"), line(2, "B")}, .effect = AlertEffect::detour};
  find(found);
  expectMoments(heartbeat, "found");
  EXPECT_THAT(labels(), Contains("Detour"));
}

TEST_F(LargeDetailsTest, ATextOfMegabytesDoesNotBlockTheMainThread) {
  openAndScroll({{.muid = 1, .title = "Long", .fullDescription = wordsOf(8'000'000)}});
  EXPECT_EQ(labels().filter("THE END").size(), 1) << "the end of the text is shown at the end";
  EXPECT_LT(widgets(), 200U);
}

TEST_F(LargeDetailsTest, ATextWithoutSpacesIsWrapped) {
  openAndScroll(
      {{.muid = 1, .title = std::string(1'000'000, 'x'), .fullDescription = std::string(1'000'000, '\n')}});
  for (const QLabel* const label : details().findChildren<QLabel*>())
    EXPECT_LE(label->minimumSizeHint().width(), details().width()) << label->text().left(20).toStdString();
}

TEST_F(LargeDetailsTest, TabGoesThroughAllLinksInOrder) {
  constexpr int kIncidents = 40;
  startCompanion();
  std::vector<TransitIncidentFields> incidents;
  for (std::uint64_t i = 0; i < kIncidents; ++i)
    incidents.push_back({.muid = i + 1,
                         .title = "Incident",
                         .fullDescription = wordsOf(1000),
                         .infoURL = "https://example.org/" + std::to_string(i)});
  openLine(incidents);
  auto& column = *details().findChild<DetailsColumn*>();
  const QWidget& visible = *column.viewport();
  const auto linkAfter = [&](int key) {
    press(*details().focusWidget(), key);
    auto* const link = dynamic_cast<LinkButton*>(details().focusWidget());
    if (!link) return QString();
    EXPECT_TRUE(visible.rect().contains(QRect(link->mapTo(&visible, QPoint()), link->size())));
    QTextDocument toolTip;
    toolTip.setHtml(link->toolTip());
    return toolTip.toPlainText();
  };
  for (int i = 0; i < kIncidents; ++i)
    ASSERT_EQ(linkAfter(Qt::Key_Tab), "https://example.org/" + QString::number(i));
  EXPECT_EQ(linkAfter(Qt::Key_Tab), "");
  EXPECT_EQ(details().focusWidget(), &column) << "after the last link";
  for (int i = kIncidents; i-- > 0;)
    ASSERT_EQ(linkAfter(Qt::Key_Backtab), "https://example.org/" + QString::number(i));
}

TEST_F(LargeDetailsTest, VisibleTextStaysWhenHeightsAboveChange) {
  startCompanion();
  std::vector<TransitIncidentFields> incidents;
  for (std::uint64_t i = 0; i < 300; ++i)
    incidents.push_back(
        {.muid = i + 1, .title = "Incident " + std::to_string(i), .fullDescription = wordsOf(2000)});
  openLine(incidents);
  auto& column = *details().findChild<DetailsColumn*>();
  QScrollBar& bar = *column.verticalScrollBar();
  bar.setValue(bar.maximum() / 2);
  waitForDetails();
  const QLabel* seen = nullptr;
  for (const QLabel* const label : details().findChildren<QLabel*>()) {
    if (label->text().startsWith("Incident") && label->y() > 0 && label->y() < column.height()) seen = label;
  }
  ASSERT_NE(seen, nullptr);
  const QString text = seen->text();
  const int y = seen->y();
  FoundIncidents found;
  for (std::uint64_t i = 0; i < 300; ++i) found[i + 1] = {.effect = AlertEffect::detour};
  // Only incidents above the visible ones.
  found.erase(found.lower_bound(text.mid(9).toULongLong() - 5), found.end());
  find(found);
  const auto all = details().findChildren<QLabel*>();
  const auto again = std::ranges::find(all, text, [](const QLabel* label) { return label->text(); });
  ASSERT_NE(again, all.end());
  EXPECT_NEAR((*again)->y(), y, 1);
}

}  // namespace
}  // namespace linewatch::desktop
