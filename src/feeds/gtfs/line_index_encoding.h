#pragma once

#include "feeds/gtfs/line_index.h"
#include "shared/outcome.h"
#include "shared/value.h"

namespace linewatch {

// The encoding of a line index in the cache, so that a start need not read the feed again:
//
//   bytes  content
//   4      "LWLI"
//   1      version of this layout, 1
//          text     feed name
//          text     language
//          number   of agencies; then for each:
//            text     id
//            text     name
//            text     language
//          number   of routes; then for each:
//   1        flags of the optional values that follow: 1 agency, 2 type, 4 colour, 8 text colour
//            text     id
//            text     short name
//            text     long name
//            number   agency: its index among the agencies
//   4        type, little-endian, two's complement
//   3        colour: red, green, blue
//   3        text colour
//
//   number: 32 bits, seven in a byte, the lowest first; the top bit says that another byte follows, and the
//           last of several bytes is not 0
//   text:   number of bytes, then the bytes
//
// Equal contents have equal bytes. A malformed colour is left out.

Bytes encodeLineIndex(const LineIndex::Contents& contents);

/// Any bytes may be given. The error of malformed ones says at which byte they go wrong.
Outcome<LineIndex::Contents> decodeLineIndex(std::span<const std::uint8_t> bytes);

}  // namespace linewatch
