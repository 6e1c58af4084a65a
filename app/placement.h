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

/// `placement`, moved and cut to the one of `screens` that shows most of it; to the first when none does.
QRect FittedToScreen(QRect placement, const QList<QRect>& screens);

}  // namespace chanplan
