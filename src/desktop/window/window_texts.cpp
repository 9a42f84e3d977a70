#include "desktop/window/window_texts.h"

#include <QDateTime>
#include <cmath>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include <unicode/datefmt.h>
#include <unicode/locid.h>
#include <unicode/timezone.h>

#include "localization/failure_words.h"
#include "shared/failure.h"

namespace linewatch::desktop {

namespace {

constexpr std::string_view kPrefix = "LineWatch_Window_";

/// Isolates the text, so that its direction does not affect the text around it.
std::string isolated(const std::string& text) { return "\u2068" + text + "\u2069"; }

QDateTime localTime(Date date) {
  return QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(std::floor(secondsOf(date) * 1000)));
}

/// The time in the order and the words of the locale. `skeleton`: ICU's letters for its fields.
QString shortTime(const QDateTime& time, const char* skeleton, const QLocale& locale) {
  UErrorCode status = U_ZERO_ERROR;
  const std::unique_ptr<icu::DateFormat> format(icu::DateFormat::createInstanceForSkeleton(
      skeleton, icu::Locale::forLanguageTag(locale.bcp47Name().toStdString(), status), status));
  if (U_FAILURE(status)) return locale.toString(time, QLocale::ShortFormat);
  // The local time is given as one of GMT, because ICU may not know the machine's time zone.
  format->setTimeZone(*icu::TimeZone::getGMT());
  const QDateTime sameInGMT(time.date(), time.time(), Qt::UTC);
  icu::UnicodeString text;
  format->format(static_cast<UDate>(sameInGMT.toMSecsSinceEpoch()), text);
  // QLocale writes times with plain spaces, and the two stand side by side in a period.
  return QString(reinterpret_cast<const QChar*>(text.getBuffer()), text.length()).replace(u'\u202F', u' ');
}

}  // namespace

WindowTexts::WindowTexts(const UserLocale& locale)
    : localization_(std::make_unique<IcuLocalization>(locale)),
      locale_(QString::fromStdString(localization_->formatLocale())),
      isRightToLeft_(locale.isRightToLeft()) {}

QString WindowTexts::operator()(std::string_view name,
                                std::initializer_list<FormatArgument> arguments) const {
  const std::string text =
      localization_->windowString(std::string(kPrefix).append(name), kLocalizedStringNotFound);
  if (arguments.size() == 0) return QString::fromStdString(text);
  std::vector<FormatArgument> given(arguments);
  if (!isRightToLeft_) return QString::fromStdString(localization_->format(text, given));
  for (FormatArgument& argument : given) {
    if (auto* const words = std::get_if<std::string>(&argument)) *words = isolated(*words);
  }
  return QString::fromStdString(isolated(localization_->format(text, given)));
}

std::string WindowTexts::joined(std::span<const std::string_view> names) const {
  return localization_->joinCommaDelimited(names);
}

QString WindowTexts::withCommas(const std::vector<std::string>& names) const {
  QString all;
  for (const std::string& name : names)
    all = all.isEmpty() ? QString::fromStdString(name) : (*this)("WithComma", {all.toStdString(), name});
  // Otherwise the direction would be that of the first name.
  return isRightToLeft_ && !all.isEmpty() ? QStringLiteral("\u200F") + all : all;
}

std::string WindowTexts::reason(const Error& error) const {
  return failureInWords(failureCodeOf(error), sentenceOf(error), *localization_);
}

QString WindowTexts::dateAndTime(Date date, Date now, QLocale::FormatType format) const {
  const QDateTime time = localTime(date);
  if (time.date() == localTime(now).date()) return locale_.toString(time.time(), QLocale::ShortFormat);
  return locale_.toString(time, format);
}

QString WindowTexts::shortDateAndTime(Date date, Date now) const {
  const QDateTime time = localTime(date);
  const QDate today = localTime(now).date();
  if (time.date() == today) return locale_.toString(time.time(), QLocale::ShortFormat);
  return shortTime(time, time.date().year() == today.year() ? "EEEMMMdjm" : "yMMMdjm", locale_);
}

QString WindowTexts::period(std::optional<Date> start, std::optional<Date> end, Date now) const {
  const auto& texts = *this;
  if (!start && !end) return texts("UntilFurtherNotice");
  if (!end) return texts("From", {shortDateAndTime(*start, now).toStdString()});
  if (!start) return texts("Until", {shortDateAndTime(*end, now).toStdString()});
  // The end is without a date only if it is on the day of the start. After another date, a time alone would
  // seem to be on that date.
  return texts("Period",
               {shortDateAndTime(*start, now).toStdString(), shortDateAndTime(*end, *start).toStdString()});
}

QString WindowTexts::dataSize(std::uint64_t bytes) const {
  return locale_.formattedDataSize(static_cast<qint64>(bytes), 1, QLocale::DataSizeSIFormat);
}

FeedTexts WindowTexts::feedTexts() const {
  return FeedTexts::lookedUp([this](std::string_view key, std::string_view english) {
    return localization_->feedString(key, english);
  });
}

}  // namespace linewatch::desktop
