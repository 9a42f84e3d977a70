#pragma once

#include "shared/value.h"

namespace linewatch::app {

/// The JSON array with `form(part)` for each of the parts.
template <class Parts, class Form>
Array formsOf(const Parts& parts, Form form) {
  Array forms;
  forms.reserve(parts.size());
  for (const auto& part : parts) forms.push_back(form(part));
  return forms;
}

}  // namespace linewatch::app
