#pragma once

#include <string>
#include <string_view>

namespace linewatch {

/// The sentence without its web addresses and the words that introduce them: "Buses run instead (map at
/// https://…)" gives "Buses run instead". Empty when nothing else is left: "See www.example.org".
std::string withoutReferrals(std::string_view sentence);

}  // namespace linewatch
