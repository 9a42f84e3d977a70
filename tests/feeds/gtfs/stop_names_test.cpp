#include "feeds/gtfs/stop_names.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "feeds/gtfs/memory_source.h"
#include "shared/failure.h"

namespace linewatch {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

std::vector<StopPage> pagesOf(const std::string& table) {
  MemorySource source({{"stops.txt", table}});
  return *readStopPages(source);
}

StopNames namesIn(std::vector<StopPage> pages) {
  return StopNames({[pages = std::move(pages)](std::string_view id) -> std::optional<std::string> {
    const StopPage* const page = pageWithStop(pages, id);
    return page ? std::optional(page->text) : std::nullopt;
  }});
}

std::string found(StopNames& names, std::string_view id) {
  const auto& stop = names.find(id);
  return stop ? stop->name + " of " + stop->station : "none";
}

TEST(StopNames, HaveTheNameOfTheStopElseOfItsStation) {
  StopNames names = namesIn(
      pagesOf("stop_id,parent_station,stop_name\n"
              "b,S,Platform  2\na,S,\nS,,Central\nb,,Another\n,,Nameless\nz,gone,\n\"t\tab\",,Odd\n"));
  EXPECT_EQ(found(names, "b"), "Platform 2 of S") << "the first row of an id counts";
  EXPECT_EQ(found(names, "a"), "Central of S");
  EXPECT_EQ(found(names, "S"), "Central of ");
  EXPECT_EQ(found(names, "z"), " of gone");
  for (const char* id : {"", "c", "A", "t\tab", "zz"}) EXPECT_EQ(found(names, id), "none") << id;
}

TEST(StopNames, AreFoundInEachOfManyPages) {
  std::string table = "stop_id,stop_name\n";
  for (int stop = 9999; stop >= 0; --stop)
    table += std::to_string(stop) + ",Stop of number " + std::to_string(stop) + "\n";
  const std::vector<StopPage> pages = pagesOf(table);
  EXPECT_GT(pages.size(), 10U);
  std::size_t asked = 0;
  StopNames names({[&](std::string_view id) {
    ++asked;
    return std::optional(pageWithStop(pages, id)->text);
  }});
  for (int stop = 0; stop < 10000; ++stop) {
    const std::string number = std::to_string(stop);
    ASSERT_EQ(found(names, number), "Stop of number " + number + " of ");
  }
  EXPECT_EQ(found(names, "-"), "none") << "before all others";
  EXPECT_EQ(found(names, "42"), "Stop of number 42 of ");
  EXPECT_EQ(asked, 10001U) << "a stop is looked up once";
}

TEST(StopNames, MayBeMissingButNotDamaged) {
  MemorySource none(MemorySource::Files{});
  EXPECT_THAT(*readStopPages(none), IsEmpty());
  EXPECT_EQ(pageWithStop({}, "a"), nullptr);
  MemorySource damaged({{"stops.txt", std::string("stop_id\n\"a")}});
  const auto pages = readStopPages(damaged);
  ASSERT_FALSE(pages);
  EXPECT_THAT(sentenceOf(pages.error()), HasSubstr("stops.txt line 2"));
}

}  // namespace
}  // namespace linewatch
