#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "shared/error.h"

namespace linewatch {

/// The text as it may be printed or logged. Any part of a URL but host and path may be a key: each http(s)
/// URL in the text loses its user name and password, and has "***" in place of its query's values and its
/// fragment, e.g. "https://host/feed?key=***&format=***". So has each of the secrets, also where it is
/// percent-encoded.
std::string redacted(std::string_view text, const std::vector<std::string>& secrets = {});

/// The error with its sentences redacted.
Error redacted(Error error, const std::vector<std::string>& secrets);

/// True if the text holds a secret, as it is or percent-encoded.
bool holdsSecret(std::string_view text, const std::vector<std::string>& secrets);

}  // namespace linewatch
