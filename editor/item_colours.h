// Colours of lists and grids that follow from those of the desktop.
#pragma once

#include <QAbstractScrollArea>
#include <QPainter>
#include <QStyleOptionViewItem>

namespace chanplan {

/// `percent` of `color`, the rest of `other`.
inline QColor Mixed(const QColor& color, const QColor& other, int percent) {
  const auto mixed = [percent](int one, int two) { return (one * percent + two * (100 - percent)) / 100; };
  return {mixed(color.red(), other.red()), mixed(color.green(), other.green()), mixed(color.blue(), other.blue())};
}

/// Mutes the colours of a selected item, unless `view` has the focus: which control has it shows there.
inline void MuteSelection(QStyleOptionViewItem& item, const QWidget& view) {
  if (view.hasFocus()) return;
  constexpr int strength = 25;  // percent of the selection's colour
  item.palette.setColor(QPalette::Highlight,
                        Mixed(item.palette.color(QPalette::Highlight), item.palette.color(QPalette::Base), strength));
  item.palette.setColor(QPalette::HighlightedText, item.palette.color(QPalette::Text));
}

/// For where no item is current: `view` itself shows that it has the focus.
inline void ShowFocusAround(const QAbstractScrollArea& view) {
  if (!view.hasFocus()) return;
  QPainter painter(view.viewport());
  painter.setPen(QPen(view.palette().color(QPalette::Highlight), 2));
  painter.drawRect(view.viewport()->rect().adjusted(1, 1, -1, -1));
}

/// Grid lines take the window's colour, a little darker: on a dark desktop that is the cells' own.
inline void ShowGridLines(QStyleOptionViewItem& item) {
  constexpr int strength = 18;  // percent of the text's colour
  item.palette.setColor(QPalette::Window,
                        Mixed(item.palette.color(QPalette::Text), item.palette.color(QPalette::Base), strength));
}

}  // namespace chanplan
