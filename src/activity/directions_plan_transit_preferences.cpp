#include "activity/directions_plan_transit_preferences.h"

#include "wire/message_fields.h"

namespace linewatch {

template class FieldedMessage<DirectionsPlanTransitPreferences>;

bool DirectionsPlanTransitPreferences::readFrom(MessageReader& reader) {
  return DirectionsPlanTransitPreferencesReadFrom(*this, reader);
}

bool DirectionsPlanTransitPreferencesReadFrom(DirectionsPlanTransitPreferences& preferences,
                                              MessageReader& reader) {
  return fields::read(reader, preferences);
}

}  // namespace linewatch
