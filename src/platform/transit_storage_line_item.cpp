#include "platform/transit_storage_line_item.h"

#include "platform/transit_record_fields.h"

namespace linewatch {

template class FieldedMessage<TransitStorageLineItem>;

namespace {

constexpr std::string_view kLineItemDataKey = "data";

TransitIncidents storedIncidents(const TransitIncidents& incidents) {
  TransitIncidents stored;
  stored.reserve(incidents.size());
  for (const SharedIncident& incident : incidents) stored.push_back(TransitStorageIncident::of(incident));
  return stored;
}

TransitLineFields storedLine(const TransitLine& line) {
  return {.muid = line.muid(),
          .identifier = line.identifier(),
          .name = line.name(),
          .system = line.system(),
          .departureTimeDisplayStyle = line.departureTimeDisplayStyle(),
          .departuresAreVehicleSpecific = line.departuresAreVehicleSpecific(),
          .artwork = line.artwork(),
          .modeArtwork = line.modeArtwork(),
          .alternateArtwork = line.alternateArtwork(),
          .lineColorString = line.hasLineColorString() ? line.lineColorString() : std::string(),
          .showVehicleNumber = line.showVehicleNumber(),
          .operatingHours = line.operatingHours()};
}

}  // namespace

TransitStorageLineItem::TransitStorageLineItem(const TransitLineItem& item)
    : fields_{storedLine(item),
              storedIncidents(item.incidents()),
              item.hasIncidentComponent(),
              item.isIncidentsTTLExpired(),
              item.labelItems(),
              item.attribution(),
              item.mapRegion(),
              item.encyclopedicInfo(),
              item.hasEncyclopedicInfo()} {}

void TransitStorageLineItem::encodeWithCoder(KeyedCoder& coder) const {
  coder.encodeBytes(kLineItemDataKey, data());
}

std::shared_ptr<const Archivable> TransitStorageLineItem::makeWithDecoder(KeyedDecoder& decoder) {
  const auto bytes = decoder.decodeBytes(kLineItemDataKey);
  return bytes ? messageWithData<TransitStorageLineItem>(*bytes) : nullptr;
}

}  // namespace linewatch
