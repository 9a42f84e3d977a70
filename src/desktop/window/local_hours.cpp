#include "desktop/window/local_hours.h"

#include <QRegularExpression>
#include <QStringList>
#include <algorithm>
#include <array>
#include <cstddef>
#include <functional>
#include <utility>
#include <vector>

#include "shared/failure.h"

namespace linewatch::desktop {

namespace {

/// The weekdays of the stored form, from Monday on.
constexpr std::array kStoredDays = {"mon", "tue", "wed", "thu", "fri", "sat", "sun"};

/// `day`: 1 for Monday to 7 for Sunday. Without the period of an abbreviation.
QString shortDay(const QLocale& locale, int day) {
  QString name = locale.standaloneDayName(day, QLocale::ShortFormat);
  if (name.endsWith(QLatin1Char('.'))) name.chop(1);
  return name;
}

/// The word of the stored form in the language.
QString localDays(const QString& word, const QLocale& locale) {
  const auto span = [&locale](int first, int last) {
    return shortDay(locale, first) + QStringLiteral("–") + shortDay(locale, last);
  };
  if (word == QLatin1String("daily")) return span(1, 7);
  if (word == QLatin1String("weekdays")) return span(1, 5);
  if (word == QLatin1String("weekends"))
    return shortDay(locale, 6) + QStringLiteral(", ") + shortDay(locale, 7);
  const auto* const day = std::ranges::find(kStoredDays, word);
  return day == kStoredDays.end() ? word : shortDay(locale, static_cast<int>(day - kStoredDays.begin()) + 1);
}

struct DayName {
  QString name;
  QString stored;
};

/// All names of the weekdays in the language, in small letters, the longest first.
std::vector<DayName> dayNames(const QLocale& locale) {
  std::vector<DayName> names;
  const auto add = [&](const QString& name, int day) {
    if (!name.isEmpty())
      names.push_back(
          {locale.toLower(name), QLatin1String(kStoredDays.at(static_cast<std::size_t>(day) - 1))});
  };
  for (int day = 1; day <= 7; ++day) {
    for (const auto format : {QLocale::LongFormat, QLocale::ShortFormat}) {
      for (const QString& name : {locale.dayName(day, format), locale.standaloneDayName(day, format)}) {
        add(name, day);
        // "lun." also without its period, "segunda-feira" also without its second word.
        if (name.endsWith(QLatin1Char('.'))) add(name.chopped(1), day);
        if (name.contains(QLatin1Char('-'))) add(name.section(QLatin1Char('-'), 0, 0), day);
      }
    }
  }
  std::ranges::stable_sort(names, std::greater<>(), [](const DayName& day) { return day.name.size(); });
  return names;
}

/// True for scripts that have no spaces between words.
bool isIdeographic(QChar letter) { return letter.unicode() >= 0x2E80; }

/// Small letters, plain digits, and one kind of each sign.
QString simplified(const QString& text, const QLocale& locale) {
  QString plain;
  for (const QChar c : locale.toLower(text)) {
    if (c.digitValue() >= 0) {
      plain += QLatin1Char(static_cast<char>('0' + c.digitValue()));
    } else if (QStringLiteral("–—−‐～〜~").contains(c)) {
      plain += QLatin1Char('-');
    } else if (QStringLiteral("、،，；؛").contains(c)) {
      plain += QLatin1Char(',');
    } else if (c == QChar(0xFF1A)) {
      plain += QLatin1Char(':');
    } else if (c.category() != QChar::Other_Format) {
      plain += c.isSpace() ? QLatin1Char(' ') : c;
    }
  }
  return plain;
}

QString storedForm(const QString& text, const QLocale& locale) {
  QString stored = simplified(text, locale);
  for (const auto& [name, day] : dayNames(locale)) {
    const QString pattern = QRegularExpression::escape(name);
    const bool isWord = !isIdeographic(name.front());
    stored.replace(
        QRegularExpression(
            isWord ? QStringLiteral("(?<![\\p{L}\\p{M}])%1(?![\\p{L}\\p{M}])").arg(pattern) : pattern,
            QRegularExpression::UseUnicodePropertiesOption),
        QStringLiteral(" %1 ").arg(day));
  }
  // "7h30" and "7.30", then "7h" and "7 Uhr".
  stored.replace(QRegularExpression(QStringLiteral("(\\d)\\s*[h.](\\d\\d)(?!\\d)")),
                 QStringLiteral("\\1:\\2"));
  stored.replace(QRegularExpression(QStringLiteral("(\\d)\\s*(?:h|uhr|時|点|시)(?!\\p{L})")),
                 QStringLiteral("\\1"));
  return stored;
}

}  // namespace

QString localHours(const notices::WeeklyHours& hours, const QLocale& locale) {
  QString text = QString::fromStdString(hours.text());
  if (locale.language() == QLocale::English) return text;
  text.replace(QStringLiteral(" to "), QStringLiteral("–"));
  QStringList words = text.split(QLatin1Char(' '));
  for (QString& word : words) {
    const bool hasComma = word.endsWith(QLatin1Char(','));
    word =
        localDays(hasComma ? word.chopped(1) : word, locale) + (hasComma ? QStringLiteral(",") : QString());
  }
  return words.join(QLatin1Char(' '));
}

Outcome<notices::WeeklyHours> parsedLocalHours(const QString& text, const QLocale& locale) {
  auto hours = notices::WeeklyHours::parse(text.toStdString());
  auto local = notices::WeeklyHours::parse(storedForm(text, locale).toStdString());
  return local ? local : hours;
}

/// The English sentence names the wrong word. Other languages have an example instead.
QString wrongHoursText(const Error& error, const WindowTexts& texts) {
  if (texts.localization().isInFallbackLanguage()) return QString::fromStdString(sentenceOf(error));
  return texts("HoursWrong", {usualLocalHours(texts.locale()).toStdString()});
}

QString usualLocalHours(const QLocale& locale) {
  return localHours(*notices::WeeklyHours::parse("weekdays 7 to 9, 17 to 19"), locale);
}

}  // namespace linewatch::desktop
