#include "incidents/debug_transit_incident.h"

#include "platform/main_loop.h"
#include "platform/platform.h"

namespace linewatch {

namespace {

constexpr Seconds kOneDay{86400};

}  // namespace

std::shared_ptr<const DebugTransitIncident> DebugTransitIncident::_debug_fakeIncidentAffectingLine(
    const TransitLineItem& line) {
  const MainLoop& clock = platform().mainLoop();
  auto incident = std::make_shared<DebugTransitIncident>();
  TransitIncidentFields& fields = incident->fields();
  fields.muid = line.muid() + 1;
  fields.title = "Something Bad™";
  fields.summary = line.name() + " · Possible delays due to strike";
  fields.fullDescription =
      "Only one train out of three is working due to national strike of public transit workers.";
  fields.messageForRoutePlanning = "Something Bad™ happened";
  fields.messageForRouteStepping = fields.messageForRoutePlanning;
  fields.messageForNonRoutable = fields.messageForRoutePlanning;
  fields.startDate = clock.now() - kOneDay;
  fields.endDate = clock.now() + kOneDay;
  fields.iconType = 1;
  fields.creationDate = fields.startDate;
  fields.lastUpdated = clock.now();
  incident->setBlockingIncident(true);
  fields.affectedEntities = {std::make_shared<const DebugAffectedEntities>(line.muid())};
  return incident;
}

}  // namespace linewatch
