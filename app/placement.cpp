#include "app/placement.h"

#include <QGuiApplication>
#include <QScreen>
#include <QStyle>
#include <algorithm>
#include <array>

#include "editor/twips.h"

namespace chanplan {
namespace {

// Indexed by the stored window state.
constexpr std::array<Qt::WindowState, 3> WindowStates = {Qt::WindowNoState, Qt::WindowMinimized, Qt::WindowMaximized};

}  // namespace

void RestorePlacement(QWidget& frame, AppSettings& settings) {
  const QSize screen = QGuiApplication::primaryScreen()->size();
  const double screenWidth = PixelsToTwipsX(screen.width(), frame);
  const double screenHeight = PixelsToTwipsY(screen.height(), frame);
  const QRect stored(TwipsToPixelsX(settings.Number(MainLeftSetting, screenWidth / 20), frame),
                     TwipsToPixelsY(settings.Number(MainTopSetting, screenHeight / 20), frame),
                     TwipsToPixelsX(settings.Number(MainWidthSetting, screenWidth * 0.6), frame),
                     TwipsToPixelsY(settings.Number(MainHeightSetting, screenHeight * 0.6), frame));
  QList<QRect> screens;
  // The title bar and the borders, which nobody knows before they are on the screen, need room, too.
  const int border = frame.style()->pixelMetric(QStyle::PM_MdiSubWindowFrameWidth);
  const QMargins decoration(0, 0, 2 * border, border + frame.style()->pixelMetric(QStyle::PM_TitleBarHeight));
  for (const QScreen* shown : QGuiApplication::screens()) screens += shown->availableGeometry() - decoration;
  const QRect placement = FittedToScreen(stored, screens);
  frame.move(placement.topLeft());
  frame.resize(placement.size());
  frame.setWindowState(WindowStates.at(static_cast<std::size_t>(settings.Number(MainStateSetting, 0))));
}

void SavePlacement(const QWidget& frame, AppSettings& settings) {
  if (frame.isMinimized()) return;
  settings.SetNumber(MainLeftSetting, PixelsToTwipsX(frame.x(), frame));
  settings.SetNumber(MainTopSetting, PixelsToTwipsY(frame.y(), frame));
  settings.SetNumber(MainWidthSetting, PixelsToTwipsX(frame.width(), frame));
  settings.SetNumber(MainHeightSetting, PixelsToTwipsY(frame.height(), frame));
  settings.SetNumber(MainStateSetting, frame.isMaximized() ? 2 : 0);
}

QRect FittedToScreen(QRect placement, const QList<QRect>& screens) {
  const auto shownArea = [&placement](const QRect& screen) {
    const QSize shown = screen.intersected(placement).size();
    return static_cast<qint64>(shown.width()) * shown.height();
  };
  const QRect home = *std::ranges::max_element(screens, {}, shownArea);  // the first when none shows any of it
  placement.setSize(placement.size().boundedTo(home.size()));
  placement.moveLeft(qBound(home.left(), placement.left(), home.right() + 1 - placement.width()));
  placement.moveTop(qBound(home.top(), placement.top(), home.bottom() + 1 - placement.height()));
  return placement;
}

}  // namespace chanplan
