#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "platform/log.h"
#include "ui/image.h"

namespace linewatch::desktop {

/// The drawings that are built into the program: resources/drawings/NAME.svg, and NAME.dark.svg for a drawing
/// that looks different in the dark. Needs a QGuiApplication.
class DrawingSource final : public ui::ImageSource {
 public:
  explicit DrawingSource(std::shared_ptr<Log> log);

  std::shared_ptr<const ui::Image> imageNamed(std::string_view name) override;

 private:
  std::shared_ptr<Log> log_;
  /// Null for a name without a drawing.
  std::map<std::string, std::shared_ptr<const ui::Image>, std::less<>> images_;
};

}  // namespace linewatch::desktop
