#pragma once

#include "desktop/presence/notification_sender.h"
#include "desktop/window/window_texts.h"
#include "notices/notice.h"

namespace linewatch::desktop {

/// The notice in words: "U4: Fire" with the incident's summary and the line's other incidents below it, "U4:
/// Good Service", or a summary with such a text for each line. Needs an installed platform, for the texts of
/// the widget. Main thread.
Notification notificationOf(const notices::Notice& notice, const WindowTexts& texts);

}  // namespace linewatch::desktop
