#include "desktop/window/notify_choice.h"

#include <QBoxLayout>
#include <QButtonGroup>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <string>
#include <utility>

#include "desktop/window/outlined_field.h"
#include "notices/weekly_hours.h"
#include "shared/failure.h"
#include "shared/outcome.h"

namespace linewatch::desktop {

namespace {

enum Time { kNever, kAlways, kAtHours };

// Points.
constexpr int kNotifyGap = 6;
constexpr int kNotifyMargin = 16;

/// The hours to begin with.
const QString kUsualHours = QStringLiteral("weekdays 7 to 9, 17 to 19");

Time timeOf(const std::optional<notices::Subscription>& subscription) {
  if (!subscription) return kNever;
  return subscription->hours.isAlways() ? kAlways : kAtHours;
}

}  // namespace

NotifyChoice::NotifyChoice(SharedWindowTexts texts, const notices::LineKey& line,
                           const std::optional<notices::Subscription>& present, Save save, const Fonts& fonts)
    : texts_(std::move(texts)),
      line_(line),
      save_(std::move(save)),
      times_(new QButtonGroup(this)),
      error_(new QLabel) {
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, kNotifyMargin, 0, 0);
  layout->setSpacing(kNotifyGap);
  auto* const heading = new QLabel((*texts_)("Notify"));
  heading->setFont(fonts.heading);
  layout->addWidget(heading);
  makeTimes(present, fonts);
  makeSeverities(present, fonts);
  error_->setTextFormat(Qt::PlainText);
  error_->setWordWrap(true);
  error_->setFont(fonts.heading);
  error_->hide();
  layout->addWidget(error_);
  didChange();
}

void NotifyChoice::makeTimes(const std::optional<notices::Subscription>& present, const Fonts& fonts) {
  for (const auto& [name, time] : {std::pair("NotifyOff", kNever), std::pair("NotifyAlways", kAlways),
                                   std::pair("NotifyHours", kAtHours)}) {
    auto* const radio = new QRadioButton((*texts_)(name));
    radio->setFont(fonts.text);
    radio->setChecked(time == timeOf(present));
    connect(radio, &QRadioButton::clicked, this, [this] { save(); });
    times_->addButton(radio, time);
    layout()->addWidget(radio);
  }
  hours_ = new OutlinedField;
  hours_->setFont(fonts.text);
  hours_->setAccessibleName((*texts_)("NotifyHours"));
  hours_->setText(timeOf(present) == kAtHours ? QString::fromStdString(present->hours.text()) : kUsualHours);
  connect(hours_, &QLineEdit::editingFinished, this, [this] {
    if (hours_->isModified()) save();
  });
  layout()->addWidget(hours_);
}

void NotifyChoice::makeSeverities(const std::optional<notices::Subscription>& present, const Fonts& fonts) {
  auto* const label = new QLabel((*texts_)("NotifyFrom"));
  label->setFont(fonts.heading);
  severities_ = new QComboBox;
  severities_->setFont(fonts.text);
  // The index is the severity.
  for (const char* const name : {"SeverityInfo", "SeverityWarning", "SeveritySevere"})
    severities_->addItem((*texts_)(name));
  severities_->setCurrentIndex(present ? static_cast<int>(present->from) : 0);
  label->setBuddy(severities_);
  connect(severities_, &QComboBox::activated, this, [this] { save(); });
  layout()->addWidget(label);
  layout()->addWidget(severities_);
}

void NotifyChoice::didChange() {
  hours_->setEnabled(times_->checkedId() == kAtHours);
  severities_->setEnabled(times_->checkedId() != kNever);
}

void NotifyChoice::save() {
  didChange();
  hours_->setModified(false);
  std::optional<Error> error;
  if (times_->checkedId() == kNever) {
    error = save_(std::nullopt);
  } else {
    const Outcome<notices::WeeklyHours> hours =
        times_->checkedId() == kAlways ? notices::WeeklyHours()
                                       : notices::WeeklyHours::parse(hours_->text().toStdString());
    error = hours ? save_(notices::Subscription{line_, *hours,
                                                static_cast<notices::Severity>(severities_->currentIndex())})
                  : std::optional(hours.error());
  }
  error_->setText(error ? QString::fromStdString(sentenceOf(*error)) : QString());
  error_->setVisible(error.has_value());
}

}  // namespace linewatch::desktop
