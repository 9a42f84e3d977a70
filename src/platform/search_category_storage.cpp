#include "platform/search_category_storage.h"

#include "wire/message_fields.h"

namespace linewatch {

template class FieldedMessage<SearchCategoryStorage>;

}  // namespace linewatch
