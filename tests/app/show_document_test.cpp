#include "app/show_document.h"

#include <gmock/gmock.h>

#include "activity/user_activity_data.h"
#include "list/transit_item.h"
#include "platform/transit_records.h"
#include "platform/transit_storage_incident.h"
#include "shared/failure.h"
#include "simulation/platform_test.h"
#include "wire/json_text.h"

namespace linewatch::app {
namespace {

using testing::HasSubstr;

class ShowDocumentTest : public PlatformTest {
 protected:
  static SharedTransitItem row(std::shared_ptr<const RVOpenable> openable) {
    return std::make_shared<const RVTransitItem>("Row", std::nullopt, nullptr, false, std::move(openable));
  }
  static std::shared_ptr<const RVUserActivityData> record(Bytes bytes) {
    return RVUserActivityData::make("x", Dictionary{{"bs", std::move(bytes)}});
  }
  static ShownContent contentWith(TransitItems rows) {
    ShownContent content;
    SummaryItem first = rows.front();
    content.list = std::make_shared<const RVTransitListItem>(std::move(first), std::move(rows));
    return content;
  }
};

TEST_F(ShowDocumentTest, ContainsSharedRecordsOnce) {
  const auto line = record({1, 2, 3});
  const auto document = showDocument(contentWith({row(line), row(record({4})), row(line)}));
  ASSERT_TRUE(document);
  EXPECT_EQ(document->recordsLeftOut, 0U);
  EXPECT_EQ(jsonText(document->form.at("records")), R"(["AQID", "BA=="])");
  EXPECT_THAT(jsonText(document->form.at("expandedItems")), HasSubstr(R"({"record": 1})"));
}

TEST_F(ShowDocumentTest, LeavesOutRecordsBeyondTheLimit) {
  const auto document = showDocument(
      contentWith({row(record({1, 2, 3})), row(record({4, 5})), row(record({6}))}), {.recordBytes = 4});
  ASSERT_TRUE(document);
  EXPECT_EQ(document->recordsLeftOut, 1U);
  EXPECT_EQ(jsonText(document->form.at("records")), R"(["AQID", null, "Bg=="])");
}

TEST_F(ShowDocumentTest, RefusesMoreIncidentsThanTheLimit) {
  const auto incident = std::make_shared<const TransitStorageIncident>(TransitIncidentFields{.muid = 5});
  const auto item =
      std::make_shared<const TransitLineRecord>(TransitLineFields{}, TransitIncidents{incident, incident});
  ShownContent content;
  content.lines = {ShownLine{.muid = 1, .item = item}, ShownLine{.muid = 2, .item = item}};
  EXPECT_TRUE(showDocument(content, {.listings = 4}));
  const auto refused = showDocument(content, {.listings = 3});
  ASSERT_FALSE(refused);
  EXPECT_THAT(sentenceOf(refused.error()), HasSubstr("list 4 incidents, more than 3"));
  EXPECT_TRUE(showDocument(content, {.incidents = 1})) << "the lines share the incident";
  EXPECT_THAT(sentenceOf(showDocument(content, {.incidents = 0}).error()), HasSubstr("have 1 incidents"));
}

}  // namespace
}  // namespace linewatch::app
