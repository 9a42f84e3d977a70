#pragma once

#include <string_view>

namespace linewatch {

/// The bytes of a zip with a routes.txt: "route_id\nM1\n".
inline constexpr char kTimetableZipBytes[] =
    "PK\3\4\x14\0\0\0\0\0\0\0!\0:\xCF\x0F\xF2\x0C\0\0\0\x0C\0\0\0\n\0\0\0routes.txtroute_id\nM1\n"
    "PK\1\2\x14\3\x14\0\0\0\0\0\0\0!\0:\xCF\x0F\xF2\x0C\0\0\0\x0C\0\0\0\n\0\0\0\0\0\0\0\0\0\0\0\x80\1\0\0\0\0"
    "routes.txtPK\5\6\0\0\0\0\1\0\1\0008\0\0\0004\0\0\0\0\0";
inline constexpr std::string_view kTimetableZip(kTimetableZipBytes, sizeof kTimetableZipBytes - 1);

}  // namespace linewatch
