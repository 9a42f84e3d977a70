// Compares the layout of a list row here and with Qt's widgets: two word-wrapped labels in a column and a
// picture at the trailing edge.

#include <QApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QPixmap>
#include <QVBoxLayout>
#include <QWidget>
#include <array>
#include <cstdlib>
#include <memory>
#include <string>

#include <benchmark/benchmark.h>

#include "desktop/drawing/drawn_platform.h"
#include "desktop/drawing/typefaces.h"
#include "ui/sample_row.h"

namespace linewatch::desktop {
namespace {

constexpr int kWidth = 359;
const std::array<std::string, 3> kTexts = {
    "No trains between Central Station and Harbour",
    "Delays of up to 20 minutes on the whole line until further notice", "Buses replace trains"};

void needApplication() {
  static int count = 3;
  static char name[] = "bench", option[] = "-platform", value[] = "offscreen";
  static char* arguments[] = {name, option, value, nullptr};
  static const QApplication application(count, arguments);
}

/// The row with Qt's widgets.
class WidgetRow {
 public:
  WidgetRow() : row_(&widget_), column_(new QVBoxLayout) {
    primary_->setFont(qtFont(ui::Font(ui::TextStyle::headline, {true, false})));
    secondary_->setFont(qtFont(ui::Font(ui::TextStyle::subheadline)));
    for (QLabel* label : {primary_, secondary_}) {
      label->setWordWrap(true);
      label->setTextFormat(Qt::PlainText);
      column_->addWidget(label);
    }
    QPixmap picture(30, 24);
    picture.fill(Qt::red);
    picture_->setPixmap(picture);
    row_.addLayout(column_, 1);
    row_.addWidget(picture_);
    widget_.ensurePolished();
  }

  void setTexts(const QString& primary, const QString& secondary) {
    primary_->setText(primary);
    secondary_->setText(secondary);
  }

  int heightOfPrimary() const { return primary_->height(); }

  void layOutAtWidth(int width) {
    row_.invalidate();
    widget_.resize(width, row_.heightForWidth(width));
    row_.activate();
  }

 private:
  QWidget widget_;
  QHBoxLayout row_;
  QVBoxLayout* column_;
  QLabel* primary_ = new QLabel;
  QLabel* secondary_ = new QLabel;
  QLabel* picture_ = new QLabel;
};

void NewTextWithWidgets(benchmark::State& state) {
  needApplication();
  WidgetRow row;
  std::array<QString, 3> texts;
  for (std::size_t i = 0; i < texts.size(); ++i) texts[i] = QString::fromStdString(kTexts[i]);
  std::size_t next = 0;
  for (auto _ : state) {
    row.setTexts(texts[next % 3], texts[(next + 1) % 3]);
    row.layOutAtWidth(kWidth);
    ++next;
  }
  if (row.heightOfPrimary() <= 0) std::abort();
}
BENCHMARK(NewTextWithWidgets);

void NewTextHere(benchmark::State& state) {
  needApplication();
  installPlatform(std::make_shared<DrawnPlatform>());
  {
    ui::SampleRow row;
    std::size_t next = 0;
    for (auto _ : state) {
      row.primary->setText(kTexts[next % 3]);
      row.secondary->setText(kTexts[(next + 1) % 3]);
      row.layOutAtWidth(kWidth);
      ++next;
    }
    if (!(row.primary->frame().height > 0)) std::abort();
  }
  installPlatform(nullptr);
}
BENCHMARK(NewTextHere);

void UnchangedRowHere(benchmark::State& state) {
  needApplication();
  installPlatform(std::make_shared<DrawnPlatform>());
  {
    ui::SampleRow row;
    row.primary->setText(kTexts[0]);
    row.secondary->setText(kTexts[1]);
    for (auto _ : state) row.layOutAtWidth(kWidth);
  }
  installPlatform(nullptr);
}
BENCHMARK(UnchangedRowHere);

}  // namespace
}  // namespace linewatch::desktop
