#include "activity/rova_activity.h"

#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/transit_records.h"
#include "wire/hex.h"

namespace linewatch {
namespace {

template <class Message>
bool reads(Message& message, const Bytes& bytes) {
  MessageReader reader(bytes);
  return message.readFrom(reader);
}

std::shared_ptr<TransitStorageLineItem> lineItem(std::uint64_t muid) {
  return std::make_shared<TransitStorageLineItem>(
      TransitLineRecord(TransitLineFields{.muid = muid, .name = "L" + std::to_string(muid)}, {}));
}

std::shared_ptr<MapItemStorage> place(const std::string& name) {
  auto item = std::make_shared<MapItemStorage>();
  item->setName(name);
  return item;
}

std::shared_ptr<DirectionsPlan> fullPlan() {
  auto plan = std::make_shared<DirectionsPlan>();
  plan->setIsPlayingTrace(true);
  plan->setExpiryTime(1);
  plan->setTransitSurchargeOption(-1);
  plan->setTransitPrioritization(TransitPrioritization::byWalkingDistance);
  plan->setRoutesPerLaterPage(5);
  plan->setRoutesPerEarlierPage(4);
  plan->setLaterPagesLoaded(3);
  plan->setEarlierPagesLoaded(2);
  plan->setRoutesPerInitialPage(0xFFFFFFFF);
  auto preferences = std::make_shared<DirectionsPlanTransitPreferences>();
  preferences->setAvoidFerryRoutes(true);
  preferences->setAvoidRailRoutes(false);
  preferences->setAvoidMetroLightRailRoutes(true);
  preferences->setAvoidBusRoutes(false);
  plan->setTransitPreferences(preferences);
  plan->setDisplayMethod(DisplayMethod::directionsStarted);
  plan->setCurrentRouteStep(7);
  plan->setCurrentRouteIndex(6);
  plan->setArrivalTime(-0.0);
  plan->setDepartureTime(2.5);
  plan->setDestinationString("");
  plan->setOriginString("A");
  plan->setRouteRequestStorage(std::make_shared<RouteRequestStorage>());
  return plan;
}

/// Every field present, set in no particular order.
RovaActivity fullActivity() {
  RovaActivity activity;
  activity.setLineItem(lineItem(1));
  activity.setSelectedTransitLineName("M1");
  activity.setSelectedTransitFeatureID(~std::uint64_t{0});
  activity.setSearchCategoryStorage(std::make_shared<SearchCategoryStorage>());
  activity.setPresentedMapItem(place("P"));
  activity.setIsDroppedPinPresented(false);
  activity.setIsDroppedPinSelected(true);
  activity.setDroppedPin(std::make_shared<DroppedPin>());
  activity.setDirectionsPlan(fullPlan());
  activity.setIsPresentingSelectedPlace(true);
  activity.setSelectedPlaceIndex(0);
  activity.addSearchPlaces(place("X"));
  activity.addSearchPlaces(place("Y"));
  activity.setSearchString("");
  activity.setCollectionsMode(CollectionsMode::recents);
  auto options = std::make_shared<UrlDisplayOptions>();
  options->setMapType(3);
  activity.setDisplayOptions(options);
  return activity;
}

TEST(RovaActivity, ReadsEncodingsThatItsWriterDoesNotProduce) {
  struct Row {
    const char* name;
    const char* bytes;
    bool isRead;
    const char* writtenAgain;
  };
  for (const Row& row : {
           Row{"fields out of order", "68 01 | 10 01", true, "10 01 | 68 01"},
           Row{"the last scalar counts", "10 01 | 10 02", true, "10 02"},
           Row{"the last text counts", "1A 02 41 42 | 1A 01 43", true, "1A 01 43"},
           Row{"the last message counts, as a whole", "3A 02 30 01 | 3A 02 38 02", true, "3A 02 38 02"},
           Row{"each element is one more", "22 00 | 10 01 | 22 00", true, "10 01 | 22 00 22 00"},
           Row{"unknown varint", "80 01 05 | 10 01", true, "10 01"},
           Row{"unknown text", "82 01 02 41 42 | 10 01", true, "10 01"},
           Row{"unknown group", "83 01 | 08 01 | 84 01 | 10 01", true, "10 01"},
           Row{"unknown fixed", "85 01 01 02 03 04 | 81 01 01 02 03 04 05 06 07 08", true, ""},
           Row{"unknown that does not skip", "82 01 05 41 | 10 01", false, ""},
           Row{"unknown of wire type 7", "87 01 | 10 01", false, ""},
           Row{"field number 0", "00 01 | 10 01", true, "10 01"},
           Row{"field number beyond 32 bits", "90 80 80 80 80 80 01 07 | 68 01", true, "68 01"},
           Row{"end of a group ends the message", "10 01 | 0C | 10 02", true, "10 01"},
           Row{"end of a group ends a nested message alone", "3A 04 30 01 0C 38 | 10 01", true,
               "10 01 | 3A 02 30 01"},
           Row{"the wire type of a known field does not matter", "15 02 | 6A 07", true, "10 02 | 68 07"},
           Row{"nor does an end of 64 bits", "1C | 10 01", true, ""},
           Row{"over-long varint as a value", "68 81 82 83 84 85 86 87 88 89 8A | 10 01", true,
               "10 01 | 68 00"},
           Row{"over-long varint as a tag", "81 82 83 84 85 86 87 88 89 8A 07 | 10 01", true, "10 01"},
           Row{"the low 32 bits of an enumeration", "10 83 80 80 80 10", true, "10 03"},
           Row{"any other number is true", "30 80 80 02", true, "30 01"},
           Row{"a nested length beyond the end", "3A 03 30 01", false, ""},
           Row{"a nested field beyond the nested end", "3A 01 30 01 10 01", false, ""},
           Row{"a nested double beyond the nested end", "3A 08 21 00 00 00 00 00 00 04 40", false, ""},
           Row{"a text beyond the end", "1A 03 41 42", false, ""},
       }) {
    SCOPED_TRACE(row.name);
    RovaActivity activity;
    EXPECT_EQ(reads(activity, hex(row.bytes)), row.isRead);
    if (row.isRead) {
      EXPECT_EQ(activity.data(), hex(row.writtenAgain));
    }
  }
}

TEST(RovaActivity, AFailedReadLeavesTheRecordPartlyFilled) {
  RovaActivity activity;
  EXPECT_FALSE(reads(activity, hex("10 01 | 3A 02 30")));
  EXPECT_EQ(activity.collectionsMode(), CollectionsMode::bookmarks);
  EXPECT_TRUE(activity.hasDirectionsPlan());

  RovaActivity cut;
  EXPECT_FALSE(reads(cut, hex("68 80")));
  EXPECT_TRUE(cut.hasSelectedTransitFeatureID()) << "present although its value was cut off";
  EXPECT_EQ(cut.selectedTransitFeatureID(), 0U);
}

TEST(RovaActivity, WritesAPresentFieldEvenWhenItIsZeroOrEmpty) {
  RovaActivity activity;
  EXPECT_FALSE(activity.hasSelectedTransitFeatureID());
  activity.setSelectedTransitFeatureID(0);
  activity.setIsDroppedPinSelected(false);
  EXPECT_EQ(activity.data(), hex("48 00 68 00"));
  activity.setSelectedTransitFeatureID(9);
  activity.setHasSelectedTransitFeatureID(false);
  EXPECT_EQ(activity.selectedTransitFeatureID(), 9U) << "the value stays behind its flag";
  EXPECT_EQ(activity.data(), hex("48 00"));
  activity.setHasSelectedTransitFeatureID(true);
  EXPECT_EQ(activity.data(), hex("48 00 68 09"));

  activity.setSearchString("");
  EXPECT_TRUE(activity.hasSearchString());
  activity.setSearchString(std::nullopt);
  EXPECT_FALSE(activity.hasSearchString());
  activity.setLineItem(lineItem(1));
  activity.setLineItem(nullptr);
  EXPECT_FALSE(activity.hasLineItem());
}

TEST(RovaActivity, AnEnumerationReadsAsZeroWhileItsFlagIsClear) {
  RovaActivity activity;
  activity.setCollectionsMode(CollectionsMode::contacts);
  activity.setHasCollectionsMode(false);
  EXPECT_EQ(activity.collectionsMode(), CollectionsMode::none);
  activity.setHasCollectionsMode(true);
  EXPECT_EQ(activity.collectionsMode(), CollectionsMode::contacts);

  DirectionsPlan plan;
  plan.setDisplayMethod(DisplayMethod::routePicking);
  plan.setTransitPrioritization(TransitPrioritization::byTravelTime);
  plan.setTransitSurchargeOption(4);
  plan.setHasDisplayMethod(false);
  plan.setHasTransitPrioritization(false);
  plan.setHasTransitSurchargeOption(false);
  EXPECT_EQ(plan.displayMethod(), DisplayMethod::directionsSearch);
  EXPECT_EQ(plan.transitPrioritization(), TransitPrioritization::byDefault);
  EXPECT_EQ(plan.transitSurchargeOption(), 4) << "a plain number, without names";
}

TEST(RovaActivity, EnumerationsHaveNamesBothWays) {
  const auto roundTrip = [](auto toName, auto toValue, std::vector<std::string> names) {
    using Enumeration = decltype(toValue(""));
    std::int32_t value = 0;
    for (const std::string& name : names) {
      EXPECT_EQ(toName(Enumeration{value}), name);
      EXPECT_EQ(toValue(name), Enumeration{value++});
    }
    EXPECT_EQ(toName(Enumeration{value}), "(unknown: " + std::to_string(value) + ")");
    EXPECT_EQ(toName(Enumeration{-1}), "(unknown: -1)");
    for (const char* other : {"", "bookmarks", "Bookmarks ", "(unknown: 2)"}) {
      EXPECT_EQ(toValue(other), Enumeration{0}) << other;
    }
  };
  roundTrip(collectionsModeAsString, StringAsCollectionsMode, {"None", "Bookmarks", "Recents", "Contacts"});
  roundTrip(displayMethodAsString, StringAsDisplayMethod,
            {"DirectionsSearch", "RoutePicking", "DirectionsStarted"});
  roundTrip(transitPrioritizationAsString, StringAsTransitPrioritization,
            {"TRANSIT_PRIORITIZE_DEFAULT", "TRANSIT_PRIORITIZE_BY_TRAVEL_TIME",
             "TRANSIT_PRIORITIZE_BY_TRANSFER_COUNT", "TRANSIT_PRIORITIZE_BY_WALKING_DISTANCE"});
  EXPECT_EQ(collectionsModeAsString(CollectionsMode{7}), "(unknown: 7)");
}

TEST(RovaActivity, TheFirstAddedSearchPlaceMakesTheList) {
  RovaActivity activity;
  EXPECT_FALSE(activity.searchPlaces());
  activity.clearSearchPlaces();
  EXPECT_FALSE(activity.searchPlaces());
  activity.addSearchPlaces(nullptr);
  EXPECT_EQ(activity.searchPlacesCount(), 0U);
  const auto first = place("1"), second = place("2");
  activity.addSearchPlaces(first);
  activity.addSearchPlaces(second);
  EXPECT_THAT(*activity.searchPlaces(), testing::ElementsAre(first, second));
  EXPECT_EQ(activity.searchPlacesAtIndex(1), second);
  EXPECT_EQ(activity.searchPlacesAtIndex(2), nullptr);
  activity.setSearchPlaces({{second, nullptr, first}});
  EXPECT_THAT(*activity.searchPlaces(), testing::ElementsAre(second, first));
  EXPECT_TRUE(RovaActivity::searchPlacesType() == typeid(MapItemStorage));
  activity.clearSearchPlaces();
  EXPECT_EQ(activity.data(), Bytes());
  EXPECT_FALSE(activity.isEqual(RovaActivity())) << "an empty list is not an absent one";
  EXPECT_TRUE(activity.isEqual(*activity.deepCopy()));
}

TEST(RovaActivity, CopyingSharesAndDeepCopyingDoesNot) {
  const RovaActivity original = fullActivity();
  RovaActivity target;
  target.setHasCollectionsMode(false);
  target.addSearchPlaces(place("gone"));
  original.copyTo(target);
  EXPECT_TRUE(target.isEqual(original));
  EXPECT_EQ(target.lineItem(), original.lineItem());
  EXPECT_EQ(target.searchPlacesAtIndex(0), original.searchPlacesAtIndex(0));

  RovaActivity kept = fullActivity();
  RovaActivity().copyTo(kept);
  EXPECT_TRUE(kept.isEqual(original)) << "absent fields leave the other's";
  kept.copyTo(kept);
  EXPECT_TRUE(kept.isEqual(original));
  original.copyTo(*kept.directionsPlan());
  EXPECT_TRUE(kept.isEqual(original)) << "another class is left alone";

  const auto copy = std::static_pointer_cast<RovaActivity>(original.deepCopy());
  EXPECT_TRUE(copy->isEqual(original));
  EXPECT_NE(copy->lineItem(), original.lineItem());
  copy->directionsPlan()->transitPreferences()->setAvoidBusRoutes(true);
  copy->searchPlacesAtIndex(1)->setName("Z");
  EXPECT_FALSE(copy->isEqual(original));
  EXPECT_TRUE(original.isEqual(fullActivity()));
}

TEST(RovaActivity, MergingTakesThePresentFieldsOfTheOther) {
  RovaActivity into, from;
  into.setCollectionsMode(CollectionsMode::recents);
  into.setSearchString("kept");
  into.addSearchPlaces(place("1"));
  into.setDirectionsPlan(std::make_shared<DirectionsPlan>());
  into.directionsPlan()->setOriginString("kept");
  into.directionsPlan()->setCurrentRouteIndex(1);
  const auto plan = into.directionsPlan();
  from.setIsDroppedPinSelected(false);
  from.addSearchPlaces(place("2"));
  from.setDirectionsPlan(std::make_shared<DirectionsPlan>());
  from.directionsPlan()->setCurrentRouteIndex(2);
  from.setLineItem(lineItem(5));

  into.mergeFrom(from);
  EXPECT_EQ(into.lineItem(), from.lineItem()) << "shared from now on";
  EXPECT_EQ(into.directionsPlan(), plan);
  EXPECT_EQ(plan->currentRouteIndex(), 2U);
  EXPECT_EQ(plan->originString(), "kept");
  EXPECT_EQ(into.searchString(), "kept");
  EXPECT_EQ(into.collectionsMode(), CollectionsMode::recents);
  EXPECT_TRUE(into.hasIsDroppedPinSelected());
  ASSERT_EQ(into.searchPlacesCount(), 2U);
  EXPECT_EQ(into.searchPlacesAtIndex(1), from.searchPlacesAtIndex(0));

  into.mergeFrom(into);
  EXPECT_EQ(into.searchPlacesCount(), 4U);
  into.mergeFrom(*plan);
  EXPECT_EQ(into.searchPlacesCount(), 4U) << "another class is left alone";
}

TEST(RovaActivity, ComparesEveryFieldAndItsPresence) {
  const std::vector<std::function<void(RovaActivity&)>> changes = {
      [](RovaActivity& a) { a.displayOptions()->setMapType(4); },
      [](RovaActivity& a) { a.setHasCollectionsMode(false); },
      [](RovaActivity& a) { a.setSearchString(std::nullopt); },
      [](RovaActivity& a) { a.searchPlacesAtIndex(1)->setName("X"); },
      [](RovaActivity& a) { a.setHasSelectedPlaceIndex(false); },
      [](RovaActivity& a) { a.setIsPresentingSelectedPlace(false); },
      [](RovaActivity& a) { a.directionsPlan()->transitPreferences()->setHasAvoidBusRoutes(false); },
      [](RovaActivity& a) { a.setDroppedPin(nullptr); },
      [](RovaActivity& a) { a.setIsDroppedPinSelected(false); },
      [](RovaActivity& a) { a.setHasIsDroppedPinPresented(false); },
      [](RovaActivity& a) { a.setPresentedMapItem(nullptr); },
      [](RovaActivity& a) { a.searchCategoryStorage()->setCategoryID(""); },
      [](RovaActivity& a) { a.setSelectedTransitFeatureID(1); },
      [](RovaActivity& a) { a.setSelectedTransitLineName("M2"); },
      [](RovaActivity& a) { a.setLineItem(lineItem(2)); },
  };
  const RovaActivity original = fullActivity();
  for (std::size_t i = 0; i < changes.size(); ++i) {
    RovaActivity changed = fullActivity();
    EXPECT_TRUE(changed.isEqual(original));
    changes[i](changed);
    EXPECT_FALSE(changed.isEqual(original)) << "field " << i + 1;
    EXPECT_FALSE(original.isEqual(changed)) << "field " << i + 1;
  }
  class Derived : public RovaActivity {};
  EXPECT_FALSE(RovaActivity().isEqual(Derived()));
  EXPECT_FALSE(Derived().isEqual(RovaActivity()));
  EXPECT_FALSE(RovaActivity().isEqual(DirectionsPlan()));
  RovaActivity behindFlags;
  behindFlags.setSelectedPlaceIndex(5);
  behindFlags.setHasSelectedPlaceIndex(false);
  EXPECT_TRUE(behindFlags.isEqual(RovaActivity())) << "a value behind a clear flag does not count";
  EXPECT_EQ(behindFlags.hash(), 0U);
}

TEST(RovaActivity, HashesScalarsByTheirValue) {
  constexpr std::uint64_t kFactor = 2654435761;
  DirectionsPlan plan;
  const auto hashAlone = [&] {
    const std::size_t hash = plan.hash();
    plan = DirectionsPlan();
    return hash;
  };
  plan.setCurrentRouteIndex(3);
  EXPECT_EQ(hashAlone(), 3 * kFactor);
  plan.setTransitSurchargeOption(-1);
  EXPECT_EQ(hashAlone(), ~std::uint64_t{0} * kFactor);
  plan.setIsPlayingTrace(true);
  EXPECT_EQ(hashAlone(), kFactor);
  plan.setDisplayMethod(DisplayMethod::directionsStarted);
  EXPECT_EQ(hashAlone(), 2 * kFactor);
  plan.setCurrentRouteIndex(7);
  plan.setCurrentRouteStep(7);
  EXPECT_EQ(hashAlone(), 0U) << "one term a field, joined by exclusive or";

  struct Row {
    double value;
    std::uint64_t expected;
  };
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  for (const Row& row : {Row{0, 0}, Row{-0.0, 0}, Row{3, 3 * kFactor}, Row{-3, 3 * kFactor},
                         Row{1.25, kFactor + (std::uint64_t{1} << 62)}, Row{1.75, 2 * kFactor},
                         Row{std::ldexp(1, 64), 0}, Row{kInfinity, 0}}) {
    plan.setExpiryTime(row.value);
    EXPECT_EQ(hashAlone(), row.expected) << row.value;
  }
}

TEST(RovaActivity, DictionaryFormNamesThePresentFields) {
  RovaActivity activity;
  EXPECT_EQ(activity.dictionaryRepresentation(), Dictionary());
  activity = fullActivity();
  activity.setCollectionsMode(CollectionsMode{7});
  const Dictionary plan = {{"routeRequestStorage", Dictionary{}},
                           {"originString", "A"},
                           {"destinationString", ""},
                           {"departureTime", 2.5},
                           {"arrivalTime", -0.0},
                           {"currentRouteIndex", std::uint64_t{6}},
                           {"currentRouteStep", std::uint64_t{7}},
                           {"displayMethod", "DirectionsStarted"},
                           {"transitPreferences", Dictionary{{"avoidBusRoutes", false},
                                                             {"avoidMetroLightRailRoutes", true},
                                                             {"avoidRailRoutes", false},
                                                             {"avoidFerryRoutes", true}}},
                           {"routesPerInitialPage", 0xFFFFFFFFU},
                           {"earlierPagesLoaded", 2U},
                           {"laterPagesLoaded", 3U},
                           {"routesPerEarlierPage", 4U},
                           {"routesPerLaterPage", 5U},
                           {"transitPrioritization", "TRANSIT_PRIORITIZE_BY_WALKING_DISTANCE"},
                           {"transitSurchargeOption", -1},
                           {"expiryTime", 1.0},
                           {"isPlayingTrace", true}};
  const Dictionary expected = {
      {"displayOptions", Dictionary{{"mapType", 3}}},
      {"collectionsMode", "(unknown: 7)"},
      {"searchString", ""},
      {"searchPlaces", Array{Dictionary{{"name", "X"}}, Dictionary{{"name", "Y"}}}},
      {"selectedPlaceIndex", std::uint64_t{0}},
      {"isPresentingSelectedPlace", true},
      {"directionsPlan", plan},
      {"droppedPin", Dictionary{}},
      {"isDroppedPinSelected", true},
      {"isDroppedPinPresented", false},
      {"presentedMapItem", Dictionary{{"name", "P"}}},
      {"searchCategoryStorage", Dictionary{}},
      {"selectedTransitFeatureID", ~std::uint64_t{0}},
      {"selectedTransitLineName", "M1"},
      {"lineItem", Dictionary{{"muid", std::uint64_t{1}}, {"name", "L1"}, {"hasIncidentComponent", true}}}};
  EXPECT_EQ(description(activity.dictionaryRepresentation()), description(expected));
  EXPECT_TRUE(activity.dictionaryRepresentation() == expected);
  activity.clearSearchPlaces();
  EXPECT_FALSE(activity.dictionaryRepresentation().contains("searchPlaces"));

  const std::string text = RovaActivity(activity).description();
  EXPECT_TRUE(text.starts_with("<RovaActivity: 0x")) << text;
  EXPECT_NE(text.find("> {collectionsMode: \"(unknown: 7)\", directionsPlan: {arrivalTime: "),
            std::string::npos)
      << text;
}

}  // namespace
}  // namespace linewatch
