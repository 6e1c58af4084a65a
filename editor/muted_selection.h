// Which control has the focus shows in the colour of its selection.
#pragma once

#include <QStyleOptionViewItem>
#include <QWidget>

namespace chanplan {

/// Mutes the colours of a selected item, unless `view` has the focus.
inline void MuteSelection(QStyleOptionViewItem& item, const QWidget& view) {
  if (view.hasFocus()) return;
  constexpr int strength = 25;  // percent of the selection's colour
  const QColor selected = item.palette.color(QPalette::Highlight);
  const QColor base = item.palette.color(QPalette::Base);
  const auto mixed = [](int one, int other) { return (one * strength + other * (100 - strength)) / 100; };
  item.palette.setColor(QPalette::Highlight,
                        QColor(mixed(selected.red(), base.red()), mixed(selected.green(), base.green()),
                               mixed(selected.blue(), base.blue())));
  item.palette.setColor(QPalette::HighlightedText, item.palette.color(QPalette::Text));
}

}  // namespace chanplan
