#include "platform/url_display_options.h"

#include "wire/message_fields.h"

namespace linewatch {

template class FieldedMessage<UrlDisplayOptions>;

}  // namespace linewatch
