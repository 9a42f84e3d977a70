#include "desktop/window/settings_window.h"

#include <QApplication>
#include <QBoxLayout>
#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalBlocker>
#include <QTimer>
#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <utility>

#include "desktop/window/control_style.h"
#include "desktop/window/local_hours.h"
#include "desktop/window/outlined_field.h"
#include "desktop/window/window_colors.h"
#include "localization/string_tables.h"
#include "notices/weekly_hours.h"
#include "platform/platform.h"
#include "shared/failure.h"
#include "ui/interface_settings.h"

namespace linewatch::desktop {

namespace {

// Points.
constexpr QSize kSettingsSize(420, 520);
constexpr int kSettingsMargin = 20;
constexpr int kSettingsGap = 14;

constexpr std::array kRefreshChoices = {"30s", "1m", "2m", "5m", "10m", "30m"};

ui::TextSizeCategory presentTextSize() { return platform().interfaceSettings().textSizeCategory(); }

/// "SettingOnTop" of "on-top".
std::string textKeyOf(std::string_view part) {
  std::string key = "Setting";
  bool startsWord = true;
  for (const char c : part) {
    if (c != '-') key += startsWord ? static_cast<char>(std::toupper(static_cast<unsigned char>(c))) : c;
    startsWord = c == '-';
  }
  return key;
}

}  // namespace

SettingsWindow::SettingsWindow(SharedWindowTexts texts, SettingsServices services)
    : CompanionWindow(std::move(texts)), services_(std::move(services)), textSize_(presentTextSize()) {
  setWindowTitle(this->texts()("SettingsTitle"));
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  scroll_ = new QScrollArea;
  scroll_->setFrameShape(QFrame::NoFrame);
  scroll_->setWidgetResizable(true);
  scroll_->setFocusPolicy(Qt::NoFocus);
  scroll_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  layout->addWidget(scroll_);
  makeContents();
  resizeWithText(*this, kSettingsSize);
}

void SettingsWindow::present() {
  error_.reset();
  followChanges();
  showInFront();
  if (!focusWidget() && !rows_.empty()) rows_.front().control->setFocus(Qt::OtherFocusReason);
}

SettingsWindow::State SettingsWindow::state() const {
  const QWidget* const focused = focusWidget();
  return {place(), scroll_->verticalScrollBar()->value(), focused ? focused->objectName() : QString()};
}

void SettingsWindow::restore(const State& state) {
  setPlace(state.place);
  if (auto* const focused = findChild<QWidget*>(state.focused)) focused->setFocus(Qt::OtherFocusReason);
  present();
  scroll_->verticalScrollBar()->setValue(state.scrolledTo);
}

/// The fonts of the controls depend on the text size, so that a new size needs new controls.
void SettingsWindow::followChanges() {
  if (std::exchange(textSize_, presentTextSize()) != textSize_) {
    const auto focused = std::ranges::find_if(rows_, [](const Row& row) { return row.control->hasFocus(); });
    const auto place = static_cast<std::size_t>(focused - rows_.begin());
    const bool hadFocus = focused != rows_.end();
    // A control may still be handling the event that has changed the size.
    if (QWidget* const old = scroll_->takeWidget()) old->deleteLater();
    makeContents();
    resizeWithText(*this, kSettingsSize);
    if (hadFocus) rows_[place].control->setFocus(Qt::OtherFocusReason);
  }
  showValues();
  showFaults();
}

// ---- The controls ----

void SettingsWindow::makeContents() {
  rows_.clear();
  auto* const contents = new QWidget;
  contents->setAutoFillBackground(true);
  auto* const layout = new QVBoxLayout(contents);
  layout->setContentsMargins(kSettingsMargin, kSettingsMargin, kSettingsMargin, kSettingsMargin);
  layout->setSpacing(kSettingsGap);
  faults_ = makeLabel({}, font(kWindowNoteSize), Tone::alarming);
  layout->addWidget(faults_);
  for (const Setting& setting : settingTable()) addRow(setting, *layout);
  layout->addStretch(1);
  const QString place = services_.set ? texts()("SettingsFile", {services_.file}) : texts()("SettingsGiven");
  layout->addWidget(makeLabel(place, font(kWindowNoteSize), Tone::faint));
  scroll_->setWidget(contents);
}

void SettingsWindow::addRow(const Setting& setting, QBoxLayout& layout) {
  const bool isToggle = setting.kind == Setting::Kind::toggle;
  const Row row = isToggle                     ? makeToggle(setting)
                  : choicesOf(setting).empty() ? makeField(setting)
                                               : makeChoice(setting);
  row.control->setFont(font(kWindowNameSize));
  row.control->setAccessibleName(nameOf(setting));
  row.control->setObjectName(QString::fromUtf8(setting.key.data(), static_cast<int>(setting.key.size())));
  row.control->setEnabled(static_cast<bool>(services_.set));
  rows_.push_back(row);
  if (isToggle) return layout.addWidget(row.control);
  auto* const pair = new QVBoxLayout;
  pair->setSpacing(kWindowSmallGap);
  QLabel* const label = makeLabel(nameOf(setting), font(kWindowNoteSize), Tone::faint);
  label->setBuddy(row.control);
  pair->addWidget(label);
  pair->addWidget(row.control);
  layout.addLayout(pair);
}

SettingsWindow::Row SettingsWindow::makeToggle(const Setting& setting) {
  auto* const box = new QCheckBox(nameOf(setting));
  setControlStyle(*box);
  connect(box, &QCheckBox::toggled, this,
          [this, &setting](bool isOn) { set(setting, isOn ? "true" : "false"); });
  return {&setting, box, [box](const std::string& text) { box->setChecked(text == "true"); }};
}

SettingsWindow::Row SettingsWindow::makeChoice(const Setting& setting) {
  auto* const box = new QComboBox;
  setControlStyle(*box);
  // The wheel scrolls the window, and must not change a setting on its way.
  box->setFocusPolicy(Qt::StrongFocus);
  box->installEventFilter(this);
  const auto add = [this, box, &setting](const std::string& text) {
    box->addItem(nameOfChoice(setting, text), QString::fromStdString(text));
  };
  std::ranges::for_each(choicesOf(setting), add);
  connect(box, &QComboBox::activated, this,
          [this, box, &setting] { set(setting, box->currentData().toString().toStdString()); });
  return {&setting, box, [box, add](const std::string& text) {
            // A value that is written by hand may be none of the usual ones.
            if (box->findData(QString::fromStdString(text)) < 0) add(text);
            box->setCurrentIndex(box->findData(QString::fromStdString(text)));
          }};
}

SettingsWindow::Row SettingsWindow::makeField(const Setting& setting) {
  auto* const field = new OutlinedField;
  connect(field, &QLineEdit::editingFinished, this, [this, field, &setting] {
    if (!field->isModified()) return;
    field->setModified(false);
    set(setting, storedText(setting, field->text().trimmed()));
  });
  return {&setting, field, [this, field, &setting](const std::string& text) {
            const QString shown = shownText(setting, text);
            // What the user is writing stays.
            if (!field->isModified() && field->text() != shown) field->setText(shown);
          }};
}

QString SettingsWindow::shownText(const Setting& setting, const std::string& stored) const {
  const auto hours = notices::WeeklyHours::parse(stored);
  const bool isHours = &setting == &kQuietHoursSetting && !stored.empty() && hours;
  return isHours ? localHours(*hours, texts().locale()) : QString::fromStdString(stored);
}

/// The typed text itself if it is wrong.
std::string SettingsWindow::storedText(const Setting& setting, const QString& typed) const {
  const auto hours = parsedLocalHours(typed, texts().locale());
  const bool isHours = &setting == &kQuietHoursSetting && !typed.isEmpty() && hours;
  return isHours ? hours->text() : typed.toStdString();
}

std::vector<std::string> SettingsWindow::choicesOf(const Setting& setting) const {
  std::vector<std::string> choices(setting.choices.begin(), setting.choices.end());
  if (&setting == &kRefreshSetting) choices.assign(kRefreshChoices.begin(), kRefreshChoices.end());
  if (&setting == &kLanguageSetting) {
    choices = {"auto"};
    for (const EmbeddedLanguage& language : embeddedLanguages()) choices.emplace_back(language.language);
  }
  return choices;
}

QString SettingsWindow::nameOf(const Setting& setting) const { return texts()(textKeyOf(setting.key)); }

QString SettingsWindow::nameOfChoice(const Setting& setting, const std::string& text) const {
  if (text == "auto" || setting.key == "appearance" || &setting == &kTraySetting)
    return texts()(textKeyOf(text));
  if (&setting == &kRefreshSetting) {
    const double seconds = parseRefresh(text).value_or(Seconds(0)).count();
    const bool isMinutes = std::fmod(seconds, 60) == 0;
    return texts()(isMinutes ? "Minutes" : "Seconds",
                   {static_cast<std::uint64_t>(isMinutes ? seconds / 60 : seconds)});
  }
  QString tag = QString::fromStdString(text);
  if (&setting != &kLanguageSetting) return tag;
  const QString name = QLocale(tag).nativeLanguageName();
  return name.isEmpty() ? tag : name;
}

/// The wheel does nothing to a control that it would change.
bool SettingsWindow::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() != QEvent::Wheel) return CompanionWindow::eventFilter(watched, event);
  event->ignore();
  return true;
}

