#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "shared/mutex.h"

namespace linewatch {

/// A server on this machine that lets a script answer each connection, one after the other.
class LocalHttpServer {
 public:
  /// A connection whose request has been read.
  class Connection {
   public:
    Connection(int socket, std::string request) : socket_(socket), request_(std::move(request)) {}

    /// The request line and the header.
    const std::string& request() const { return request_; }
    /// Sends the bytes; false once the client has closed the connection.
    bool write(const std::string& bytes);
    /// Sends the piece again and again, with the pause between, until the client closes the connection.
    void writeForever(const std::string& piece, std::chrono::milliseconds pause = {});
    /// Waits for the client to close the connection.
    void awaitClose();
    /// The same for the time at most; false when the connection is still open.
    bool closesWithin(std::chrono::milliseconds time);
    /// The bytes that the client let the script send.
    std::size_t bytesWritten() const { return bytesWritten_; }

   private:
    int socket_;
    std::string request_;
    std::size_t bytesWritten_ = 0;
  };
  using Script = std::function<void(Connection& connection)>;

  explicit LocalHttpServer(Script script);
  LocalHttpServer(const LocalHttpServer&) = delete;
  LocalHttpServer& operator=(const LocalHttpServer&) = delete;
  /// Waits for the script of a connection that is open, which a client that goes on would hold up for ever.
  ~LocalHttpServer();

  std::string url(const std::string& path = "/feed") const;
  /// The same address by the name "localhost", which a client takes for another host.
  std::string otherUrl(const std::string& path = "/feed") const;
  std::vector<std::string> requests() const LINEWATCH_EXCLUDES(mutex_);

 private:
  void serve();
  void answer(int connection);

  Script script_;
  int listener_;
  int port_ = 0;
  mutable Mutex mutex_;
  std::vector<std::string> requests_ LINEWATCH_GUARDED_BY(mutex_);
  std::thread thread_;
};

/// A whole answer with its length. `headers` are lines that end with "\r\n".
std::string httpAnswer(const std::string& status, const std::string& headers, const std::string& body);

/// A script that sends the answer and closes.
LocalHttpServer::Script always(const std::string& answer);

}  // namespace linewatch
