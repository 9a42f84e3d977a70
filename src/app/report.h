#pragma once

#include <optional>
#include <string>
#include <utility>

#include "shared/error.h"
#include "shared/failure.h"

namespace linewatch::app {

/// The result of a command: text for standard output, one line for standard error (empty for none), and the
/// exit status: 0 done; 1 the incidents could not be loaded; 2 wrong usage or unreadable input.
struct Report {
  std::string output;
  std::string complaint;
  int status = 0;
  /// The code of the error whose English sentence the complaint is. The program then puts a reason in the
  /// rider's language in front of it. Absent if the complaint is in the rider's language, or about usage.
  std::optional<FailureCode> failure = {};

  static Report of(std::string text) { return {.output = std::move(text), .complaint = {}}; }
};

/// A report with status 1: the incidents could not be loaded.
Report notLoaded(const Error& error);
/// A report with status 2: wrong usage or unreadable input.
Report refused(const Error& error);
/// The same for a text in the rider's language.
Report refusedWith(std::string complaint);

}  // namespace linewatch::app
