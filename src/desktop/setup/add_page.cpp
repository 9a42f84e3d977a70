#include "desktop/setup/add_page.h"

#include <QBoxLayout>
#include <QLabel>
#include <QMetaObject>
#include <QScrollArea>
#include <algorithm>
#include <utility>

#include "desktop/setup/city_list.h"
#include "desktop/setup/feed_form.h"
#include "desktop/setup/progress_line.h"
#include "desktop/window/action_button.h"
#include "desktop/window/link_button.h"
#include "desktop/window/outlined_field.h"
#include "desktop/window/window_colors.h"
#include "desktop/window/window_style.h"
#include "shared/failure.h"

namespace linewatch::desktop {

AddPage::AddPage(SharedWindowTexts texts, SetupServices services, const Wanted& wanted,
                 std::function<void(const FeedFindings&)> added)
    : texts_(std::move(texts)),
      services_(std::move(services)),
      added_(std::move(added)),
      entries_(new QWidget),
      note_(plainLabel({}, windowFont(kWindowTextSize))),
      line_(new ProgressLine),
      cancel_(new ActionButton((*texts_)("Cancel"))),
      add_(new ActionButton((*texts_)("AddFeed"), ActionButton::Emphasis::primary)) {
  auto* const layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, kWindowMargin);
  auto* const fields = new QVBoxLayout(entries_);
  fields->setContentsMargins(kWindowMargin, 0, kWindowMargin, 0);
  fields->setSpacing(kWindowGap);
  if (const auto* const hit = std::get_if<CatalogueHit>(&wanted)) hit_ = *hit;
  if (hit_) showHit(*fields);
  if (!hit_ || hit_->timetables.empty()) {
    form_ = new FeedForm(texts_);
    const auto* const addresses = std::get_if<Addresses>(&wanted);
    form_->setAddresses(addresses ? addresses->timetable : "",
                        addresses ? addresses->alerts : hit_->alerts->url);
    fields->addWidget(form_);
  } else if (hit_->needsKey()) {
    showKey(*fields, hit_->key());
  }
  fields->addStretch();
  auto* const scroller = new QScrollArea;
  scroller->setFrameShape(QFrame::NoFrame);
  scroller->setWidgetResizable(true);
  scroller->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  scroller->setFocusPolicy(Qt::NoFocus);
  scroller->setWidget(entries_);
  layout->addWidget(scroller, 1);
  makeBottom(*layout);
  showRunning(false);
  // A failure is about what was entered before.
  for (const auto* const field : entries_->findChildren<QLineEdit*>()) {
    connect(field, &QLineEdit::textChanged, note_, &QWidget::hide);
    connect(field, &QLineEdit::returnPressed, this, [this] { start(); });
  }
}

AddPage::~AddPage() { cancel(); }

void AddPage::present() {
  if (form_) return form_->focusFirstEmpty();
  (key_ ? static_cast<QWidget*>(key_) : add_)->setFocus(Qt::OtherFocusReason);
}

QStringList AddPage::entries() const {
  QStringList texts;
  for (const auto* const field : entries_->findChildren<QLineEdit*>()) texts << field->text();
  return texts;
}

void AddPage::setEntries(const QStringList& entries) {
  const auto fields = entries_->findChildren<QLineEdit*>();
  for (qsizetype place = 0; place < std::min(fields.size(), entries.size()); ++place)
    fields[place]->setText(entries[place]);
}

// ---- The entries ----

void AddPage::showHit(QVBoxLayout& layout) {
  layout.addWidget(
      plainLabel(QString::fromStdString(hit_->provider()), windowFont(kWindowTitleSize, QFont::DemiBold)));
  const QFont font = windowFont(kWindowTextSize);
  for (const QString& text :
       {QString::fromStdString(hit_->place(services_.language)), coverageInWords(*texts_, *hit_)}) {
    if (!text.isEmpty()) layout.addWidget(plainLabel(text, font, TextTone::faint));
  }
  if (!hit_->isActive()) layout.addWidget(plainLabel((*texts_)("CityGivenUpLong"), font, TextTone::alarming));
  if (!hit_->needsKey()) layout.addWidget(plainLabel((*texts_)("CityNeedsNoKey"), font, TextTone::faint));
  addLink(layout, "License", hit_->license());
  if (hit_->timetables.empty()) layout.addWidget(plainLabel((*texts_)("CityWithoutTimetable"), font));
}

void AddPage::showKey(QVBoxLayout& layout, const CatalogueKey& key) {
  layout.addSpacing(kWindowMargin);
  const bool isKnown = key.kind != CatalogueKey::Kind::other;
  layout.addWidget(
      plainLabel((*texts_)(isKnown ? "KeyWanted" : "KeyOfUnknownKind"), windowFont(kWindowTextSize)));
  addLink(layout, "GetKey", key.page);
  key_ = new OutlinedField;
  key_->setFont(windowFont(kWindowNameSize));
  key_->setAccessibleName((*texts_)("FeedKey"));
  key_->setPlaceholderText((*texts_)("FeedKey"));
  layout.addWidget(key_);
}

