#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "wire/keyed_archiver.h"

namespace linewatch {

inline constexpr std::string_view kArchiveErrorDomain = "KeyedArchiveErrorDomain";
/// Codes of the errors that reading an archive reports. Each has a debug description.
enum class ArchiveErrorCode : std::int64_t {
  /// The bytes are not as an archive's are.
  malformed = 1,
  /// An object is not of an allowed class, or of another kind than was asked for.
  notAllowed = 2,
  /// An object's class has no factory, or its parts do not make one.
  notMade = 3,
};

/// What reading an archive is, whatever its bytes look like.
class ArchiveReading : public KeyedUnarchiver {
 public:
  void setFactory(std::string className, ArchivableFactory factory) final;
  std::optional<ArchivedObject> decodeTopLevelObject(const AllowedClasses& allowed,
                                                     std::optional<Error>& error) final;
  void finishDecoding() final { isFinished_ = true; }

 protected:
  /// None after a failure, which is kept.
  virtual std::optional<ArchivedObject> decodeRoot(const AllowedClasses& allowed) = 0;

  bool isAllowed(std::string_view className, const AllowedClasses& allowed);
  std::optional<ArchivedObject> makeObject(const std::string& className, KeyedDecoder& parts);

  /// Keeps the first failure.
  void fail(ArchiveErrorCode code, std::string description);
  bool hasFailed() const { return error_.has_value(); }

 private:
  std::map<std::string, ArchivableFactory, std::less<>> factories_;
  std::optional<Error> error_;
  bool isFinished_ = false;
};

}  // namespace linewatch
