#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "shared/error.h"

namespace linewatch {

/// The text as it may be printed or logged, with "***" in place of
/// - the user name, the password, the query's values and the fragment of each http(s) URL in it, since any of
///   them may be a key: "https://***@host/feed?key=***&format=***",
/// - each of the secrets, also where it is percent-encoded.
std::string redacted(std::string_view text, const std::vector<std::string>& secrets = {});

/// The error with its sentences redacted.
Error redacted(Error error, const std::vector<std::string>& secrets);

/// True if the text holds a secret, as it is or percent-encoded.
bool holdsSecret(std::string_view text, const std::vector<std::string>& secrets);

}  // namespace linewatch
