#include "feeds/alerts/feed_texts.h"

#include <cstddef>

namespace linewatch {

namespace {

struct Entry {
  std::string_view key;
  std::string_view english;
};

// In the order of their numbers. Unknown and other causes and effects have no words.
constexpr Entry kCauses[kAlertCauses] = {
    {},
    {},
    {"LineWatch_Feed_Cause_TechnicalProblem", "Technical problem"},
    {"LineWatch_Feed_Cause_Strike", "Strike"},
    {"LineWatch_Feed_Cause_Demonstration", "Demonstration"},
    {"LineWatch_Feed_Cause_Accident", "Accident"},
    {"LineWatch_Feed_Cause_Holiday", "Holiday"},
    {"LineWatch_Feed_Cause_Weather", "Weather"},
    {"LineWatch_Feed_Cause_Maintenance", "Maintenance"},
    {"LineWatch_Feed_Cause_Construction", "Construction"},
    {"LineWatch_Feed_Cause_PoliceActivity", "Police activity"},
    {"LineWatch_Feed_Cause_MedicalEmergency", "Medical emergency"},
};
constexpr Entry kEffects[kAlertEffects] = {
    {"LineWatch_Feed_Effect_NoService", "No service"},
    {"LineWatch_Feed_Effect_ReducedService", "Reduced service"},
    {"LineWatch_Feed_Effect_SignificantDelays", "Significant delays"},
    {"LineWatch_Feed_Effect_Detour", "Detour"},
    {"LineWatch_Feed_Effect_AdditionalService", "Additional service"},
    {"LineWatch_Feed_Effect_ModifiedService", "Modified service"},
    {},
    {},
    {"LineWatch_Feed_Effect_StopMoved", "Stop moved"},
    {"LineWatch_Feed_Effect_NoEffect", "Service not affected"},
    {"LineWatch_Feed_Effect_AccessibilityIssue", "Accessibility issue"},
};

struct NamedFormat {
  std::string FeedTexts::*text;
  Entry entry;
};
constexpr NamedFormat kFormats[] = {
    {&FeedTexts::language, {"LineWatch_Feed_Language", "en"}},
    {&FeedTexts::incident, {"LineWatch_Feed_Incident", "Service alert"}},
    {&FeedTexts::effectAndCauseFormat, {"LineWatch_Feed_EffectAndCause", "{0} · {1}"}},
    {&FeedTexts::stopClosedFormat, {"LineWatch_Feed_Stop_Closed", "{0} closed"}},
    {&FeedTexts::stopMovedFormat, {"LineWatch_Feed_Stop_Moved", "{0} moved"}},
    {&FeedTexts::stopAccessibilityFormat, {"LineWatch_Feed_Stop_Accessibility", "{0}: accessibility issue"}},
    {&FeedTexts::stopAffectedFormat, {"LineWatch_Feed_Stop_Affected", "{0} affected"}},
    {&FeedTexts::stopsAffectedFormat,
     {"LineWatch_Feed_StopsAffected", "{0, plural, one {# stop affected} other {# stops affected}}"}},
    {&FeedTexts::stopWithIdFormat, {"LineWatch_Feed_StopWithId", "Stop {0}"}},
    {&FeedTexts::moreStopsFormat, {"LineWatch_Feed_MoreStops", "{0} more"}},
    {&FeedTexts::linesFormat, {"LineWatch_Feed_Lines", "Lines: {0}"}},
    {&FeedTexts::stopsFormat, {"LineWatch_Feed_Stops", "Stops: {0}"}},
};

void replace(std::string& text, std::string_view sought, const std::string& replacement) {
  if (const std::size_t place = text.find(sought); place != std::string::npos) {
    text.replace(place, sought.size(), replacement);
  }
}

}  // namespace

FeedTexts FeedTexts::english() {
  return lookedUp([](std::string_view /*key*/, std::string_view english) { return std::string(english); });
}

FeedTexts FeedTexts::lookedUp(const LookUp& lookUp) {
  const auto text = [&](const Entry& entry) {
    return entry.key.empty() ? std::string() : lookUp(entry.key, entry.english);
  };
  FeedTexts texts;
  for (std::size_t place = 0; place < kAlertCauses; ++place) texts.causes[place] = text(kCauses[place]);
  for (std::size_t place = 0; place < kAlertEffects; ++place) texts.effects[place] = text(kEffects[place]);
  for (const NamedFormat& format : kFormats) texts.*format.text = text(format.entry);
  return texts;
}

bool FeedTexts::hasWordsForStops(AlertEffect effect) {
  return effect == AlertEffect::noService || effect == AlertEffect::stopMoved ||
         effect == AlertEffect::accessibilityIssue;
}

std::string FeedTexts::effectAtStops(AlertEffect effect, const std::string& stops) const {
  if (!hasWordsForStops(effect)) return stops;
  const std::string& format = effect == AlertEffect::noService   ? stopClosedFormat
                              : effect == AlertEffect::stopMoved ? stopMovedFormat
                                                                 : stopAccessibilityFormat;
  return filledIn(format, stops);
}

std::string filledIn(std::string format, const std::string& value) {
  replace(format, "{0}", value);
  return format;
}

std::string FeedTexts::together(const std::string& effectWords, const std::string& causeWords) const {
  if (effectWords.empty() || causeWords.empty()) return effectWords + causeWords;
  std::string both = effectAndCauseFormat;
  replace(both, "{1}", causeWords);
  replace(both, "{0}", effectWords);
  return both;
}

}  // namespace linewatch
