#include "desktop/loop/network_watch.h"

#include <QSocketNotifier>
#include <array>
#include <memory>
#include <utility>

#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>
#include <unistd.h>

#include "machine/connection_diagnosis.h"

namespace linewatch::desktop {

namespace {

/// A socket on which the kernel announces added and removed routes. It works with every network manager.
/// Negative on failure.
int openRouteNews() {
  const int descriptor = socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE);
  sockaddr_nl address{};
  address.nl_family = AF_NETLINK;
  address.nl_groups = RTMGRP_IPV4_ROUTE | RTMGRP_IPV6_ROUTE;
  if (descriptor < 0 || bind(descriptor, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0)
    return descriptor;
  close(descriptor);
  return -1;
}

/// The content of the announcements is not needed, and some may be lost: each one only causes a check of the
/// connection.
void discardNews(int descriptor) {
  std::array<char, 8192> news{};
  while (recv(descriptor, news.data(), news.size(), 0) > 0) {
  }
}

bool isConnected() { return diagnoseConnection() == ConnectionFailureDiagnosis::other; }

}  // namespace

void watchNetwork(QObject& owner, std::function<void()> returned) {
  const int descriptor = openRouteNews();
  if (descriptor < 0) return;
  auto* const notifier = new QSocketNotifier(descriptor, QSocketNotifier::Read, &owner);
  QObject::connect(notifier, &QObject::destroyed, [descriptor] { close(descriptor); });
  QObject::connect(
      notifier, &QSocketNotifier::activated, &owner,
      [descriptor, connection = ConnectionReturn(isConnected()), returned = std::move(returned)]() mutable {
        discardNews(descriptor);
        if (connection.isBack(isConnected())) returned();
      });
}

}  // namespace linewatch::desktop
