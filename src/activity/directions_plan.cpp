#include "activity/directions_plan.h"

#include "wire/message_fields.h"

namespace linewatch {

template class FieldedMessage<DirectionsPlan>;

bool DirectionsPlan::readFrom(MessageReader& reader) { return DirectionsPlanReadFrom(*this, reader); }

bool DirectionsPlanReadFrom(DirectionsPlan& plan, MessageReader& reader) {
  return fields::read(reader, plan);
}

std::string displayMethodAsString(DisplayMethod value) { return enumerationAsString(value); }
DisplayMethod StringAsDisplayMethod(std::string_view name) {
  return stringAsEnumeration<DisplayMethod>(name);
}

std::string transitPrioritizationAsString(TransitPrioritization value) { return enumerationAsString(value); }
TransitPrioritization StringAsTransitPrioritization(std::string_view name) {
  return stringAsEnumeration<TransitPrioritization>(name);
}

}  // namespace linewatch
