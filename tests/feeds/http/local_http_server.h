#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace linewatch {

/// A server on this machine that answers each connection with whatever `script` writes for the request's
/// text.
class LocalHttpServer {
 public:
  /// Writes to the connection; false once the peer has gone.
  using Write = std::function<bool(const std::string& bytes)>;
  using Script = std::function<void(const std::string& request, const Write& write)>;

  explicit LocalHttpServer(Script script);
  ~LocalHttpServer();

  std::string url(const std::string& path = "/feed") const;
  std::vector<std::string> requests() const;

 private:
  void serve();
  void answer(int connection);

  Script script_;
  int listener_;
  int port_ = 0;
  mutable std::mutex mutex_;
  std::vector<std::string> requests_;
  std::thread thread_;
};

/// A whole answer with its length.
std::string httpAnswer(const std::string& status, const std::string& headers, const std::string& body);

}  // namespace linewatch
