#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace linewatch {

/// The text without white space at its ends.
std::string_view trimmed(std::string_view text);

/// Takes a block of at most `limit` bytes from the front of a text: up to the last line in that range, else
/// up to the last word, else up to the last whole character. The line break or space after it is left out.
std::string_view takeTextBlock(std::string_view& text, std::size_t limit);

/// All blocks of the text; none of an empty text.
std::vector<std::string_view> textBlocks(std::string_view text, std::size_t limit);

/// The description without the title at its head. The title is only left out when it stands there as a whole
/// sentence or line.
std::string_view descriptionWithoutTitle(std::string_view description, std::string_view title);

/// The words that are not empty, each once, without `title`. Letter case of ASCII does not matter.
std::vector<std::string> distinctWords(const std::vector<std::string>& words, std::string_view title);

/// True when the text contains every name.
bool namesAll(std::string_view text, const std::vector<std::string>& names);

}  // namespace linewatch
