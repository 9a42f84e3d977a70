#pragma once

#include <cstdint>

namespace linewatch {

/// True for a character that must not be shown: controls, direction overrides and isolates, tags, fillers and
/// other characters without a shape. False for the joiners, marks and variation selectors that some scripts
/// and emoji need.
bool isHiddenCharacter(std::int32_t character);

/// True for a character that has a shape of its own. A text without any is empty to its reader.
bool isVisibleCharacter(std::int32_t character);

}  // namespace linewatch
