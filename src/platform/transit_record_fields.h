#pragma once

#include <tuple>

#include "platform/transit_storage_incident.h"
#include "platform/transit_storage_line_item.h"
#include "wire/message_field.h"
#include "wire/message_fields.h"

/// The fields of the stored transit records, for the source files that define them. A number is never reused
/// for another field, because stored lists outlive the program that wrote them.
namespace linewatch {

template <>
struct StoredAs<TransitIncidentEntity> {
  using Type = TransitStorageIncidentEntity;
};

template <>
struct StoredAs<TransitIncident> {
  using Type = TransitStorageIncident;
};

template <>
struct FieldTable<MapItemIdentifier> {
  using R = MapItemIdentifier;
  static constexpr auto fields = std::tuple{Field<1, &R::muid>{"muid"}};
};

template <>
struct FieldTable<MapRegion> {
  using R = MapRegion;
  static constexpr auto fields =
      std::tuple{Field<1, &R::southLatitude>{"southLatitude"}, Field<2, &R::westLongitude>{"westLongitude"},
                 Field<3, &R::northLatitude>{"northLatitude"}, Field<4, &R::eastLongitude>{"eastLongitude"}};
};

template <>
struct FieldTable<ShieldDataSource> {
  using R = ShieldDataSource;
  static constexpr auto fields = std::tuple{
      Field<1, &R::shieldType>{"shieldType"}, Field<2, &R::shieldText>{"shieldText"},
      Field<3, &R::shieldColorString>{"shieldColorString"}, Field<4, &R::textColorString>{"textColorString"}};
};

template <>
struct FieldTable<IconDataSource> {
  using R = IconDataSource;
  static constexpr auto fields =
      std::tuple{Field<1, &R::iconType>{"iconType"}, Field<2, &R::cartoID>{"cartoID"},
                 Field<3, &R::defaultTransitType>{"defaultTransitType"},
                 Field<4, &R::iconAttributeKey>{"iconAttributeKey"},
                 Field<5, &R::iconAttributeValue>{"iconAttributeValue"}};
};

template <>
struct FieldTable<TransitArtworkDataSource> {
  using R = TransitArtworkDataSource;
  static constexpr auto fields =
      std::tuple{Field<1, &R::artworkSourceType>{"artworkSourceType"},
                 Field<2, &R::artworkUseType>{"artworkUseType"},
                 Field<3, &R::shieldDataSource>{"shieldDataSource"},
                 Field<4, &R::iconDataSource>{"iconDataSource"},
                 Field<5, &R::iconFallbackShieldDataSource>{"iconFallbackShieldDataSource"},
                 Field<6, &R::hasRoutingIncidentBadge>{"hasRoutingIncidentBadge"},
                 Field<7, &R::accessibilityText>{"accessibilityText"},
                 Field<8, &R::intrinsicWidth>{"intrinsicWidth"}};
};

template <>
struct FieldTable<TransitSystem> {
  using R = TransitSystem;
  static constexpr auto fields =
      std::tuple{Field<1, &R::muid>{"muid"}, Field<2, &R::name>{"name"}, Field<3, &R::artwork>{"artwork"}};
};

template <>
struct FieldTable<TransitStorageEntityFields> {
  using R = TransitStorageEntityFields;
  static constexpr auto fields =
      std::tuple{Field<1, &R::muid>{"muid"}, Field<2, &R::hasNextStopIDs>{"hasNextStopIDs"},
                 Field<3, &R::nextStopIDs>{"nextStopIDs"}};
};

template <>
struct FieldTable<TransitIncidentFields> {
  using R = TransitIncidentFields;
  static constexpr auto fields = std::tuple{Field<1, &R::muid>{"muid"},
                                            Field<2, &R::isBlockingIncident>{"isBlockingIncident"},
                                            Field<3, &R::startDate>{"startDate"},
                                            Field<4, &R::endDate>{"endDate"},
                                            Field<5, &R::title>{"title"},
                                            Field<6, &R::summary>{"summary"},
                                            Field<7, &R::fullDescription>{"fullDescription"},
                                            Field<8, &R::messageForRoutePlanning>{"messageForRoutePlanning"},
                                            Field<9, &R::messageForRouteStepping>{"messageForRouteStepping"},
                                            Field<10, &R::messageForNonRoutable>{"messageForNonRoutable"},
                                            Field<11, &R::infoURL>{"infoURL"},
                                            Field<12, &R::iconType>{"iconType"},
                                            Field<13, &R::creationDate>{"creationDate"},
                                            Field<14, &R::lastUpdated>{"lastUpdated"},
                                            Field<15, &R::affectedEntities>{"affectedEntities"}};
};

template <>
struct FieldTable<TransitStorageLineFields> {
  using R = TransitStorageLineFields;
  static constexpr auto fields =
      std::tuple{Field<1, &R::muid>{"muid"},
                 Field<2, &R::identifier>{"identifier"},
                 Field<3, &R::name>{"name"},
                 Field<4, &R::system>{"system"},
                 Field<5, &R::departureTimeDisplayStyle>{"departureTimeDisplayStyle"},
                 Field<6, &R::departuresAreVehicleSpecific>{"departuresAreVehicleSpecific"},
                 Field<7, &R::artwork>{"artwork"},
                 Field<8, &R::modeArtwork>{"modeArtwork"},
                 Field<9, &R::alternateArtwork>{"alternateArtwork"},
                 Field<10, &R::lineColorString>{"lineColorString"},
                 Field<11, &R::showVehicleNumber>{"showVehicleNumber"},
                 Field<12, &R::operatingHours>{"operatingHours"},
                 Field<13, &R::incidents>{"incidents"},
                 Field<14, &R::hasIncidentComponent>{"hasIncidentComponent"},
                 Field<15, &R::isIncidentsTTLExpired>{"isIncidentsTTLExpired"},
                 Field<16, &R::labelItems>{"labelItems"},
                 Field<17, &R::attribution>{"attribution"},
                 Field<18, &R::mapRegion>{"mapRegion"},
                 Field<19, &R::encyclopedicInfo>{"encyclopedicInfo"},
                 Field<20, &R::hasEncyclopedicInfo>{"hasEncyclopedicInfo"}};
};

}  // namespace linewatch
