#include "platform/map_item_storage.h"

#include "wire/message_fields.h"

namespace linewatch {

template class FieldedMessage<MapItemStorage>;

}  // namespace linewatch