void AddPage::addLink(QVBoxLayout& layout, const char* text, const std::string& url) {
  if (url.empty()) return;
  auto* const link = new LinkButton((*texts_)(text));
  link->setFont(windowFont(kWindowTextSize));
  link->setAccessibleDescription(QString::fromStdString(url));
  connect(link, &QAbstractButton::clicked, this, [this, url] {
    const QUrl address(QString::fromStdString(url));
    if (!services_.openLink(address)) showFailure((*texts_)("LinkFailed", {url}));
  });
  layout.addWidget(link);
}

void AddPage::makeBottom(QVBoxLayout& layout) {
  auto* const bottom = new QVBoxLayout;
  // The buttons' bodies are in line with the other parts.
  constexpr int kSide = kWindowMargin - kButtonRing;
  bottom->setContentsMargins(kSide, 0, kSide, 0);
  bottom->setSpacing(kWindowGap);
  for (QWidget* const part : {static_cast<QWidget*>(note_), static_cast<QWidget*>(line_)})
    part->setContentsMargins(kButtonRing, 0, kButtonRing, 0);
  bottom->addWidget(note_);
  bottom->addWidget(line_);
  auto* const buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(cancel_);
  buttons->addWidget(add_);
  bottom->addSpacing(kWindowGap);
  bottom->addLayout(buttons);
  layout.addLayout(bottom);
  note_->setObjectName(QStringLiteral("note"));
  connect(add_, &QAbstractButton::clicked, this, [this] { start(); });
  connect(cancel_, &QAbstractButton::clicked, this, [this] {
    cancel();
    showRunning(false);
    note_->hide();
    add_->setFocus(Qt::OtherFocusReason);
  });
}

// ---- Adding ----

Outcome<FeedProposal> AddPage::proposal() const {
  if (form_) return form_->proposal();
  const auto known = services_.feeds();
  if (!known) return known.error();
  return proposalOf(*hit_, key_ ? key_->text().trimmed().toStdString() : std::string(), *known);
}

void AddPage::start() {
  if (adding_) return;
  if (key_ && key_->text().trimmed().isEmpty()) {
    key_->setFocus(Qt::OtherFocusReason);
    return showFailure((*texts_)("KeyMissing"));
  }
  auto wanted = proposal();
  if (!wanted)
    return showFailure(form_ ? form_->inWords(wanted.error())
                             : QString::fromStdString(texts_->reason(wanted.error())));
  showRunning(true);
  cancel_->setFocus(Qt::OtherFocusReason);
  // The adding calls this on its own threads, and no more once it has been cancelled.
  adding_ = services_.startAdding(*std::move(wanted), [this] {
    QMetaObject::invokeMethod(
        this, [this] { progressDidChange(); }, Qt::QueuedConnection);
  });
  progressDidChange();
}

void AddPage::cancel() {
  if (!adding_) return;
  adding_->cancel();
  services_.discard(std::exchange(adding_, nullptr));
}

void AddPage::progressDidChange() {
  if (!adding_) return;
  const AddingProgress progress = adding_->progress();
  if (progress.result) return end(*progress.result);
  note_->setText(inWords(progress));
  const bool isShareKnown = progress.totalBytes && *progress.totalBytes > 0;
  line_->setShare(isShareKnown ? std::optional(double(progress.bytes) / double(*progress.totalBytes))
                               : std::nullopt);
}

void AddPage::end(const Outcome<FeedFindings>& result) {
  services_.discard(std::exchange(adding_, nullptr));
  showRunning(false);
  if (result) return added_(*result);
  const bool isTaken = form_ && failureCodeOf(result.error()) == FailureCode::alreadyExists;
  showFailure(isTaken ? (*texts_)("FeedNameTaken", {form_->name()})
                      : QString::fromStdString(texts_->reason(result.error())));
  add_->setText((*texts_)("TryAgain"));
  add_->updateGeometry();
  (key_ ? static_cast<QWidget*>(key_) : add_)->setFocus(Qt::OtherFocusReason);
}

QString AddPage::inWords(const AddingProgress& progress) const {
  using Step = AddingProgress::Step;
  if (progress.lineCount) return (*texts_)("LinesFound", {std::uint64_t{*progress.lineCount}});
  if (progress.step == Step::readingTimetable || progress.step == Step::saving)
    return (*texts_)("ReadingTimetable");
  QString step = (*texts_)(progress.step == Step::fetchingAlerts ? "FetchingAlerts" : "FetchingTimetable");
  if (progress.bytes == 0) return step;
  const std::string come = texts_->dataSize(progress.bytes).toStdString();
  if (!progress.totalBytes) return (*texts_)("BytesCome", {step.toStdString(), come});
  return (*texts_)("BytesComeOf",
                   {step.toStdString(), come, texts_->dataSize(*progress.totalBytes).toStdString()});
}

void AddPage::showRunning(bool isRunning) {
  // Labels keep their colour.
  for (auto* const entry : entries_->findChildren<QWidget*>()) {
    if (!qobject_cast<QLabel*>(entry)) entry->setEnabled(!isRunning);
  }
  add_->setVisible(!isRunning);
  cancel_->setVisible(isRunning);
  line_->setVisible(isRunning);
  note_->setVisible(isRunning);
  if (isRunning) note_->setForegroundRole(kFaintRole);
}

void AddPage::showFailure(const QString& text) {
  note_->setForegroundRole(kAlarmRole);
  note_->setText(text);
  note_->show();
}

}  // namespace linewatch::desktop
