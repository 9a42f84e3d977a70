#include "activity/rova_activity.h"

#include "wire/message_fields.h"

namespace linewatch {

template class FieldedMessage<RovaActivity>;

std::string collectionsModeAsString(CollectionsMode value) { return enumerationAsString(value); }
CollectionsMode StringAsCollectionsMode(std::string_view name) {
  return stringAsEnumeration<CollectionsMode>(name);
}

}  // namespace linewatch
