#pragma once

#include <QWidget>
#include <optional>

namespace linewatch::desktop {

/// A thin bar that shows how much is done, or that something is being done.
class ProgressLine final : public QWidget {
 public:
  ProgressLine();

  /// From 0 to 1; absent when not known.
  void setShare(std::optional<double> share);

  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  std::optional<double> share_;
};

}  // namespace linewatch::desktop
