#pragma once

#include <string>

#include "shared/outcome.h"

namespace linewatch {
class KeyedArchiver;
}

namespace linewatch::app {

/// The content of a row as JSON, from a file of the companion application: an activity record, compressed or
/// not, or a list of incidents.
Outcome<std::string> openedText(const std::string& file, KeyedArchiver& archiver);

}  // namespace linewatch::app
