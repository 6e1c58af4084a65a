// Where the main frame stands, from one run to the next.
#pragma once

#include <QList>
#include <QRect>
#include <QWidget>

#include "app/app_settings.h"

namespace chanplan {

/// Gives `frame` its stored place, size and window state. It is not shown yet.
void RestorePlacement(QWidget& frame, AppSettings& settings);

/// Stores them, unless `frame` is minimised.
void SavePlacement(const QWidget& frame, AppSettings& settings);

/// `placement`, unless none of `screens` shows its upper edge: moved and cut to the first then.
QRect BroughtIntoView(QRect placement, const QList<QRect>& screens);

}  // namespace chanplan
