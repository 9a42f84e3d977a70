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
#include "desktop/window/local_hours.h"
#include "desktop/window/outlined_field.h"
#include "desktop/window/window_style.h"
#include "notices/weekly_hours.h"

namespace linewatch::desktop {

namespace {

enum Time { kNever, kAlways, kAtHours };

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
  for (const auto& [name, time] : {std::pair("NotifyOff", kNever), std::pair("NotifyAlways", kAlways),
                                   std::pair("NotifyHours", kAtHours)}) {
    auto* const radio = new QRadioButton((*texts_)(name));
    setControlStyle(*radio);
    radio->setFont(windowFont(kWindowNameSize));
    radio->setChecked(time == timeOf(present));
    connect(radio, &QRadioButton::clicked, this, [this] { save(); });
    times_->addButton(radio, time);
    layout()->addWidget(radio);
  }
  hours_ = new OutlinedField;
  hours_->setFont(windowFont(kWindowNameSize));
  hours_->setAccessibleName((*texts_)("NotifyHours"));
  hours_->setText(timeOf(present) == kAtHours ? localHours(present->hours, texts_->locale())
                                              : usualLocalHours(texts_->locale()));
  connect(hours_, &QLineEdit::editingFinished, this, [this] {
    if (hours_->isModified()) save();
  });
  layout()->addWidget(hours_);
}

void NotifyChoice::makeSeverities(const std::optional<notices::Subscription>& present) {
  QLabel* const label = plainLabel((*texts_)("NotifyFrom"), windowFont(kWindowNoteSize), TextTone::faint);
  severities_ = new QComboBox;
  setControlStyle(*severities_);
  severities_->setFont(windowFont(kWindowNameSize));
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

Outcome<notices::WeeklyHours> NotifyChoice::chosenHours() const {
  return times_->checkedId() == kAlways ? notices::WeeklyHours()
                                        : parsedLocalHours(hours_->text(), texts_->locale());
}

void NotifyChoice::save() {
  didChange();
  hours_->setModified(false);
  if (times_->checkedId() == kNever) return showError(save_(std::nullopt));
  const auto hours = chosenHours();
  if (!hours) return showMistake(wrongHoursText(hours.error(), *texts_));
  showError(save_(
      notices::Subscription{line_, *hours, static_cast<notices::Severity>(severities_->currentIndex())}));
}

void NotifyChoice::showError(const std::optional<Error>& error) {
  showMistake(error ? QString::fromStdString(texts_->reason(*error)) : QString());
}

void NotifyChoice::showMistake(const QString& text) {
  error_->setText(text);
  error_->setVisible(!text.isEmpty());
}

}  // namespace linewatch::desktop
