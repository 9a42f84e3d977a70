// Reads any bytes as a CBOR value, and as an archive. A value that was read can be written, and reading it
// again gives a value that writes the same bytes.

#include <cstddef>
#include <cstdint>
#include <optional>

#include "require.h"
#include "wire/archive/cbor.h"
#include "wire/archive/cbor_keyed_archiver.h"

namespace {

using namespace linewatch;

void readValue(std::span<const std::uint8_t> bytes) {
  const auto value = cbor::valueIn(bytes);
  if (!value) return;
  const auto written = cbor::bytesOf(*value);
  require(written.has_value());
  const auto again = cbor::valueIn(*written);
  require(again.has_value());
  // Bytes are compared because a NaN does not equal itself.
  require(cbor::bytesOf(*again) == written);
}

void readArchive(const Bytes& bytes) {
  CborKeyedArchiver archiver;
  const auto archive = archiver.openForReading(bytes);
  if (!archive) return;
  std::optional<Error> error;
  const AllowedClasses allowed{std::string(kArchivedValueClass), std::string(kArchivedArrayClass),
                               std::string(kArchivedErrorClass)};
  const auto object = archive->decodeTopLevelObject(allowed, error);
  archive->finishDecoding();
  require(object.has_value() != error.has_value());
  if (!object) return requireOneLine(*error);
  const auto written = archiver.archivedData(*object, true);
  require(written.has_value() && archiver.openForReading(*written) != nullptr);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  readValue({data, size});
  readArchive(Bytes(data, data + size));
  return 0;
}
