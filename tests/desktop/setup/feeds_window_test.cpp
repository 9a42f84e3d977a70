#include "desktop/setup/feeds_window.h"

#include <QLabel>
#include <QLineEdit>
#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "desktop/drawing/drawn_platform.h"
#include "desktop/window/action_button.h"
#include "desktop/window/window_events.h"
#include "shared/failure.h"

namespace linewatch::desktop {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::Not;

class FeedsWindowTest : public testing::Test {
 protected:
  FeedsWindowTest() {
    needApplication();
    installPlatform(std::make_shared<DrawnPlatform>(simulation::World()));
    StoredFeed harbour{"Harbour", "/h/gtfs", "https://h.example/alerts"};
    harbour.alerts.keys = {.headers = {{"x-key", "KEY"}}, .key = "old"};
    feeds_ = {harbour, {"Hills <b>", "/i/gtfs", "/i/alerts"}};
    window_ = std::make_unique<FeedsWindow>(std::make_shared<const WindowTexts>(*UserLocale::parse("en")),
                                            services(), [this] { ++citiesAdded_; });
    window_->setUndoTime(std::chrono::hours(1));
    window_->present();
    settle();
  }
  ~FeedsWindowTest() override {
    window_ = nullptr;
    installPlatform(nullptr);
  }

  SetupServices services() {
    SetupServices services;
    services.feeds = [this]() -> Outcome<std::vector<StoredFeed>> { return feeds_; };
    services.states = [] { return std::vector<FeedState>(); };
    services.check = [this](const SetupServices::StatesRead& done) { checked_ = done; };
    services.changeFeed = [this](const StoredFeed& feed) {
      *std::ranges::find(feeds_, feed.name, &StoredFeed::name) = feed;
      return std::optional<Error>();
    };
    services.removeFeed = [this](const std::string& name) -> std::optional<Error> {
      if (isReadOnly_) return failure("state database", "", "it may only be read");
      std::erase_if(feeds_, [&](const StoredFeed& feed) { return feed.name == name; });
      return std::nullopt;
    };
    services.now = [] { return Date(Seconds(1000)); };
    services.feedsDidChange = [this] { ++changes_; };
    return services;
  }
  std::vector<std::string> names() const {
    std::vector<std::string> names;
    for (const StoredFeed& feed : feeds_) names.push_back(feed.name);
    return names;
  }
  QStringList labels() const {
    QStringList texts;
    for (const auto* label : window_->findChildren<QLabel*>()) {
      if (label->isVisible()) texts.append(label->text());
    }
    return texts;
  }
  void press(const QString& accessibleName) {
    for (auto* const button : window_->findChildren<ActionButton*>()) {
      if (button->accessibleName() == accessibleName && button->isVisible()) return button->click(), settle();
    }
    ADD_FAILURE() << "no button " << accessibleName.toStdString();
  }

  std::vector<StoredFeed> feeds_;
  SetupServices::StatesRead checked_;
  bool isReadOnly_ = false;
  int changes_ = 0, citiesAdded_ = 0;
  std::unique_ptr<FeedsWindow> window_;
};

TEST_F(FeedsWindowTest, ShowsTheStateOfEachFeedInWords) {
  EXPECT_THAT(labels(), Contains("Checking…"));
  checked_({{.feed = "Harbour", .written = Date(Seconds(880))},
            {.feed = "Hills <b>",
             .kind = FeedState::Kind::unreachable,
             .error = failure("feed Hills <b>", "", "no such file")}});
  EXPECT_THAT(labels(), Contains("Up to date. Alerts written 2 minutes ago."));
  EXPECT_THAT(labels(), Contains("Hills <b> could not be loaded. (feed Hills <b>: no such file)"));
  for (const auto* label : window_->findChildren<QLabel*>()) EXPECT_EQ(label->textFormat(), Qt::PlainText);
}

TEST_F(FeedsWindowTest, RemovesAFeedOnceItCanNoLongerBeUndone) {
  press("Remove – Harbour");
  EXPECT_THAT(names(), ElementsAre("Harbour", "Hills <b>")) << "it is stored as long as it can come back";
  EXPECT_THAT(labels(), Contains("Harbour is removed. Its favorites stay, in case it comes back."));
  press("Undo – Harbour");
  EXPECT_THAT(labels(), Contains("Harbour"));
  window_->close();
  EXPECT_EQ(changes_, 0);
  window_->present();
  press("Remove – Harbour");
  window_->close();
  EXPECT_THAT(names(), ElementsAre("Hills <b>"));
  EXPECT_EQ(changes_, 1);

  window_->present();
  settle();
  window_->setUndoTime(std::chrono::milliseconds(0));
  isReadOnly_ = true;
  press("Remove – Hills <b>");
  waitUntil([this] { return labels().contains("state database: it may only be read"); });
  EXPECT_THAT(labels(), Contains("Hills <b>")) << "what cannot be removed is shown again";
}

TEST_F(FeedsWindowTest, ChangesTheKeyOfAFeedThatUsesOne) {
  press("Change Key… – Harbour");
  window_->findChild<QLineEdit*>()->setText(" new ");
  press("Save – Harbour");
  EXPECT_EQ(feeds_[0].alerts.keys.key, "new");
  EXPECT_TRUE(feeds_[0].gtfs.keys.isEmpty()) << "the timetable uses none";
  EXPECT_EQ(changes_, 1);
  EXPECT_THAT(labels(), Not(Contains("new")));
}

}  // namespace
}  // namespace linewatch::desktop
