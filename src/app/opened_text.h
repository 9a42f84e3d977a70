#pragma once

#include <string>

#include "shared/outcome.h"

namespace linewatch {
class KeyedArchiver;
}

namespace linewatch::app {

/// The content of a file that a row gave to the companion application, as JSON: an activity record,
/// compressed or not, or a list of incidents.
Outcome<std::string> openedText(const std::string& file, KeyedArchiver& archiver);

}  // namespace linewatch::app
