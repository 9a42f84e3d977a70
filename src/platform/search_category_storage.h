#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "wire/codable_message.h"
#include "wire/message_field.h"

namespace linewatch {

#include "wire/message_fields_begin.inc"

/// A stored category of places that the user has searched for.
class SearchCategoryStorage final : public FieldedMessage<SearchCategoryStorage> {
 public:
  static constexpr std::uint32_t kLastFieldNumber = 2;

  STRING_FIELD(1, categoryID, CategoryID)
  /// In the user's language.
  STRING_FIELD(2, displayName, DisplayName)
};

#include "wire/message_fields_end.inc"

}  // namespace linewatch
