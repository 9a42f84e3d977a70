#include "ui/font.h"

#include "platform/platform.h"
#include "ui/interface_settings.h"

namespace linewatch::ui {

Font Font::preferred(TextStyle style, FontTraits traits) {
  return Font(style, traits, platform().interfaceSettings().textSizeCategory());
}

}  // namespace linewatch::ui
