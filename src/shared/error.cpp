#include "shared/error.h"

namespace linewatch {

std::string Error::description() const {
  std::string text = domain + " " + std::to_string(code);
  for (const char* key : {kLocalizedDescriptionKey, kDebugDescriptionKey}) {
    const auto entry = info.find(key);
    if (entry != info.end()) return text + " (" + entry->second.description() + ")";
  }
  return text;
}

}  // namespace linewatch
