#pragma once

#include <memory>

#include "ui/label.h"

namespace linewatch {

/// The line spacing in points of the paragraph style at the first character; 0 without text or style.
double _rova_lineSpacing(const ui::Label& label);
/// Gives the whole text the paragraph style of its first character with another line spacing. An empty label
/// is left as it is.
void _rova_setLineSpacing(ui::Label& label, double lineSpacing);

/// A new label of any number of lines, laid out by constraints.
std::shared_ptr<ui::Label> multiLineLabelWithFont(const ui::Font& font);

}  // namespace linewatch
