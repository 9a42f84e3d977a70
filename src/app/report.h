#pragma once

#include <string>
#include <utility>

#include "shared/error.h"

namespace linewatch::app {

/// What a command gives: text for standard output, a line for standard error when it has one, and the exit
/// status.
struct Report {
  std::string output;
  std::string complaint;
  int status = 0;

  static Report of(std::string text) { return {.output = std::move(text), .complaint = {}}; }
};

/// The incidents could not be loaded.
Report notLoaded(const Error& error);
/// Wrong usage or unreadable input.
Report refused(const Error& error);

}  // namespace linewatch::app
