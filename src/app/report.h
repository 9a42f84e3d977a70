#pragma once

#include <string>
#include <utility>

#include "shared/error.h"

namespace linewatch::app {

/// The result of a command: text for standard output, one line for standard error (empty: none), and the exit
/// status: 0 done; 1 the incidents could not be loaded; 2 wrong usage or unreadable input.
struct Report {
  std::string output;
  std::string complaint;
  int status = 0;

  static Report of(std::string text) { return {.output = std::move(text), .complaint = {}}; }
};

/// The report that the incidents could not be loaded: status 1.
Report notLoaded(const Error& error);
/// The report of wrong usage or unreadable input: status 2.
Report refused(const Error& error);

}  // namespace linewatch::app
