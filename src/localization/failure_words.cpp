#include "localization/failure_words.h"

#include <algorithm>
#include <string_view>

namespace linewatch {

namespace {

struct Reason {
  FailureCode code;
  std::string_view key;
};

constexpr Reason kReasons[] = {
    {FailureCode::notFound, "LineWatch_Failure_NotFound"},
    {FailureCode::unreadable, "LineWatch_Failure_Unreadable"},
    {FailureCode::denied, "LineWatch_Failure_Denied"},
    {FailureCode::full, "LineWatch_Failure_Full"},
    {FailureCode::busy, "LineWatch_Failure_Busy"},
    {FailureCode::damaged, "LineWatch_Failure_Damaged"},
    {FailureCode::malformed, "LineWatch_Failure_Malformed"},
    {FailureCode::tooLarge, "LineWatch_Failure_TooLarge"},
    {FailureCode::unsupported, "LineWatch_Failure_Unsupported"},
    {FailureCode::unreachable, "LineWatch_Failure_Unreachable"},
    {FailureCode::refused, "LineWatch_Failure_Refused"},
    {FailureCode::timedOut, "LineWatch_Failure_TimedOut"},
    {FailureCode::cancelled, "LineWatch_Failure_Cancelled"},
    {FailureCode::keyWanted, "LineWatch_Failure_KeyWanted"},
};

}  // namespace

std::string failureInWords(FailureCode code, const std::string& sentence, const IcuLocalization& texts) {
  const auto* const reason = std::ranges::find(kReasons, code, &Reason::code);
  if (reason == std::end(kReasons) || texts.isInFallbackLanguage()) return sentence;
  const std::string words = texts.failureString(reason->key, "");
  return words.empty() || sentence.empty() ? words + sentence : words + " (" + sentence + ")";
}

}  // namespace linewatch
