#include "wire/archive/archive_reading.h"

#include <utility>

namespace linewatch {

void ArchiveReading::setFactory(std::string className, ArchivableFactory factory) {
  factories_.insert_or_assign(std::move(className), std::move(factory));
}

std::optional<ArchivedObject> ArchiveReading::decodeTopLevelObject(const AllowedClasses& allowed,
                                                                   std::optional<Error>& error) {
  error = std::nullopt;
  if (isFinished_) return std::nullopt;
  error_ = std::nullopt;
  auto root = decodeRoot(allowed);
  error = error_;
  return root;
}

bool ArchiveReading::isAllowed(std::string_view className, const AllowedClasses& allowed) {
  if (allowed.contains(className)) return true;
  fail(ArchiveErrorCode::notAllowed,
       "a value of the class " + std::string(className) + " is not allowed here");
  return false;
}

std::optional<ArchivedObject> ArchiveReading::makeObject(const std::string& className, KeyedDecoder& parts) {
  const auto factory = factories_.find(className);
  if (factory == factories_.end()) {
    fail(ArchiveErrorCode::notMade, "nothing makes a " + className);
    return std::nullopt;
  }
  auto object = factory->second(parts);
  if (!object) {
    fail(ArchiveErrorCode::notMade, "the parts do not make a " + className);
    return std::nullopt;
  }
  return ArchivedObject{std::move(object)};
}

void ArchiveReading::fail(ArchiveErrorCode code, std::string description) {
  if (error_) return;
  error_ = Error{std::string(kArchiveErrorDomain),
                 static_cast<std::int64_t>(code),
                 {{kDebugDescriptionKey, std::move(description)}}};
}

}  // namespace linewatch
