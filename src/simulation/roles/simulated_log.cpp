#include "simulation/roles/simulated_log.h"

namespace linewatch::simulation {

std::string withoutAddresses(std::string_view text) {
  constexpr std::string_view kHexadecimal = "0123456789abcdef";
  constexpr std::string_view kPrefix = "0x";
  std::string cleaned;
  for (auto address = text.find(kPrefix); address != std::string_view::npos; address = text.find(kPrefix)) {
    cleaned.append(text.substr(0, address)).append("0x0");
    const auto end = text.find_first_not_of(kHexadecimal, address + kPrefix.size());
    text = end == std::string_view::npos ? std::string_view() : text.substr(end);
  }
  return cleaned.append(text);
}

}  // namespace linewatch::simulation
