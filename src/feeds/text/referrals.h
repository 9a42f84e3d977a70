#pragma once

#include <string>
#include <string_view>

namespace linewatch {

/// The sentence without the web addresses in it and what leads the reader to them: "Buses run instead (map at
/// https://…)" says "Buses run instead". Empty when it says nothing else, as in "See www.example.org".
std::string withoutReferrals(std::string_view sentence);

}  // namespace linewatch
