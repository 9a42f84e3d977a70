#include "feeds/gtfs/colors.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "feeds/text/ascii.h"

namespace linewatch {

namespace {

constexpr std::string_view kWhite = "FFFFFF";
constexpr std::string_view kBlack = "000000";
// The least contrast of WCAG 2 for large or bold text (level AA). A feed's own pair of colours is kept from
// this contrast on, because riders know the network by it. White or black always gives 4.5 or more.
constexpr double kLeastContrast = 3;

bool isHexadecimal(char digit) { return isAsciiDigit(digit) || (digit >= 'A' && digit <= 'F'); }

double linearChannel(std::string_view digits) {
  unsigned byte = 0;
  std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16);
  const double encoded = byte / 255.0;
  return encoded <= 0.04045 ? encoded / 12.92 : std::pow((encoded + 0.055) / 1.055, 2.4);
}

double luminance(std::string_view color) {
  return 0.2126 * linearChannel(color.substr(0, 2)) + 0.7152 * linearChannel(color.substr(2, 2)) +
         0.0722 * linearChannel(color.substr(4, 2));
}

}  // namespace

std::string normalizedColor(std::string_view text) {
  if (text.starts_with('#')) text.remove_prefix(1);
  std::string color(text);
  std::transform(color.begin(), color.end(), color.begin(), asciiCapital);
  const bool isColor = color.size() == 6 && std::all_of(color.begin(), color.end(), isHexadecimal);
  return isColor ? color : std::string();
}

double contrastRatio(std::string_view a, std::string_view b) {
  const auto [darker, lighter] = std::minmax({luminance(a), luminance(b)});
  return (lighter + 0.05) / (darker + 0.05);
}

std::string readableTextColor(std::string_view wanted, std::string_view background) {
  if (!wanted.empty() && contrastRatio(wanted, background) >= kLeastContrast) return std::string(wanted);
  return std::string(contrastRatio(kWhite, background) >= contrastRatio(kBlack, background) ? kWhite
                                                                                            : kBlack);
}

}  // namespace linewatch
