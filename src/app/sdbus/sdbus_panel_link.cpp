#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <systemd/sd-bus.h>

#include "app/link/panel_link.h"

namespace linewatch::app {

namespace {

constexpr const char* kPath = "/org/linewatch/LineWatch";
constexpr const char* kInterface = "org.linewatch.LineWatch1";
constexpr const char* kProperties = "org.freedesktop.DBus.Properties";
/// How long each function waits for the bus and the panel.
constexpr std::chrono::microseconds kPatience{2'000'000};

struct Unreference {
  // Nothing is flushed: that would wait for a bus that hangs, and every call has waited for its answer.
  void operator()(sd_bus* bus) const { sd_bus_close_unref(bus); }
  void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using Bus = std::unique_ptr<sd_bus, Unreference>;
using Message = std::unique_ptr<sd_bus_message, Unreference>;

class Deadline {
 public:
  /// 0 when it has passed.
  std::uint64_t microsecondsLeft() const {
    const auto left = std::chrono::ceil<std::chrono::microseconds>(end_ - Clock::now()).count();
    return left > 0 ? static_cast<std::uint64_t>(left) : 0;
  }

 private:
  using Clock = std::chrono::steady_clock;
  Clock::time_point end_ = Clock::now() + kPatience;
};

class SdBusPanelLink final : public PanelLink {
 public:
  SdBusPanelLink(Bus bus, std::string name) : bus_(std::move(bus)), name_(std::move(name)) {}

  std::optional<std::string> document() override {
    const Deadline deadline;
    if (!signIn(deadline)) return std::nullopt;
    Message request = newCall(kProperties, "Get");
    if (!request || sd_bus_message_append(request.get(), "ss", kInterface, "Document") < 0)
      return std::nullopt;
    const Message answer = call(*request, deadline);
    const char* text = nullptr;
    if (!answer || sd_bus_message_read(answer.get(), "v", "s", &text) < 0) return std::nullopt;
    return text;
  }
  bool refresh() override {
    const Deadline deadline;
    if (!signIn(deadline)) return false;
    const Message request = newCall(kInterface, "Refresh");
    return request && call(*request, deadline);
  }
  // The bus gets the matches before the calls that follow, so nothing waits for its answers to them.
  int follow() override {
    if (!signIn(Deadline())) return -1;
    const std::string owner =
        "type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
        "member='NameOwnerChanged',arg0='" +
        name_ + "'";
    const bool isFollowing =
        sd_bus_match_signal_async(bus_.get(), nullptr, name_.c_str(), kPath, kProperties, "PropertiesChanged",
                                  noteChange, nullptr, this) >= 0 &&
        sd_bus_add_match_async(bus_.get(), nullptr, owner.c_str(), noteChange, nullptr, this) >= 0;
    return isFollowing ? sd_bus_get_fd(bus_.get()) : -1;
  }
  std::optional<bool> takeMessages() override {
    int count = bus_ ? 1 : -1;
    while (count > 0) count = sd_bus_process(bus_.get(), nullptr);
    if (count < 0) return std::nullopt;
    return std::exchange(hasChanged_, false);
  }

 private:
  static int noteChange(sd_bus_message*, void* link, sd_bus_error*) {
    static_cast<SdBusPanelLink*>(link)->hasChanged_ = true;
    return 0;
  }
  /// Waits until the bus has accepted this program. A call would wait for that without a limit. Closes the
  /// bus on failure, so that nothing waits for it again.
  bool signIn(const Deadline& deadline) {
    while (bus_) {
      const int isReady = sd_bus_is_ready(bus_.get());
      if (isReady > 0) return true;
      if (isReady < 0 || !continueSignIn(deadline)) bus_ = nullptr;
    }
    return false;
  }
  bool continueSignIn(const Deadline& deadline) {
    const std::uint64_t left = deadline.microsecondsLeft();
    int result = left > 0 ? sd_bus_process(bus_.get(), nullptr) : -ETIMEDOUT;
    if (result == 0) result = sd_bus_wait(bus_.get(), left);
    return result >= 0 || result == -EINTR;
  }
  Message newCall(const char* interface, const char* method) {
    sd_bus_message* request = nullptr;
    if (sd_bus_message_new_method_call(bus_.get(), &request, name_.c_str(), kPath, interface, method) < 0)
      return nullptr;
    // A look at the status must not start a panel.
    sd_bus_message_set_auto_start(request, 0);
    return Message(request);
  }
  Message call(sd_bus_message& request, const Deadline& deadline) {
    sd_bus_message* answer = nullptr;
    // 0 would stand for the usual limit of 25 s.
    sd_bus_call(bus_.get(), &request, std::max<std::uint64_t>(deadline.microsecondsLeft(), 1), nullptr,
                &answer);
    return Message(answer);
  }

  /// Null after a failed sign-in.
  Bus bus_;
  std::string name_;
  bool hasChanged_ = false;
};

}  // namespace

extern "C" __attribute__((visibility("default"))) void linewatch_connectToPanel(
    const std::string& busName, std::unique_ptr<PanelLink>& link) {
  sd_bus* bus = nullptr;
  if (sd_bus_open_user(&bus) >= 0) link = std::make_unique<SdBusPanelLink>(Bus(bus), busName);
}

}  // namespace linewatch::app
