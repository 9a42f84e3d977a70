#include "platform/transit_line.h"

namespace linewatch {

std::optional<MapItemIdentifier> mapItemIdentifierForLine(const TransitLine& line) {
  return line.identifier();
}

}  // namespace linewatch
