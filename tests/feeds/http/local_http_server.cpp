#include "feeds/http/local_http_server.h"

#include <stdexcept>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace linewatch {

bool LocalHttpServer::Connection::write(const std::string& bytes) {
  const auto sent = send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL);
  if (sent > 0) bytesWritten_ += static_cast<std::size_t>(sent);
  return sent == static_cast<ssize_t>(bytes.size());
}

void LocalHttpServer::Connection::writeForever(const std::string& piece, std::chrono::milliseconds pause) {
  while (write(piece) && !closesWithin(pause)) {
  }
}

void LocalHttpServer::Connection::awaitClose() {
  while (!closesWithin(std::chrono::milliseconds(1000))) {
  }
}

bool LocalHttpServer::Connection::closesWithin(std::chrono::milliseconds time) {
  pollfd connection{socket_, POLLIN, 0};
  if (poll(&connection, 1, static_cast<int>(time.count())) <= 0) return false;
  char byte = 0;
  return recv(socket_, &byte, 1, 0) <= 0;
}

LocalHttpServer::LocalHttpServer(Script script)
    : script_(std::move(script)), listener_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  socklen_t size = sizeof address;
  auto* const generic = reinterpret_cast<sockaddr*>(&address);
  if (bind(listener_, generic, size) != 0 || listen(listener_, 8) != 0 ||
      getsockname(listener_, generic, &size) != 0) {
    throw std::runtime_error("no local port to listen on");
  }
  port_ = ntohs(address.sin_port);
  thread_ = std::thread([this] { serve(); });
}

LocalHttpServer::~LocalHttpServer() {
  shutdown(listener_, SHUT_RDWR);
  thread_.join();
  close(listener_);
}

std::string LocalHttpServer::url(const std::string& path) const {
  return "http://127.0.0.1:" + std::to_string(port_) + path;
}

std::string LocalHttpServer::otherUrl(const std::string& path) const {
  return "http://localhost:" + std::to_string(port_) + path;
}

std::vector<std::string> LocalHttpServer::requests() const {
  const MutexLock lock(mutex_);
  return requests_;
}

void LocalHttpServer::serve() {
  for (int connection = 0; (connection = accept(listener_, nullptr, nullptr)) >= 0; close(connection)) {
    answer(connection);
  }
}

void LocalHttpServer::answer(int connection) {
  std::string request;
  char buffer[4096];
  while (request.find("\r\n\r\n") == std::string::npos) {
    const auto size = recv(connection, buffer, sizeof buffer, 0);
    if (size <= 0) return;
    request.append(buffer, static_cast<std::size_t>(size));
    if (request.front() != 'G') return;  // another protocol than HTTP, e.g. TLS
  }
  {
    const MutexLock lock(mutex_);
    requests_.push_back(request);
  }
  Connection open(connection, std::move(request));
  script_(open);
}

std::string httpAnswer(const std::string& status, const std::string& headers, const std::string& body) {
  return "HTTP/1.1 " + status + "\r\nConnection: close\r\nContent-Length: " + std::to_string(body.size()) +
         "\r\n" + headers + "\r\n" + body;
}

LocalHttpServer::Script always(const std::string& answer) {
  return [answer](LocalHttpServer::Connection& connection) { connection.write(answer); };
}

}  // namespace linewatch
