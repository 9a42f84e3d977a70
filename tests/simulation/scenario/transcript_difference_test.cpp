#include "simulation/scenario/transcript_difference.h"

#include <gtest/gtest.h>

#include "shared/failure.h"

namespace linewatch::simulation {
namespace {

constexpr const char* kStart = R"({"t": 0, "event": "reload", "section": 0}
)";

std::string differenceInWords(const std::string& a, const std::string& b) {
  const auto found = transcriptDifference({"A", a}, {"B", b});
  if (!found) return "error: " + sentenceOf(found.error());
  return found->value_or("none");
}

TEST(TranscriptDifference, NamesTheFirstEventAndFieldThatDiffer) {
  const std::string start = kStart;
  const std::string snapshot =
      R"({"t": 2.5, "event": "snapshot", "rows": [{"cell": "item"}, {"cell": "item", "item": null}]})";
  struct Row {
    std::string a, b, words;
  };
  for (const Row& row : {
           Row{start, start, "none"},
           // The order of keys and spaces are not part of an event.
           Row{start, R"({"event":"reload","t":0,"section":0})", "none"},
           Row{start + snapshot, start,
               "The first 1 event is the same.\nB ends there. A goes on with snapshot at 2.5 s.\n"},
           Row{"", start, "The first 0 events are the same.\nA ends there. B goes on with reload at 0 s.\n"},
           Row{start + snapshot, start + start,
               "The first 1 event is the same.\nLine 2 is snapshot at 2.5 s in A, and reload at 0 s in B.\n"},
           Row{start + snapshot,
               start + R"({"t": 2.5, "event": "snapshot", "rows": [{"cell": "item"}, {"cell": "plain"}]})",
               "The first 1 event is the same.\nLine 2 is snapshot at 2.5 s. Its rows[1].cell differs:\n"
               "A: \"item\"\nB: \"plain\"\n"},
           Row{start + snapshot, start + R"({"t": 2.5, "event": "snapshot", "rows": [{"cell": "item"}]})",
               "The first 1 event is the same.\nLine 2 is snapshot at 2.5 s. Its rows[1] differs:\n"
               "A: {\"cell\":\"item\",\"item\":null}\nB: missing\n"},
       }) {
    EXPECT_EQ(differenceInWords(row.a, row.b), row.words) << row.a << row.b;
  }
}

TEST(TranscriptDifference, NamesTheLineThatIsNoEvent) {
  EXPECT_TRUE(differenceInWords(kStart, std::string(kStart) + "nonsense").starts_with("error: B: line 2: "));
  EXPECT_EQ(differenceInWords("[]", kStart), "error: A: line 1: is not an object");
}

}  // namespace
}  // namespace linewatch::simulation
