#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "contracts/subject.h"
#include "localization/icu_localization.h"
#include "simulation/simulated_platform.h"

namespace linewatch {
namespace {

using testing::HasSubstr;

constexpr const char* kUnknownKey = "LineWatch_No_Such_Text";

class LocalizationContract : public testing::TestWithParam<Subject<Localization>> {
 protected:
  std::string text(std::string_view key, StringTable table) {
    return texts_->localizedString(key, kLocalizedStringNotFound, table);
  }
  std::string joined(const std::vector<std::string_view>& names) { return texts_->joinCommaDelimited(names); }

  std::shared_ptr<Localization> texts_ = GetParam().make();
};

TEST_P(LocalizationContract, AnUnknownKeyGivesTheFallbackWhichFormattingLeavesUnchanged) {
  for (const StringTable table : {StringTable::kestrow, StringTable::widget}) {
    EXPECT_EQ(text(kUnknownKey, table), kLocalizedStringNotFound);
    EXPECT_EQ(texts_->localizedString(kUnknownKey, "other", table), "other");
  }
  const FormatArgument arguments[] = {std::uint64_t{3}, "text"};
  EXPECT_EQ(texts_->format(std::string(kLocalizedStringNotFound), arguments), kLocalizedStringNotFound);
}

TEST_P(LocalizationContract, EachKeyIsInOneTable) {
  const struct {
    StringTable table, otherTable;
    std::vector<std::string_view> keys;
  } rows[] = {
      {StringTable::kestrow,
       StringTable::widget,
       {"LineWatch_NoFavorite_Title", "LineWatch_NoFavorite_SecondaryText", "LineWatch_GoodService_Title",
        "LineWatch_GoodService_SecondaryText_Singular", "LineWatch_GoodService_SecondaryText_Plural",
        "LineWatch_Summary_advisory_count", "LineWatch_advisory_overflow_title",
        "LineWatch_AdvisoriesOverflow_SecondaryText", "LineWatchLoadingError_Title",
        "LineWatchLoadingError_AirplaneMode_WIFI", "LineWatchLoadingError_AirplaneMode_WLAN",
        "LineWatchLoadingError_No_Internet", "LineWatchLoadingError_Uknown"}},
      {StringTable::widget,
       StringTable::kestrow,
       {"LineWatch_GoodService_Overflow_SecondaryText", "LineWatch_Single_Line_Prepended_Incident_Text",
        "LineWatch_2_Lines_Prepended_Incident_Text", "LineWatch_N_Lines_Prepended_Incident_Text",
        "LineWatch_2_Lines_Concatenated", "LineWatch_N_Lines_Names_Concatenated",
        "Transit_Incident_Not_Displayed_Incidents"}}};
  for (const auto& row : rows) {
    for (const std::string_view key : row.keys) {
      EXPECT_NE(text(key, row.table), kLocalizedStringNotFound) << key;
      EXPECT_EQ(text(key, row.otherTable), kLocalizedStringNotFound) << key;
    }
  }
}

TEST_P(LocalizationContract, AFormattedTextHoldsItsArguments) {
  const FormatArgument count[] = {std::uint64_t{42}};
  EXPECT_THAT(texts_->format(text("LineWatch_Summary_advisory_count", StringTable::kestrow), count),
              HasSubstr("42"));
  const FormatArgument texts[] = {"Red {0}", "it's", "late"};
  const std::string row =
      texts_->format(text("LineWatch_2_Lines_Prepended_Incident_Text", StringTable::widget), texts);
  for (const char* part : {"Red {0}", "it's", "late"}) EXPECT_THAT(row, HasSubstr(part));
}

TEST_P(LocalizationContract, AListIsJoinedWithCommas) {
  EXPECT_EQ(joined({}), "");
  EXPECT_EQ(joined({"A"}), "A");
  EXPECT_EQ(joined({"A", "B"}), "A, B");
  EXPECT_EQ(joined({"A, B", "{0}", "C"}), "A, B, {0}, C");
}

INSTANTIATE_TEST_SUITE_P(
    Platforms, LocalizationContract,
    testing::Values(
        Subject<Localization>{"Simulation",
                              [] {
                                const auto platform = simulation::SimulatedPlatform::make();
                                return std::shared_ptr<Localization>(platform, &platform->localization());
                              }},
        Subject<Localization>{"DesktopInEnglish",
                              [] { return std::make_shared<IcuLocalization>(*UserLocale::parse("en")); }},
        Subject<Localization>{"DesktopInGerman",
                              [] { return std::make_shared<IcuLocalization>(*UserLocale::parse("de")); }}),
    nameOfSubject<Localization>);

}  // namespace
}  // namespace linewatch
