#include "desktop/drawing/drawing_source.h"

#include <QFile>
#include <utility>

#include "desktop/drawing/svg_drawing.h"

// Resources of a static library are linked only if this macro, outside of any namespace, asks for them.
static void keepDrawings() { Q_INIT_RESOURCE(drawings); }

namespace linewatch::desktop {

namespace {

/// The resource's bytes; empty when there is no such resource.
QByteArray drawing(std::string_view name, std::string_view extension) {
  const std::string path = ":/drawings/" + std::string(name) + std::string(extension);
  QFile file(QString::fromStdString(path));
  return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

std::shared_ptr<const ui::Image> imageIn(std::string_view name) {
  QByteArray light = drawing(name, ".svg");
  if (light.isEmpty()) return nullptr;
  return std::make_shared<SvgDrawing>(std::move(light), drawing(name, ".dark.svg"));
}

}  // namespace

DrawingSource::DrawingSource(std::shared_ptr<Log> log) : log_(std::move(log)) { keepDrawings(); }

std::shared_ptr<const ui::Image> DrawingSource::imageNamed(std::string_view name) {
  const auto known = images_.find(name);
  if (known != images_.end()) return known->second;
  auto image = imageIn(name);
  if (!image)
    log_->write({LogLevel::error, kLogCategory, "There is no image named %@", {Value(std::string(name))}});
  images_.emplace(name, image);
  return image;
}

}  // namespace linewatch::desktop
