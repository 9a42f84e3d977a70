#include "feeds/gtfs/stop_search.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "feeds/gtfs/folder_source.h"
#include "feeds/gtfs/memory_source.h"
#include "shared/failure.h"
#include "temporary_folder.h"

namespace linewatch {
namespace {

using testing::HasSubstr;

MemorySource stopsInPieces(std::string table, std::size_t pieceSize) {
  return MemorySource({{"stops.txt", std::move(table)}}, pieceSize);
}

std::string foundStops(GtfsSource& source, const StopIds& ids) {
  const auto pages = findStops(source, ids);
  if (!pages) return sentenceOf(pages.error());
  std::string text;
  for (const StopPage& page : *pages) text += page.text;
  return text;
}

TEST(StopSearch, FindsWhatReadingTheWholeTableFinds) {
  const StopIds ids = {"a", "b", "c", "d", "absent", "not a row"};
  const std::string tables[] = {
      "stop_id,stop_name\na,Harbour\nx,Other\nb,Market\n",
      "stop_id,stop_name\r\na,Harbour\r\nx,Other\r\nd,Last\r\n",
      "stop_id,stop_name\ra,Harbour\rx,Other\rd,Last\r",
      "\xEF\xBB\xBFstop_id,stop_name\n\n \"a\" ,\"Harbour, \"\"Pier\"\" 2\"\n b\t,Market\nd,Last",
      "stop_name,stop_id,parent_station\n\"Two\nnot a row,c,\",a,S\n5\" pipe,b,\n\"x\",\"d\",\n",
      "stop_name,stop_id\nHarbour,a\nshort row\nAgain,a\nMarket, c\r\n",
      "stop_code,stop_name\na,Harbour\n",
      "stop_id\n",
      "",
  };
  for (const std::string& table : tables) {
    MemorySource whole({{"stops.txt", table}});
    std::string expected;
    const auto pages = readStopPages(whole);
    for (const StopPage& page : *pages) {
      for (std::size_t start = 0; start < page.text.size(); start = page.text.find('\n', start) + 1) {
        const std::string line = page.text.substr(start, page.text.find('\n', start) + 1 - start);
        if (ids.contains(line.substr(0, line.find('\t')))) expected += line;
      }
    }
    for (const std::size_t pieceSize : {1, 2, 3, 7, 1000}) {
      MemorySource source = stopsInPieces(table, pieceSize);
      // A table with CR alone is read as a whole, other stops included.
      const std::string actual = foundStops(source, ids);
      if (table.find("\ra") != std::string::npos) {
        EXPECT_THAT(actual, HasSubstr("a\tHarbour\t\nd\tLast\t\n")) << pieceSize;
      } else {
        EXPECT_EQ(actual, expected) << table << pieceSize;
      }
    }
  }
}

TEST(StopSearch, StopsReadingWhenAllAreFound) {
  std::string table = "stop_id,stop_name\n";
  for (int stop = 0; stop < 10000; ++stop) table += std::to_string(stop) + ",Stop\n";
  MemorySource source = stopsInPieces(table, 100);
  EXPECT_EQ(foundStops(source, {"1000", "7"}), "1000\tStop\t\n7\tStop\t\n");
  EXPECT_LT(source.taken, table.size() / 5);

  const TemporaryFolder folder;
  writeFile(folder.path() / "stops.txt", table + "last,At the end\n");
  FolderSource files(folder.path());
  EXPECT_EQ(foundStops(files, {"last", "0"}), "0\tStop\t\nlast\tAt the end\t\n");
}

TEST(StopSearch, SaysWhatIsWrongWithATable) {
  MemorySource open =
      stopsInPieces("stop_id,stop_name\na,\"Harbour\n" + std::string(std::size_t{2} << 20U, 'x'), 4096);
  EXPECT_THAT(foundStops(open, {"a"}), HasSubstr("a quote is not closed"));
  EXPECT_LT(open.taken, (std::size_t{1} << 20U) + 10000) << "the rest is not read";
  const TemporaryFolder folder;
  FolderSource missing(folder.path() / "missing");
  EXPECT_THAT(foundStops(missing, {"a"}), HasSubstr("No such file"));
  FolderSource empty(folder.path());
  EXPECT_EQ(foundStops(empty, {"a"}), "");
}

}  // namespace
}  // namespace linewatch
