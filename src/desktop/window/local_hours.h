#pragma once

#include <QLocale>
#include <QString>

#include "desktop/window/window_texts.h"
#include "notices/weekly_hours.h"
#include "shared/error.h"
#include "shared/outcome.h"

namespace linewatch::desktop {

/// The hours as a rider reads and types them in a window: with the weekdays of the language and dashes, e.g.
/// "Mo–Fr 7–9, 17–19". In English they have their stored form, "weekdays 7 to 9, 17 to 19".
QString localHours(const notices::WeeklyHours& hours, const QLocale& locale);

/// The hours that a rider has typed, in either form. Weekdays may be long or short, and digits those of the
/// language. The error is in English.
Outcome<notices::WeeklyHours> parsedLocalHours(const QString& text, const QLocale& locale);

/// Why hours cannot be understood, in the user's language. `error`: from `parsedLocalHours`.
QString wrongHoursText(const Error& error, const WindowTexts& texts);

/// Commuters' hours, for a field to begin with and as an example.
QString usualLocalHours(const QLocale& locale);

}  // namespace linewatch::desktop
