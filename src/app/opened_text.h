#pragma once

#include <string>

#include "shared/outcome.h"

namespace linewatch {
class KeyedArchiver;
}

namespace linewatch::app {

/// What a row hands to the companion application, as JSON: the dictionary form of the activity record in the
/// file, compressed or not, or of each incident of the list archived in it.
Outcome<std::string> openedText(const std::string& file, KeyedArchiver& archiver);

}  // namespace linewatch::app
