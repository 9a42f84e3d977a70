#include "wire/compression_memo.h"

#include <atomic>
#include <thread>

#include <gtest/gtest.h>

namespace linewatch {
namespace {

/// Answers with the bytes themselves and counts; fails for empty bytes.
class SlowCompressor final : public Compressor {
 public:
  std::optional<Bytes> bzip2(const Bytes& data) override {
    ++count;
    return data.empty() ? std::nullopt : std::optional(data);
  }
  std::atomic<int> count = 0;
};

TEST(CompressionMemo, CompressesNothingTwiceWithinAGeneration) {
  SlowCompressor slow;
  CompressionMemo memo(slow);
  memo.remember({{1}, {2}, {1}});
  EXPECT_EQ(memo.bzip2({1}), Bytes({1}));
  EXPECT_EQ(memo.bzip2({3}), Bytes({3})) << "not remembered before";
  EXPECT_EQ(memo.bzip2({3}), Bytes({3}));
  EXPECT_EQ(slow.count, 3);
  memo.remember({{2}, {3}, {4}});
  EXPECT_EQ(slow.count, 4) << "only 4 is new";
  memo.bzip2({1});
  EXPECT_EQ(slow.count, 5) << "1 was forgotten";
  EXPECT_EQ(memo.bzip2({}), std::nullopt);
  memo.remember({{}});
  EXPECT_EQ(memo.bzip2({}), std::nullopt);
  EXPECT_EQ(slow.count, 8) << "a failure is tried again each time";
}

TEST(CompressionMemo, AnswersWhileAnotherThreadRemembers) {
  SlowCompressor slow;
  CompressionMemo memo(slow);
  std::thread worker([&memo] {
    for (std::uint8_t i = 0; i < 100; ++i) memo.remember({{i}, {7}});
  });
  for (std::uint8_t i = 0; i < 100; ++i) EXPECT_EQ(memo.bzip2({i, i}), Bytes({i, i}));
  worker.join();
  EXPECT_EQ(memo.bzip2({7}), Bytes({7}));
}

}  // namespace
}  // namespace linewatch
