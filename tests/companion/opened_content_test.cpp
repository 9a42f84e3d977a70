#include "companion/opened_content.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "activity/user_activity_data.h"
#include "shared/failure.h"
#include "wire/archive/cbor_keyed_archiver.h"
#include "wire/compressor.h"

namespace linewatch {
namespace {

using testing::HasSubstr;

Bytes bytesOf(std::string_view text) { return {text.begin(), text.end()}; }

class OpenedContentTest : public testing::Test {
 protected:
  /// Decodes bytes that must be a record.
  std::shared_ptr<const RovaActivity> record(const Bytes& bytes) {
    const auto content = decodeOpenedContent("row", bytes, archiver_);
    if (!content) return nullptr;
    return std::get<std::shared_ptr<const RovaActivity>>(*content);
  }
  std::string error(const Bytes& bytes) {
    const auto content = decodeOpenedContent("row", bytes, archiver_);
    return content ? "no error" : sentenceOf(content.error());
  }

  CborKeyedArchiver archiver_;
};

TEST_F(OpenedContentTest, ReadsARecordCompressedOrNot) {
  auto activity = std::make_shared<RovaActivity>();
  activity->setDisplayOptions(std::make_shared<UrlDisplayOptions>());
  const Bytes plain = activity->data();
  ASSERT_FALSE(plain.empty());
  const Bytes compressed = *LibraryCompressor().bzip2(plain);
  ASSERT_NE(record(plain), nullptr);
  ASSERT_NE(record(compressed), nullptr);
  EXPECT_EQ(record(plain)->data(), plain);
  EXPECT_EQ(record(compressed)->data(), plain);
}

TEST_F(OpenedContentTest, ARecordMayBeginLikeABzip2Stream) {
  // Field 8 of 90 bytes, which this version of the record does not know.
  const Bytes bytes = bytesOf("BZh" + std::string(89, 'x'));
  EXPECT_NE(record(bytes), nullptr) << error(bytes);
}

TEST_F(OpenedContentTest, ReportsWhyBytesAreNoContent) {
  auto activity = std::make_shared<RovaActivity>();
  activity->setDisplayOptions(std::make_shared<UrlDisplayOptions>());
  Bytes cut = *LibraryCompressor().bzip2(activity->data());
  cut.resize(cut.size() / 2);
  Bytes damaged = *LibraryCompressor().bzip2(activity->data());
  damaged[4] ^= 0xFF;  // where a block begins
  EXPECT_EQ(error({}), "row: it is empty");
  EXPECT_EQ(error(*LibraryCompressor().bzip2({})), "row: it is empty");
  EXPECT_EQ(error(cut), "row: the compressed data is cut short");
  EXPECT_EQ(error(damaged), "row: the compressed data is damaged");
  EXPECT_EQ(error(bytesOf("\x0A\x7F")), "row: it is neither an activity record nor an incident list");
}

TEST(ContentBytesTest, OtherActivitiesHaveNone) {
  EXPECT_EQ(*contentBytes({"type", {{kActivityRecordKey, Bytes{1}}}}), Bytes{1});
  EXPECT_EQ(*contentBytes({"type", {{kIncidentListKey, Bytes{2}}}}), Bytes{2});
  for (const Dictionary& info : {Dictionary{}, Dictionary{{kActivityRecordKey, "text"}}})
    EXPECT_THAT(sentenceOf(contentBytes({"type", info}).error()), HasSubstr("type: it carries neither"));
}

}  // namespace
}  // namespace linewatch
