#include "platform/route_request_storage.h"

#include "wire/message_fields.h"

namespace linewatch {

template class FieldedMessage<RouteRequestStorage>;

}  // namespace linewatch