// ---- Values ----

void SettingsWindow::showValues() {
  for (const Row& row : rows_) {
    const SettingValue value = services_.find(*row.setting);
    const QSignalBlocker blocker(row.control);
    row.show(value.text);
    row.control->setToolTip(value.source == SettingSource::commandLine ? texts()("SettingFromCommandLine")
                                                                       : QString());
  }
}

void SettingsWindow::showFaults() {
  const std::vector<std::string> faults = services_.faults();
  QString text;
  if (!faults.empty()) text = texts()("SettingsFaults", {std::uint64_t{faults.size()}});
  for (const std::string& fault : faults) text += QLatin1Char('\n') + QString::fromStdString(fault);
  // The error of a file that is not TOML is about a mistake that is named already.
  const bool isNamed = error_ && failureCodeOf(*error_) == FailureCode::malformed && !faults.empty();
  if (error_ && !isNamed) {
    if (!text.isEmpty()) text += QLatin1Char('\n');
    text += mistake_.isEmpty() ? QString::fromStdString(texts().reason(*error_)) : mistake_;
  }
  faults_->setText(text);
  faults_->setVisible(!text.isEmpty());
}

QString SettingsWindow::mistakeIn(const Setting& setting, const std::string& text) const {
  if (&setting != &kQuietHoursSetting) return texts()("ValueNotAllowed", {text});
  return wrongHoursText(*error_, texts());
}

void SettingsWindow::set(const Setting& setting, const std::string& text) {
  error_ = services_.set(setting, text);
  const bool isWrong = error_ && failureCodeOf(*error_) == FailureCode::invalid;
  mistake_ = isWrong && !texts().localization().isInFallbackLanguage() ? mistakeIn(setting, text) : QString();
  followChanges();
}

}  // namespace linewatch::desktop
