#pragma once

#include <string>
#include <utility>

#include "shared/error.h"

namespace linewatch::app {

/// The result of a command: text for standard output, one line for standard error (empty for none), and the
/// exit status: 0 done; 1 the incidents could not be loaded; 2 wrong usage or unreadable input.
struct Report {
  std::string output;
  std::string complaint;
  int status = 0;

  static Report of(std::string text) { return {.output = std::move(text), .complaint = {}}; }
};

/// A report with status 1: the incidents could not be loaded.
Report notLoaded(const Error& error);
/// A report with status 2: wrong usage or unreadable input.
Report refused(const Error& error);

}  // namespace linewatch::app
