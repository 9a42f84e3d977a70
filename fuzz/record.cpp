// Reads any bytes as a record. A record that was read can be written, and reading it again gives a record
// that writes the same bytes.

#include <cstddef>
#include <cstdint>

#include "activity/rova_activity.h"
#include "require.h"

namespace {

using namespace linewatch;

/// Compares bytes instead of records, because a NaN is not equal to itself.
void checkRecord(const RovaActivity& read) {
  const Bytes written = read.data();
  const auto again = messageWithData<RovaActivity>(written);
  require(again != nullptr);
  require(again->data() == written);
  require(again->hash() == read.hash());
  require(read.deepCopy()->data() == written);
  require(description(again->dictionaryRepresentation()) == description(read.dictionaryRepresentation()));

  RovaActivity merged, copied;
  merged.mergeFrom(read);
  read.copyTo(copied);
  require(merged.data() == written);
  require(copied.data() == written);
  merged.mergeFrom(*again);
  require(messageWithData<RovaActivity>(merged.data()) != nullptr);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  MessageReader reader(data, size);
  RovaActivity activity;
  if (activity.readFrom(reader)) checkRecord(activity);
  return 0;
}
