#pragma once

#include <memory>

#include "ui/label.h"

namespace linewatch {

/// Points between the label's lines, as the paragraph style at its first character says; 0 without text or
/// style.
double _rova_lineSpacing(const ui::Label& label);
/// Gives the whole text the style at its first character with another line spacing. An empty label cannot
/// carry one and stays as it is.
void _rova_setLineSpacing(ui::Label& label, double lineSpacing);

/// A new label of any number of lines, laid out by constraints.
std::shared_ptr<ui::Label> multiLineLabelWithFont(const ui::Font& font);

}  // namespace linewatch
