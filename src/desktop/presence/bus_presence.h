#pragma once

#include <functional>
#include <memory>
#include <string>

namespace linewatch::desktop {

/// The news as the properties of the bus object; docs/bus.md describes them.
struct BusNews {
  std::string status = "unknown";
  /// A few words for the rider.
  std::string summary;
  /// JSON.
  std::string incidents = "[]";
  std::string feeds = "[]";
  std::string document = "{}";

  bool operator==(const BusNews&) const = default;
};

/// The actions of the panel that other programs can call.
struct BusRequests {
  /// Shows the panel's window in front. With the token of the desktop it may take the focus; may be empty.
  std::function<void(const std::string& activationToken)> show = {};
  /// Fetches the news now.
  std::function<void()> refresh = {};
};

/// The panel on the session bus: its name, which makes it the only panel of its saved state, and the object
/// that other programs read and call. A panel of the user's own folders also has the application's id as a
/// name, which other programs know. Without a bus nothing happens. Needs a QCoreApplication; main thread.
class BusPresence {
 public:
  /// `name`: see busNameFor. Empty: the panel has no saved state, and stays off the bus. `hasId`: whether it
  /// is a panel of the user's own folders.
  BusPresence(std::string name, bool hasId);
  /// Gives the names back.
  ~BusPresence();
  BusPresence(const BusPresence&) = delete;
  BusPresence& operator=(const BusPresence&) = delete;

  enum class Standing {
    first,   // this process has the name
    second,  // another panel has it
    alone,   // there is no bus
  };
  /// Tries to get the name. Waits for the bus, but not for other programs. While another panel has the id,
  /// e.g. that of an environment with other folders, this one waits in the bus's queue for it.
  Standing takeName();
  /// Whether this process has the name.
  bool hasName() const { return hasName_; }
  /// Lets the panel that has the name show its window, and waits until it has. False if no panel answers in a
  /// few seconds.
  bool raiseOther(const std::string& activationToken);

  /// Requests before the first call of this function show and refresh nothing.
  void setRequests(BusRequests requests);
  /// Emits PropertiesChanged for the properties that differ.
  void setNews(BusNews news);

 private:
  class Object;

  std::string name_;
  bool hasId_;
  bool hasName_ = false;
  std::unique_ptr<Object> object_;
};

/// The token with which the desktop lets a window of the program that it starts take the focus; empty without
/// one. To be called before Qt reads the environment.
std::string activationTokenOfStart();

}  // namespace linewatch::desktop
