#include "platform/dropped_pin.h"

#include "wire/message_fields.h"

namespace linewatch {

template class FieldedMessage<DroppedPin>;

}  // namespace linewatch
