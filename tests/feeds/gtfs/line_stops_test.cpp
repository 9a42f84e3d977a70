#include "feeds/gtfs/line_stops.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "feeds/gtfs/memory_source.h"

namespace linewatch {
namespace {

using testing::ElementsAre;

TEST(LineStops, NamesTheDestinationsAndTheStopsInTheOrderOfTravel) {
  MemorySource source(
      {
          {"trips.txt",
           "route_id,trip_id,direction_id,trip_headsign\n"
           "r1,t1,0,Zoo\nr1,t2,0,Depot\nr1,t3,0,Zoo\nr1,t4,1,\nr2,t5,1,Elsewhere\n"},
          {"stop_times.txt",
           "trip_id,stop_sequence,stop_id\n"
           "t1,1,a\nt1,20,c\nt1,3,b1\nt4,1,c\nt4,2,b2\nt4,3,a\nt2,1,d\nt5,1,x"},
          {"stops.txt",
           "stop_id,stop_name,parent_station\n"
           "a,\"Harbour, old\",\nb1,Main Street,\nb2,Main Street,\nc,Zoo,zoo\nd,Depot,\nx,Lake,\n"},
      },
      7);
  const auto line = readLineStops(source, "r1");
  ASSERT_TRUE(line);
  EXPECT_THAT(line->destinations[0], ElementsAre("Zoo", "Depot")) << "the most frequent first";
  EXPECT_THAT(line->destinations[1], ElementsAre("Harbour, old")) << "the last stop, without a headsign";
  using Stop = LineStops::Stop;
  EXPECT_THAT(line->stops, ElementsAre(Stop{{"a"}, "Harbour, old"}, Stop{{"b1", "b2"}, "Main Street"},
                                       Stop{{"zoo"}, "Zoo"}, Stop{{"d"}, "Depot"}));
  const auto none = readLineStops(source, "r9");
  ASSERT_TRUE(none);
  EXPECT_EQ(*none, LineStops());
}

TEST(LineStops, NeedsNoTables) {
  MemorySource source(MemorySource::Files{});
  const auto line = readLineStops(source, "r1");
  ASSERT_TRUE(line);
  EXPECT_EQ(*line, LineStops());
}

}  // namespace
}  // namespace linewatch
