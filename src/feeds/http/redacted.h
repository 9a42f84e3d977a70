#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "shared/error.h"

namespace linewatch {

/// The text without keys, for messages and the log. Each http(s) URL in it loses its user name and password,
/// and
/// "***" replaces the values of its query and its fragment, e.g. "https://host/feed?key=***&format=***".
/// "***" also replaces each of the secrets, plain or percent-encoded. A key in the path of a URL stays unless
/// it is one of the secrets.
std::string redacted(std::string_view text, const std::vector<std::string>& secrets = {});

/// The error with its sentences redacted.
Error redacted(Error error, const std::vector<std::string>& secrets);

/// True if the text holds a secret, plain or percent-encoded.
bool holdsSecret(std::string_view text, const std::vector<std::string>& secrets);

}  // namespace linewatch
