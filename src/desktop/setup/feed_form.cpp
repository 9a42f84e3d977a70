#include "desktop/setup/feed_form.h"

#include <QBoxLayout>
#include <QComboBox>
#include <QFile>
#include <QFileDialog>
#include <QLabel>
#include <utility>

#include "desktop/window/action_button.h"
#include "desktop/window/outlined_field.h"
#include "desktop/window/window_style.h"
#include "shared/failure.h"

namespace linewatch::desktop {

namespace {

// Points.
constexpr int kFormGroupGap = 10;

enum KeyPlace { inHeader, inAddress };

QLineEdit* formField(const QString& name) {
  auto* const field = new OutlinedField;
  field->setFont(windowFont(kWindowNameSize));
  field->setAccessibleName(name);
  return field;
}

}  // namespace

FeedForm::FeedForm(SharedWindowTexts texts) : texts_(std::move(texts)) {
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(kWindowSmallGap);
  timetable_ = addAddressField("TimetableAddress", "*.zip");
  alerts_ = addAddressField("AlertsAddress", "*");
  name_ = addField("FeedName");
  addKeyFields();
}

QLineEdit* FeedForm::addField(const char* name) {
  const QString text = (*texts_)(name);
  auto* const label = plainLabel(text, windowFont(kWindowNoteSize), TextTone::faint);
  label->setContentsMargins(0, kFormGroupGap, 0, 0);
  layout()->addWidget(label);
  QLineEdit* const field = formField(text);
  layout()->addWidget(field);
  return field;
}

/// A field with a button that chooses a file.
QLineEdit* FeedForm::addAddressField(const char* name, const char* filter) {
  QLineEdit* const field = addField(name);
  layout()->removeWidget(field);
  const QString text = (*texts_)(name);
  auto* const button = new ActionButton((*texts_)("ChooseFile"));
  button->setAccessibleName((*texts_)("ChooseFile") + QStringLiteral(" – ") + text);
  connect(button, &QAbstractButton::clicked, this, [this, field, text, filter] {
    const QString file = QFileDialog::getOpenFileName(this, text, QString(), QLatin1String(filter));
    if (!file.isEmpty()) field->setText(file);
  });
  auto* const row = new QHBoxLayout;
  row->addWidget(field, 1);
  row->addWidget(button);
  static_cast<QVBoxLayout*>(layout())->addLayout(row);
  return field;
}

void FeedForm::addKeyFields() {
  key_ = addField("FeedKeyIfWanted");
  key_->setEchoMode(QLineEdit::PasswordEchoOnEdit);
  keyPlace_ = new QComboBox;
  keyPlace_->addItem((*texts_)("KeyInHeader"));
  keyPlace_->addItem((*texts_)("KeyInAddress"));
  keyPlace_->setAccessibleName((*texts_)("FeedKey"));
  keyName_ = formField((*texts_)("KeyName"));
  keyName_->setPlaceholderText((*texts_)("KeyName"));
  keyPlace_->setFont(windowFont(kWindowNameSize));
  keyRow_ = new QWidget;
  auto* const row = new QHBoxLayout(keyRow_);
  row->setContentsMargins(0, 0, 0, 0);
  row->addWidget(keyPlace_);
  row->addWidget(keyName_, 1);
  layout()->addWidget(keyRow_);
  keyRow_->hide();
  connect(key_, &QLineEdit::textChanged, keyRow_,
          [this](const QString& key) { keyRow_->setVisible(!key.isEmpty()); });
}

void FeedForm::setAddresses(const std::string& timetable, const std::string& alerts) {
  timetable_->setText(QString::fromStdString(timetable));
  alerts_->setText(QString::fromStdString(alerts));
}

FeedKeys FeedForm::keys() const {
  FeedKeys keys;
  keys.key = key_->text().trimmed().toStdString();
  if (keys.key.empty()) return keys;
  const FeedKeys::Field field{keyName_->text().trimmed().toStdString(), "KEY"};
  (keyPlace_->currentIndex() == inHeader ? keys.headers : keys.query).push_back(field);
  return keys;
}

StoredFeed FeedForm::entries() const {
  const auto sourceIn = [this](const QLineEdit& field) {
    FeedSource source(field.text().trimmed().toStdString());
    if (!source.locations.empty()) source.keys = keys();
    return source;
  };
  return {name_->text().trimmed().toStdString(), sourceIn(*timetable_), sourceIn(*alerts_)};
}

Outcome<FeedProposal> FeedForm::proposal() const { return proposalOf(entries()); }

/// The proposal checks the entries in this order.
QString FeedForm::inWords(const Error& error) const {
  const StoredFeed feed = entries();
  if (feedNameError(feed.name)) return (*texts_)("FeedNameWrong", {feed.name});
  if (feed.gtfs.locations.empty()) return (*texts_)("TimetableMissing");
  if (feed.alerts.locations.empty()) return (*texts_)("AlertsMissing");
  // The error hides the passwords of an address.
  const std::string sentence = sentenceOf(error);
  return (*texts_)("AddressWrong", {sentence.substr(0, sentence.rfind(": "))});
}

void FeedForm::focusFirstEmpty() {
  for (QLineEdit* const field : {timetable_, alerts_, name_}) {
    if (field->text().isEmpty()) return field->setFocus(Qt::OtherFocusReason);
  }
  name_->setFocus(Qt::OtherFocusReason);
}

}  // namespace linewatch::desktop
