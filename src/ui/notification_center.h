#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "shared/object.h"

namespace linewatch::ui {

/// Posted when the user has chosen another text size.
inline constexpr std::string_view kTextSizeDidChangeNotification = "TextSizeDidChange";

/// Announces events to observers, which it holds weakly. Main thread.
class NotificationCenter {
 public:
  /// Calls `handler` whenever `name` is posted, as long as the observer is alive. Observers are called in the
  /// order in which they were added.
  void addObserver(const std::shared_ptr<Object>& observer, std::string_view name,
                   std::function<void()> handler);
  /// Ends all observations of the observer, also while a notification is posted.
  void removeObserver(const Object& observer);
  /// Calls the observers of `name` before it returns. Observers added meanwhile are not called.
  void post(std::string_view name);

 private:
  struct Observation {
    const Object* identity;
    std::weak_ptr<Object> observer;
    std::string name;
    std::function<void()> handler;
    bool ended = false;
  };

  std::vector<std::shared_ptr<Observation>> observations_;
};

}  // namespace linewatch::ui
