#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace linewatch {

/// The text without white space at its ends.
std::string_view trimmed(std::string_view text);

/// Removes a block of at most `limit` bytes from the front of the text and returns it. A block ends at a line
/// end if possible, otherwise between words, otherwise between characters. The line end or space after it is
/// removed too.
std::string_view takeTextBlock(std::string_view& text, std::size_t limit);

/// All blocks of the text; none if it is empty.
std::vector<std::string_view> textBlocks(std::string_view text, std::size_t limit);

/// The description without the title at its start. The title is left out only if it is a whole sentence or
/// line there.
std::string_view descriptionWithoutTitle(std::string_view description, std::string_view title);

/// The words without duplicates, empty ones and `title`. Letter case of ASCII does not matter.
std::vector<std::string> distinctWords(const std::vector<std::string>& words, std::string_view title);

/// True when the text contains every name.
bool namesAll(std::string_view text, const std::vector<std::string>& names);

}  // namespace linewatch
