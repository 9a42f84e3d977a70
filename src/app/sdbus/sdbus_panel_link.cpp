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
constexpr std::uint64_t kMicroseconds = 2'000'000;

struct Unreference {
  void operator()(sd_bus* bus) const { sd_bus_flush_close_unref(bus); }
  void operator()(sd_bus_message* message) const { sd_bus_message_unref(message); }
};
using Bus = std::unique_ptr<sd_bus, Unreference>;
using Message = std::unique_ptr<sd_bus_message, Unreference>;

class SdBusPanelLink final : public PanelLink {
 public:
  SdBusPanelLink(Bus bus, std::string name) : bus_(std::move(bus)), name_(std::move(name)) {
    sd_bus_set_method_call_timeout(bus_.get(), kMicroseconds);
  }

  std::optional<std::string> document() override {
    Message request = newCall(kProperties, "Get");
    if (!request || sd_bus_message_append(request.get(), "ss", kInterface, "Document") < 0)
      return std::nullopt;
    const Message answer = call(*request);
    const char* text = nullptr;
    if (!answer || sd_bus_message_read(answer.get(), "v", "s", &text) < 0) return std::nullopt;
    return text;
  }
  bool refresh() override {
    const Message request = newCall(kInterface, "Refresh");
    return request && call(*request);
  }
  int follow() override {
    const std::string owner =
        "type='signal',sender='org.freedesktop.DBus',interface='org.freedesktop.DBus',"
        "member='NameOwnerChanged',arg0='" +
        name_ + "'";
    const bool isFollowing = sd_bus_match_signal(bus_.get(), nullptr, name_.c_str(), kPath, kProperties,
                                                 "PropertiesChanged", noteChange, this) >= 0 &&
                             sd_bus_add_match(bus_.get(), nullptr, owner.c_str(), noteChange, this) >= 0;
    return isFollowing ? sd_bus_get_fd(bus_.get()) : -1;
  }
  std::optional<bool> takeMessages() override {
    int count = 1;
    while (count > 0) count = sd_bus_process(bus_.get(), nullptr);
    if (count < 0) return std::nullopt;
    return std::exchange(hasChanged_, false);
  }

 private:
  static int noteChange(sd_bus_message*, void* link, sd_bus_error*) {
    static_cast<SdBusPanelLink*>(link)->hasChanged_ = true;
    return 0;
  }
  Message newCall(const char* interface, const char* method) {
    sd_bus_message* request = nullptr;
    if (sd_bus_message_new_method_call(bus_.get(), &request, name_.c_str(), kPath, interface, method) < 0)
      return nullptr;
    // A look at the status must not start a panel.
    sd_bus_message_set_auto_start(request, 0);
    return Message(request);
  }
  Message call(sd_bus_message& request) {
    sd_bus_message* answer = nullptr;
    sd_bus_call(bus_.get(), &request, kMicroseconds, nullptr, &answer);
    return Message(answer);
  }

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
