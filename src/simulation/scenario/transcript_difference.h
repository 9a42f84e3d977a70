#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "shared/outcome.h"

namespace linewatch::simulation {

/// A transcript with the name under which the user knows it.
struct NamedTranscript {
  std::string_view name;
  /// One JSON object a line.
  std::string_view text;
};

/// Where two transcripts part, in a few lines of words: the first event that differs and, when both have the
/// same kind of event there, the first of its fields that differs. Absent when the transcripts are equal. The
/// error names a line that is not JSON.
Outcome<std::optional<std::string>> transcriptDifference(const NamedTranscript& a, const NamedTranscript& b);

}  // namespace linewatch::simulation
