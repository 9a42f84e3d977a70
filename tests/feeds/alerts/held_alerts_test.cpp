#include "feeds/alerts/held_alerts.h"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "feeds/alerts/alerts_sketch.h"

namespace linewatch {
namespace {

class HeldAlerts : public testing::Test {
 protected:
  void receive(const FeedSketch& feed) {
    const auto updated = updatedAlerts(held_, messageOf(feed));
    ASSERT_TRUE(updated) << sentenceOf(updated);
    held_ = *updated;
  }
  std::string texts() const {
    std::string all;
    for (const AlertsMessage::Entity& entity : held_->entities()) {
      if (!all.empty()) all += ' ';
      all.append(entity.id);
      for (const AlertTranslation& text : held_->translations(entity)) all.append("=").append(text.text);
    }
    return all;
  }

  SharedAlertsMessage held_;
};

AlertSketch alert(std::string id, std::string header) {
  return {.id = std::move(id), .header = {{std::move(header), ""}}};
}

TEST_F(HeldAlerts, AWholeFeedReplacesAndADifferenceChanges) {
  receive({.alerts = {alert("a", "1"), alert("b", "2"), alert("c", "3")}, .timestamp = 100});
  receive({.alerts = {alert("d", "4"),
                      alert("b", "5"),
                      {.id = "a", .isDeleted = true},
                      {.id = "x", .isDeleted = true}},
           .timestamp = 101,
           .isDifference = true});
  EXPECT_EQ(texts(), "b=5 c=3 d=4");
  EXPECT_EQ(held_->timestamp(), 101U);
  receive({.alerts = {alert("a", "6")}, .timestamp = 0, .isDifference = true});
  EXPECT_EQ(texts(), "b=5 c=3 d=4 a=6");
  EXPECT_EQ(held_->timestamp(), 101U);
  receive({.alerts = {alert("z", "9")}, .timestamp = 102});
  EXPECT_EQ(texts(), "z=9");
}

TEST_F(HeldAlerts, DifferencesAreNotTheWholeUntilAFullMessageCame) {
  receive({.alerts = {alert("a", "1"), alert("a", "2")}, .isDifference = true});
  EXPECT_EQ(texts(), "a=1 a=2");
  EXPECT_TRUE(held_->isDifference());
  receive({.alerts = {alert("a", "3")}, .isDifference = true});
  EXPECT_EQ(texts(), "a=3");
  EXPECT_TRUE(held_->isDifference());
  receive({.alerts = {alert("b", "4")}});
  receive({.alerts = {alert("a", "5")}, .isDifference = true});
  EXPECT_EQ(texts(), "b=4 a=5");
  EXPECT_FALSE(held_->isDifference());
}

TEST_F(HeldAlerts, AnImplausibleTimeIsDropped) {
  const Date received{Seconds(1'700'000'000)};
  const FeedSketch feed{.alerts = {alert("a", "1"), {.id = "b", .isDeleted = true}}, .isDifference = true};
  const auto isPlausible = [&](std::uint64_t timestamp) {
    FeedSketch dated = feed;
    dated.timestamp = timestamp;
    return hasPlausibleTime(*messageOf(dated), received);
  };
  EXPECT_TRUE(isPlausible(0));
  EXPECT_TRUE(isPlausible(1'700'000'300));
  EXPECT_FALSE(isPlausible(1'700'000'301));
  EXPECT_FALSE(isPlausible(1'700'000'000'000)) << "milliseconds";

  FeedSketch future = feed;
  future.timestamp = 1'800'000'000;
  held_ = *withoutTime(*messageOf(future));
  EXPECT_EQ(held_->timestamp(), 0U);
  EXPECT_TRUE(held_->isDifference());
  EXPECT_EQ(texts(), "a=1 b");
  EXPECT_EQ((*readAlertsMessage(held_->payload()))->timestamp(), 0U);
  receive({.alerts = {alert("a", "2")}, .timestamp = 1'700'000'001});
  EXPECT_EQ(texts(), "a=2") << "no message is older than one without a time";
}

TEST_F(HeldAlerts, OlderMessagesAreIgnored) {
  receive({.alerts = {alert("a", "1")}, .timestamp = 100});
  receive({.alerts = {alert("a", "older")}, .timestamp = 99});
  receive({.alerts = {{.id = "a", .isDeleted = true}}, .timestamp = 99, .isDifference = true});
  EXPECT_EQ(texts(), "a=1");
  receive({.alerts = {alert("a", "2")}, .timestamp = 100});
  EXPECT_EQ(texts(), "a=2");
  receive({.alerts = {alert("a", "undated")}, .timestamp = 0});
  EXPECT_EQ(texts(), "a=undated");
}

TEST_F(HeldAlerts, MergesPayloadsWithoutMixingUpTheirIds) {
  const auto merge = [this](const std::vector<FeedSketch>& feeds) {
    std::vector<SharedAlertsMessage> messages;
    for (const FeedSketch& feed : feeds) messages.push_back(messageOf(feed));
    held_ = *mergedAlerts(messages);
  };
  merge({{.alerts = {alert("a", "1"), alert("b", "2")}, .timestamp = 300},
         {.alerts = {alert("a", "3"), alert("", "4"), {.id = "c", .isDeleted = true}}, .timestamp = 200},
         {.alerts = {alert("a", "5")}, .timestamp = 0}});
  EXPECT_EQ(texts(),
            "a=1 b=2 \x1F"
            "1:a=3 =4 \x1F"
            "2:a=5");
  EXPECT_EQ(held_->timestamp(), 200U) << "the oldest";
  EXPECT_FALSE(held_->isDifference());
  merge({{.alerts = {alert("\x1F"
                           "1:a",
                           "1")}},
         {.alerts = {alert("a", "2")}, .isDifference = true}});
  EXPECT_EQ(texts(),
            "\x1F"
            "0:\x1F"
            "1:a=1 \x1F"
            "1:a=2");
  EXPECT_TRUE(held_->isDifference());
}

}  // namespace
}  // namespace linewatch
