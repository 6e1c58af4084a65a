// How wide a text is where nothing can be measured, and what of it there is room for.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace chanplan {

/// In Arial's letters of `fontSize`, in its unit; Helvetica and Liberation Sans are exactly as wide. A letter
/// that Windows-1252 lacks counts as wide as the font is high.
double TextWidth(std::u32string_view text, double fontSize);

/// Whether there is room for a text. Nothing longer fits where a text does not.
using Fits = std::function<bool(std::u32string_view)>;

/// All of `text` where it fits, else as much of its start as there is room for, with "…" behind it.
std::u32string StartThatFits(std::u32string_view text, const Fits& fits);
/// The same with its end, which of a path says more.
std::u32string EndThatFits(std::u32string_view text, const Fits& fits);

}  // namespace chanplan
