#include "platform/transit_storage_incident.h"

#include <typeinfo>
#include <utility>

#include "platform/transit_record_fields.h"

namespace linewatch {

template class FieldedMessage<TransitStorageIncident>;

namespace {

constexpr std::string_view kIncidentDataKey = "data";

TransitIncidentEntities storedEntities(const TransitIncidentEntities& entities) {
  TransitIncidentEntities stored;
  stored.reserve(entities.size());
  for (const auto& entity : entities)
    stored.push_back(std::make_shared<const TransitStorageIncidentEntity>(*entity));
  return stored;
}

TransitIncidentFields fieldsOf(const TransitIncident& incident) {
  return {.muid = incident.muid(),
          .isBlockingIncident = incident.isBlockingIncident(),
          .startDate = incident.startDate(),
          .endDate = incident.endDate(),
          .title = incident.title(),
          .summary = incident.summary(),
          .fullDescription = incident.fullDescription(),
          .messageForRoutePlanning = incident.messageForRoutePlanning(),
          .messageForRouteStepping = incident.messageForRouteStepping(),
          .messageForNonRoutable = incident.messageForNonRoutable(),
          .infoURL = incident.infoURL(),
          .iconType = incident.iconType(),
          .creationDate = incident.creationDate(),
          .lastUpdated = incident.lastUpdated(),
          .affectedEntities = incident.affectedEntities()};
}

}  // namespace

TransitStorageIncidentEntity::TransitStorageIncidentEntity(const TransitIncidentEntity& entity)
    : fields_{entity.muid(), entity.hasNextStopIDs(), entity.nextStopIDs()} {}

TransitStorageIncident::TransitStorageIncident(TransitIncidentFields fields)
    : TransitIncidentRecord(std::move(fields)) {
  fields_.affectedEntities = storedEntities(fields_.affectedEntities);
}

TransitStorageIncident::TransitStorageIncident(const TransitIncident& incident)
    : TransitStorageIncident(fieldsOf(incident)) {}

std::shared_ptr<const TransitStorageIncident> TransitStorageIncident::of(const SharedIncident& incident) {
  const TransitIncident& given = *incident;
  if (typeid(given) == typeid(TransitStorageIncident))
    return std::static_pointer_cast<const TransitStorageIncident>(incident);
  return std::make_shared<const TransitStorageIncident>(given);
}

void TransitStorageIncident::encodeWithCoder(KeyedCoder& coder) const {
  coder.encodeBytes(kIncidentDataKey, data());
}

std::shared_ptr<const Archivable> TransitStorageIncident::makeWithDecoder(KeyedDecoder& decoder) {
  const auto bytes = decoder.decodeBytes(kIncidentDataKey);
  return bytes ? messageWithData<TransitStorageIncident>(*bytes) : nullptr;
}

}  // namespace linewatch
