#include "machine/connection_diagnosis.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <system_error>
#include <vector>

namespace linewatch {

namespace {

std::vector<std::string> fieldsOf(const std::string& line) {
  std::istringstream stream(line);
  return {std::istream_iterator<std::string>(stream), {}};
}

/// Whether `matches` accepts the fields of some line.
template <class Matches>
bool anyLine(const std::filesystem::path& file, Matches matches) {
  std::ifstream stream(file);
  for (std::string line; std::getline(stream, line);) {
    if (matches(fieldsOf(line))) return true;
  }
  return false;
}

/// Whether a route with these hexadecimal flags is up and does not reject packets.
bool isOpen(const std::string& flags) {
  constexpr unsigned long kUp = 1;
  constexpr unsigned long kReject = 0x200;
  return (std::strtoul(flags.c_str(), nullptr, 16) & (kUp | kReject)) == kUp;
}

// For example "eth0 00000000 0102A8C0 0003 0 0 100 00000000 …": interface, destination, gateway, flags, …,
// mask.
bool leadsAnywhere(const std::vector<std::string>& fields) {
  return fields.size() > 7 && fields[1] == "00000000" && fields[7] == "00000000" && isOpen(fields[3]);
}

// Destination, prefix length, source, prefix length, next hop, metric, two counts, flags, interface.
bool leadsAnywhereIPv6(const std::vector<std::string>& fields) {
  return fields.size() > 9 && fields[0] == std::string(32, '0') && fields[1] == "00" && fields[9] != "lo" &&
         isOpen(fields[8]);
}

std::string wordIn(const std::filesystem::path& file) {
  std::string word;
  std::ifstream(file) >> word;
  return word;
}

bool carriesInternet(const std::filesystem::path& radio) {
  const std::string type = wordIn(radio / "type");
  return type == "wlan" || type == "wwan" || type == "wimax";
}

bool isSwitchedOff(const std::filesystem::path& radio) {
  return wordIn(radio / "soft") == "1" || wordIn(radio / "hard") == "1";
}

bool everyRadioIsOff(const std::filesystem::path& folder) {
  std::error_code error;
  std::vector<std::filesystem::path> radios;
  for (const auto& entry : std::filesystem::directory_iterator(folder, error)) {
    if (carriesInternet(entry.path())) radios.push_back(entry.path());
  }
  return !radios.empty() && std::ranges::all_of(radios, isSwitchedOff);
}

}  // namespace

ConnectionFailureDiagnosis diagnoseConnection(const NetworkFiles& files) {
  if (anyLine(files.routes, leadsAnywhere) || anyLine(files.ipv6Routes, leadsAnywhereIPv6))
    return ConnectionFailureDiagnosis::other;
  return everyRadioIsOff(files.radios) ? ConnectionFailureDiagnosis::airplaneMode
                                       : ConnectionFailureDiagnosis::noInternetConnection;
}

}  // namespace linewatch
