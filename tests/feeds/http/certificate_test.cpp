// Fetches from a server whose certificate nobody trusts.

#include <array>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "feeds/http/http_fetcher.h"
#include "shared/failure.h"
#include "temporary_folder.h"

namespace linewatch {
namespace {

struct ProcessCloser {
  void operator()(FILE* process) const { pclose(process); }
};
using Process = std::unique_ptr<FILE, ProcessCloser>;

/// The port from the line "ACCEPT 127.0.0.1:40123".
std::string portOf(FILE* server) {
  std::array<char, 256> line{};
  while (fgets(line.data(), line.size(), server)) {
    const std::string text(line.data());
    if (text.starts_with("ACCEPT "))
      return text.substr(text.rfind(':') + 1, text.size() - text.rfind(':') - 2);
  }
  return {};
}

TEST(Certificate, SelfSignedIsNotTrusted) {
  const TemporaryFolder folder;
  const std::string key = folder / "key";
  const std::string certificate = folder / "certificate";
  const std::string make = "openssl ecparam -name prime256v1 -genkey -noout -out " + key;
  const std::string sign =
      "openssl req -x509 -new -days 1 -subj /CN=127.0.0.1 -key " + key + " -out " + certificate;
  ASSERT_EQ(std::system((make + " && " + sign).c_str()), 0);
  const std::string serve = "exec openssl s_server -www -accept 127.0.0.1:0 -naccept 1 -key " + key +
                            " -cert " + certificate + " 2>&1";
  const Process server(popen(serve.c_str(), "r"));
  const std::string port = portOf(server.get());
  ASSERT_FALSE(port.empty());
  const auto fetcher = loadHttpFetcher();
  ASSERT_TRUE(fetcher);
  const auto response = (*fetcher)->fetch({.url = "https://127.0.0.1:" + port + "/?key=secret"});
  ASSERT_FALSE(response);
  EXPECT_EQ(failureCodeOf(response.error()), FailureCode::unreachable);
  EXPECT_THAT(sentenceOf(response.error()),
              testing::StartsWith("it cannot be fetched: the server's certificate is not trusted: "));
}

}  // namespace
}  // namespace linewatch
