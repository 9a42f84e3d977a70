// Reads any bytes as a zip archive of a timetable. Each table is read, missing, or refused with one line.

#include <cstddef>
#include <cstdint>

#include "feeds/zip/zip_source.h"
#include "require.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace linewatch;
  const auto source = openZip(Bytes(data, data + size));
  if (!source) {
    requireOneLine(source.error());
    return 0;
  }
  for (const char* const name : {"agency.txt", "routes.txt", "stops.txt"}) {
    const auto table = (*source)->file(name);
    if (!table) {
      requireOneLine(table.error());
    } else if (*table) {
      require((*table)->size() <= kLargestGtfsTable);
    }
  }
  return 0;
}
