#include "desktop/window/notify_choice.h"

#include <QBoxLayout>
#include <QButtonGroup>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <string>
#include <utility>

#include "desktop/window/control_style.h"
#include "desktop/window/outlined_field.h"
#include "desktop/window/window_style.h"
#include "notices/weekly_hours.h"
#include "shared/failure.h"
#include "shared/outcome.h"

namespace linewatch::desktop {

namespace {

enum Time { kNever, kAlways, kAtHours };

/// The hours to begin with.
const QString kUsualHours = QStringLiteral("weekdays 7 to 9, 17 to 19");

Time timeOf(const std::optional<notices::Subscription>& subscription) {
  if (!subscription) return kNever;
  return subscription->hours.isAlways() ? kAlways : kAtHours;
}

}  // namespace

NotifyChoice::NotifyChoice(SharedWindowTexts texts, const notices::LineKey& line,
                           const std::optional<notices::Subscription>& present, Save save)
    : texts_(std::move(texts)),
      line_(line),
      save_(std::move(save)),
      times_(new QButtonGroup(this)),
      error_(plainLabel({}, windowFont(kWindowNoteSize), TextTone::alarming)) {
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, kWindowMargin, 0, 0);
  layout->setSpacing(kWindowGap);
  layout->addWidget(
      plainLabel((*texts_)("Notify"), windowFont(kWindowNoteSize, QFont::DemiBold), TextTone::faint));
  makeTimes(present);
  makeSeverities(present);
  error_->hide();
  layout->addWidget(error_);
  didChange();
}

void NotifyChoice::makeTimes(const std::optional<notices::Subscription>& present) {
  auto* const row = new QHBoxLayout;
  for (const auto& [name, time] : {std::pair("NotifyOff", kNever), std::pair("NotifyAlways", kAlways),
                                   std::pair("NotifyHours", kAtHours)}) {
    auto* const radio = new QRadioButton((*texts_)(name));
    setControlStyle(*radio);
    radio->setFont(windowFont(kWindowNameSize));
    radio->setChecked(time == timeOf(present));
    connect(radio, &QRadioButton::clicked, this, [this] { save(); });
    times_->addButton(radio, time);
    row->addWidget(radio);
  }
  row->addStretch(1);
  static_cast<QVBoxLayout*>(layout())->addLayout(row);
  hours_ = new OutlinedField;
  hours_->setFont(windowFont(kWindowNameSize));
  hours_->setAccessibleName((*texts_)("NotifyHours"));
  hours_->setText(timeOf(present) == kAtHours ? QString::fromStdString(present->hours.text()) : kUsualHours);
  connect(hours_, &QLineEdit::editingFinished, this, [this] {
    if (hours_->isModified()) save();
  });
  layout()->addWidget(hours_);
}

void NotifyChoice::makeSeverities(const std::optional<notices::Subscription>& present) {
  QLabel* const label = plainLabel((*texts_)("NotifyFrom"), windowFont(kWindowNameSize));
  severities_ = new QComboBox;
  setControlStyle(*severities_);
  severities_->setFont(windowFont(kWindowNameSize));
  // The index is the severity.
  for (const char* const name : {"SeverityInfo", "SeverityWarning", "SeveritySevere"})
    severities_->addItem((*texts_)(name));
  severities_->setCurrentIndex(present ? static_cast<int>(present->from) : 0);
  label->setBuddy(severities_);
  connect(severities_, &QComboBox::activated, this, [this] { save(); });
  auto* const row = new QHBoxLayout;
  row->addWidget(label);
  row->addWidget(severities_, 1);
  static_cast<QVBoxLayout*>(layout())->addLayout(row);
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
