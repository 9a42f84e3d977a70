#pragma once

#include <algorithm>
#include <cstddef>
#include <memory>
#include <string>

#include "simulation/forwarding_platform.h"

namespace linewatch {

/// A session that only counts how it is shared and reset.
class QuietSession final : public UserSession {
 public:
  void sessionEntity(bool share, bool reset) override {
    if (share) ++shareCount;
    if (reset) ++resetCount;
  }
  URL sharedSessionPunchOutURL(const std::string& absoluteString) override { return {absoluteString}; }
  Dictionary sharedSessionPunchOutUserInfo(Dictionary userInfo) override { return userInfo; }
  UserSessionSnapshot snapshot() override { return {}; }

  std::size_t shareCount = 0, resetCount = 0;
};

/// Counts its calls and gives the first bytes instead of compressing.
class CountingCompressor final : public Compressor {
 public:
  std::optional<Bytes> bzip2(const Bytes& data) override {
    ++count;
    const std::size_t length = std::min<std::size_t>(data.size(), 64);
    return Bytes(data.begin(), data.begin() + static_cast<std::ptrdiff_t>(length));
  }
  std::size_t count = 0;
};

/// Archives everything as one byte and counts the archives of each mode.
class QuietArchiver final : public KeyedArchiver {
 public:
  std::optional<Bytes> archivedData(const ArchivedObject&, bool requiringSecureCoding) override {
    ++(requiringSecureCoding ? secureCount : plainCount);
    return Bytes{1};
  }
  std::unique_ptr<KeyedUnarchiver> openForReading(const Bytes&) override { return nullptr; }

  std::size_t plainCount = 0, secureCount = 0;
};

/// A simulated platform without a session transcript, compression and archives. On it a test or benchmark
/// runs only the building of a list.
class QuietPlatform final : public ForwardingPlatform {
 public:
  QuietArchiver& keyedArchiver() override { return archiver_; }
  QuietSession& userSession() override { return session_; }
  CountingCompressor& compressor() override { return compressor_; }

 private:
  QuietSession session_;
  QuietArchiver archiver_;
  CountingCompressor compressor_;
};

}  // namespace linewatch
