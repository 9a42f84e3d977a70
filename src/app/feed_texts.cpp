#include "app/feed_texts.h"

#include <cstddef>

#include "app/commands.h"
#include "app/text_table.h"

namespace linewatch::app {

std::string stateInWords(const RiderTexts& texts, const FeedState& state, Date now) {
  using Kind = FeedState::Kind;
  const std::string since = state.since ? texts.ago(now - *state.since) : "";
  switch (state.kind) {
    case Kind::fresh:
      return texts("StateFresh");
    case Kind::stale:
      return texts("StateStale", {since});
    case Kind::kept:
      return hasOldHeader(state, now)
                 ? texts("StateKeptOld", {since, texts.ago(now - *state.written), reasonOf(state, texts)})
                 : texts("StateKept", {since, reasonOf(state, texts)});
    case Kind::unreachable:
      if (!since.empty()) return texts("StateUnknownSince", {since, reasonOf(state, texts)});
      break;
    case Kind::outdated:
    case Kind::notMatching:
    case Kind::incomplete:
      break;
  }
  return texts("StateUnknown", {reasonOf(state, texts)});
}

std::string findingsText(const RiderTexts& texts, const std::string& done, const FeedFindings& findings,
                         Date now, const TerminalStyle& style) {
  const RiderTexts::Phrase lines{texts("Lines", {findings.lineCount})};
  const RiderTexts::Phrase alerts{texts("AlertsNow", {findings.alertCount})};
  const RiderTexts::Phrase state{stateInWords(texts, findings.state, now)};
  return paragraph(texts("FeedFound", {RiderTexts::Phrase{done}, lines, alerts}), kMessageIndent, style) +
         paragraph(texts("FeedState", {state}), kMessageIndent, style);
}

}  // namespace linewatch::app
