#include "editor/chart_panel.h"

#include <QFontInfo>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMdiArea>
#include <QPainter>
#include <QScrollBar>
#include <QTextDocument>
#include <QToolTip>
#include <algorithm>
#include <cmath>

#include "editor/item_colours.h"
#include "report/chart_colours.h"

namespace chanplan {
namespace {

constexpr int PanelMargin = 2;      // pixels; all others are lengths of the chart
constexpr double LeastWidth = 300;  // of a panel beside the grids
constexpr double UsualWidth = 480;
constexpr double LeastDrawn = 240;  // what is narrower is cut
constexpr double Edge = 16;
constexpr double LineHeight = 16;
constexpr int MostSharingLines = 6;
constexpr int MostLinesSpoken = 10;
constexpr double HeadWithoutLanes = 32;

QFont FontOf(const QWidget& widget, double size, bool bold = false) {
  QFont font = widget.font();
  font.setPixelSize(qRound(size));
  font.setBold(bold);
  return font;
}

QString TextFrom(const std::string& utf8) { return QString::fromStdString(utf8); }
QColor ColourFrom(std::string_view name) { return {QLatin1String(name.data(), static_cast<qsizetype>(name.size()))}; }

// Ground and letters are the desktop's own, marks those of the scheme that goes with them.
struct Colours {
  explicit Colours(const QPalette& palette)
      : Base(palette.color(QPalette::Base)),
        Text(palette.color(QPalette::Text)),
        Marks(Base.lightness() < 128 ? DarkColours : LightColours) {}

  QColor Base;
  QColor Text;
  const ChartColours& Marks;

  QBrush Hatch() const {
    constexpr double period = 5 * 0.7071;  // across, of lines 2 wide
    QLinearGradient lines(0, 0, period, period);
    lines.setSpread(QGradient::RepeatSpread);
    for (const auto& [place, colour] : {std::pair(0.0, Marks.Downlink), std::pair(0.4, Marks.Downlink),
                                        std::pair(0.41, Marks.DownlinkGround), std::pair(1.0, Marks.DownlinkGround)})
      lines.setColorAt(place, ColourFrom(colour));
    return lines;
  }
};

struct Look {
  QPen Edge = Qt::NoPen;
  QBrush Fill = Qt::NoBrush;
};

Look LookOf(ChartKind kind, const Colours& colours) {
  switch (kind) {
    case ChartKind::Odd:
      return {Qt::NoPen, Mixed(colours.Text, colours.Base, 5)};
    case ChartKind::Uplink:
      return {QPen(ColourFrom(colours.Marks.UplinkEdge), 0.5), ColourFrom(colours.Marks.Uplink)};
    case ChartKind::Downlink:
      return {QPen(ColourFrom(colours.Marks.Downlink), 1), colours.Hatch()};
    case ChartKind::Own:
      return {QPen(ColourFrom(colours.Marks.Own), 1), Qt::NoBrush};
    case ChartKind::Shared:
      return {Qt::NoPen, ColourFrom(colours.Marks.Shared)};
    case ChartKind::Grid:
      return {QPen(Mixed(colours.Text, colours.Base, 18), 1), Qt::NoBrush};
    default:
      return {Qt::NoPen, colours.Base};
  }
}

void DrawText(QPainter& painter, const ChartItem& item, const QWidget& widget, const Colours& colours, bool bold) {
  const bool isSmall = item.Kind == ChartKind::Note || item.Kind == ChartKind::Tick;
  const QFont font = FontOf(widget, isSmall ? ChartSmallFontSize : ChartFontSize, bold);
  const QString text = TextFrom(item.Text);
  const double before = item.Kind == ChartKind::Tick ? QFontMetricsF(font).horizontalAdvance(text) / 2 : 0;
  painter.setFont(font);
  painter.setPen(isSmall ? Mixed(colours.Text, colours.Base, 70) : colours.Text);
  painter.drawText(QPointF(item.X - before, item.Y), text);
}

void DrawItems(QPainter& painter, const std::vector<ChartItem>& items, const QWidget& widget, bool bold = false) {
  const Colours colours(widget.palette());
  for (const ChartItem& item : items) {
    if (item.Kind >= ChartKind::Caption) {
      DrawText(painter, item, widget, colours, bold);
      continue;
    }
    const Look look = LookOf(item.Kind, colours);
    painter.setPen(look.Edge);
    painter.setBrush(look.Fill);
    if (item.Kind == ChartKind::Grid)
      painter.drawLine(QPointF(item.X, item.Y), QPointF(item.X, item.Y + item.Height));
    else
      painter.drawRect(QRectF(item.X, item.Y, item.Width, item.Height));
  }
}

}  // namespace

ChartPanel::ChartPanel(const SignalStandardTable& shownTable, QWidget* area)
    : QAbstractScrollArea(area), table(shownTable) {
  setObjectName("ChartPanel");
  hide();
  setFocusPolicy(Qt::StrongFocus);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  refresh.setSingleShot(true);
  refresh.setInterval(0);
  connect(&refresh, &QTimer::timeout, this, &ChartPanel::Refresh);
}

double ChartPanel::Scale() const { return QFontInfo(font()).pixelSize() / ChartFontSize; }

int ChartPanel::Pixels(double length) const { return qRound(length * Scale()); }

double ChartPanel::HeadHeight() const { return chart.Blocks.empty() ? HeadWithoutLanes : chart.Blocks.front().Top; }

// A quarter of the panel at most, and none where that leaves little of the lanes.
int ChartPanel::SharingLines() const {
  const int lines = static_cast<int>((Height() / 4 - LineHeight / 2) / LineHeight);
  return lines < 1 ? 0 : qMin(lines, MostSharingLines);
}

double ChartPanel::SharingHeight() const { return SharingLines() == 0 ? 0 : (SharingLines() + 0.5) * LineHeight; }

double ChartPanel::Scrolled() const { return verticalScrollBar()->value() / Scale(); }

const Lane* ChartPanel::CurrentLane() const {
  const auto row = static_cast<std::size_t>(current);
  return current >= 0 && row < lanes.size() ? &lanes[row] : nullptr;
}

// Names are measured as they are when they are emphasised.
ChartShape ChartPanel::Shape() const {
  const double width = qMax(Width(), LeastDrawn);
  ChartShape shape;
  shape.Width = width;
  shape.RoomForALabel = std::clamp(width / 4, 60.0, shape.RoomForALabel);
  shape.HasCaption = false;
  shape.MostLanesInABlock = MaxRecords;
  shape.WidthOf = [metrics = QFontMetricsF(FontOf(*this, ChartFontSize, true))](std::u32string_view text, double size) {
    const QString letters = QString::fromUcs4(text.data(), static_cast<qsizetype>(text.size()));
    return metrics.horizontalAdvance(letters) * size / ChartFontSize;
  };
  return shape;
}

void ChartPanel::Refresh() {
  refresh.stop();
  if (!isVisible()) return;
  lanes = PlanLanes(table);
  chart = LayOutChart(table, lanes, Shape());
  QScrollBar& bar = *verticalScrollBar();
  bar.setPageStep(Pixels(LanesHeight()));
  bar.setSingleStep(Pixels(ChartLaneHeight));
  bar.setRange(0, qMax(0, Pixels(static_cast<double>(lanes.size()) * ChartLaneHeight - LanesHeight())));
  Describe();
  if (currentMoved) KeepCurrentInSight();
  viewport()->update();
}

void ChartPanel::ShowCurrent(int row) {
  if (row == current) return;
  current = row;
  currentMoved = true;
  refresh.start();
}

void ChartPanel::KeepCurrentInSight() {
  currentMoved = false;
  if (CurrentLane() == nullptr) return;
  QScrollBar& bar = *verticalScrollBar();
  const double top = current * ChartLaneHeight;
  if (top < Scrolled()) bar.setValue(Pixels(top));
  if (top + ChartLaneHeight > Scrolled() + LanesHeight()) bar.setValue(Pixels(top + ChartLaneHeight - LanesHeight()));
}

QStringList ChartPanel::SharedLines(int most) const {
  const Lane* lane = CurrentLane();
  if (lane == nullptr) return {};
  const int others = static_cast<int>(lane->SharesWith.size());
  const int told = others <= most ? others : qMax(0, most - 1);
  QStringList lines;
  for (const Lane& other : lanes) {
    if (lines.size() == told) break;
    if (!std::ranges::binary_search(lane->SharesWith, other.Standard)) continue;
    QStringList ranges;
    for (const FrequencyRange& range : SharedRanges(*lane, other)) ranges += TextFrom(RangeText(range));
    lines += TextFrom(NameText(table, other.Standard)) + ": " + ranges.join(", ");
  }
  if (told < others && told > 0) lines += QString("and %1 more").arg(others - told);
  return lines;
}

void ChartPanel::Describe() {
  const Lane* lane = CurrentLane();
  setAccessibleName(lane == nullptr ? QString("Chart of the bands")
                                    : QString("Chart of the bands, %1, %2 of %3")
                                          .arg(TextFrom(NameText(table, lane->Standard)))
                                          .arg(current + 1)
                                          .arg(lanes.size()));
  if (lane == nullptr) return setAccessibleDescription("There are no standards.");
  const QString words = TextFrom(chart.Blocks.front().Lanes[static_cast<std::size_t>(current)].Words);
  const QStringList shared = SharedLines(MostLinesSpoken);
  setAccessibleDescription(shared.empty() ? words + "; shares no frequencies"
                                          : words + ". Shared with " + shared.join("; "));
}

QSize ChartPanel::TakePlace(const QSize& area, const QSize& least, const QSize& natural) {
  const int beside = qMax(area.width() - natural.width(), qMin(Pixels(UsualWidth), area.width() - least.width()));
  if (beside >= Pixels(LeastWidth)) {
    setGeometry(area.width() - beside, PanelMargin, beside - PanelMargin, area.height() - 2 * PanelMargin);
    return {area.width() - beside, area.height()};
  }
  const int below = qMax(area.height() - natural.height(), area.height() / 2);
  setGeometry(PanelMargin, area.height() - below, area.width() - 2 * PanelMargin, below - PanelMargin);
  return {area.width(), area.height() - below};
}

void ChartPanel::WidenWindow(QMdiSubWindow& window) {
  if (widenedBy > 0 || window.mdiArea() == nullptr || window.isMaximized() || window.isMinimized()) return;
  const int room = window.mdiArea()->viewport()->width();
  const int width = qMax(window.width(), qMin(window.width() + Pixels(UsualWidth), room));
  widenedBy = width - window.width();
  widenedTo = width;
  window.setGeometry(qMin(window.x(), qMax(0, room - width)), window.y(), width, window.height());
}

void ChartPanel::NarrowWindow(QMdiSubWindow& window) {
  if (!window.isMaximized() && !window.isMinimized() && window.width() == widenedTo)
    window.resize(window.width() - widenedBy, window.height());
  widenedBy = 0;
}

int ChartPanel::RowAt(const QPoint& place) const {
  const double y = place.y() / Scale() - HeadHeight();
  if (y < 0 || y >= LanesHeight()) return -1;
  const int row = static_cast<int>((y + Scrolled()) / ChartLaneHeight);
  return row < static_cast<int>(lanes.size()) ? row : -1;
}

QString ChartPanel::ToolTipAt(const QPoint& place) const {
  const int row = RowAt(place);
  if (row < 0) return place.y() / Scale() < Height() - SharingHeight() ? QString() : SharedLines(30).join('\n');
  const ChartLane& lane = chart.Blocks.front().Lanes[static_cast<std::size_t>(row)];
  const QPointF point(place.x() / Scale(), place.y() / Scale() + Scrolled());
  constexpr double slack = 1.5;  // thin marks are hard to meet
  for (const ChartItem& item : lane.Items)
    if (item.Kind < ChartKind::Caption &&
        QRectF(item.X, item.Y, item.Width, item.Height).adjusted(-slack, -slack, slack, slack).contains(point))
      return TextFrom(item.Text);
  return TextFrom(lane.Words);
}

void ChartPanel::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(viewport());
  painter.setRenderHint(QPainter::Antialiasing);
  painter.scale(Scale(), Scale());
  painter.fillRect(QRectF(0, 0, Width() + 1, Height() + 1), palette().base());
  DrawItems(painter, chart.Head, *this);
  if (!chart.Blocks.empty()) {
    DrawItems(painter, chart.Blocks.front().Axis, *this);
    DrawLanes(painter);
  }
  DrawSharing(painter);
  painter.end();
  ShowFocusAround(*this);
}

// The current one stands out by its ground, the bar at its edge and its letters.
void ChartPanel::DrawLanes(QPainter& painter) const {
  const ChartBlock& block = chart.Blocks.front();
  painter.save();
  painter.setClipRect(QRectF(0, HeadHeight(), Width() + 1, LanesHeight()));
  painter.translate(0, -Scrolled());
  DrawItems(painter, block.Ground, *this);
  for (std::size_t row = 0; row < block.Lanes.size(); ++row) {
    const ChartLane& lane = block.Lanes[row];
    const double top = lane.Top - Scrolled() - HeadHeight();
    if (top + ChartLaneHeight < 0 || top > LanesHeight()) continue;
    const bool isCurrent = current == static_cast<int>(row);
    if (isCurrent) {
      QColor ground = palette().color(QPalette::Highlight);
      const double bar = 5;
      painter.fillRect(QRectF(0, lane.Top, bar, ChartLaneHeight), ground);
      ground.setAlphaF(0.22F);
      painter.fillRect(QRectF(bar, lane.Top, Width(), ChartLaneHeight), ground);
    }
    DrawItems(painter, lane.Items, *this, isCurrent);
  }
  painter.restore();
}

void ChartPanel::DrawSharing(QPainter& painter) const {
  const int lines = SharingLines();
  if (lines == 0) return;
  const Colours colours(palette());
  double y = Height() - SharingHeight();
  painter.setPen(LookOf(ChartKind::Grid, colours).Edge);
  painter.drawLine(QPointF(0, y), QPointF(Width(), y));
  painter.setPen(colours.Text);
  const auto draw = [&](const QString& text, bool bold) {
    y += LineHeight;
    const QFont font = FontOf(*this, ChartFontSize, bold);
    painter.setFont(font);
    painter.drawText(QPointF(Edge, y - LineHeight / 8),
                     QFontMetricsF(font).elidedText(text, Qt::ElideRight, Width() - 2 * Edge));
  };
  const Lane* lane = CurrentLane();
  if (lane == nullptr) return draw("There are no standards.", false);
  const auto others = static_cast<qsizetype>(lane->SharesWith.size());
  const QString sharing =
      others == 0 ? "no frequencies" : QString("with %1 standard").arg(others) + (others > 1 ? "s" : "");
  draw(TextFrom(NameText(table, lane->Standard)) + " shares " + sharing, true);
  for (const QString& line : SharedLines(lines - 1)) draw(line, false);
}

bool ChartPanel::viewportEvent(QEvent* event) {
  if (event->type() != QEvent::ToolTip) return QAbstractScrollArea::viewportEvent(event);
  const auto& help = *static_cast<QHelpEvent*>(event);
  const QString text = ToolTipAt(help.pos());
  QToolTip::showText(help.globalPos(), text.isEmpty() ? text : Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal),
                     viewport());
  return true;
}

void ChartPanel::mousePressEvent(QMouseEvent* event) {
  const int row = RowAt(event->pos());
  if (event->button() == Qt::LeftButton && row >= 0) emit StandardChosen(row);
}

void ChartPanel::keyPressEvent(QKeyEvent* event) {
  const int last = static_cast<int>(lanes.size()) - 1;
  const int page = qMax(1, static_cast<int>(LanesHeight() / ChartLaneHeight));
  int row = current;
  switch (event->key()) {
    case Qt::Key_Up:
      row -= 1;
      break;
    case Qt::Key_Down:
      row += 1;
      break;
    case Qt::Key_PageUp:
      row -= page;
      break;
    case Qt::Key_PageDown:
      row += page;
      break;
    case Qt::Key_Home:
      row = 0;
      break;
    case Qt::Key_End:
      row = last;
      break;
    default:
      return event->ignore();
  }
  if (last >= 0) emit StandardChosen(qBound(0, row, last));
}

bool ChartPanel::focusNextPrevChild(bool next) {
  emit Tabbed(next);
  return true;
}

void ChartPanel::focusInEvent(QFocusEvent* event) {
  QAbstractScrollArea::focusInEvent(event);
  viewport()->update();
  emit FocusGained();
}

void ChartPanel::focusOutEvent(QFocusEvent* event) {
  QAbstractScrollArea::focusOutEvent(event);
  viewport()->update();
}

void ChartPanel::changeEvent(QEvent* event) {
  QAbstractScrollArea::changeEvent(event);
  if (event->type() == QEvent::FontChange || event->type() == QEvent::PaletteChange) refresh.start();
}

void ChartPanel::resizeEvent(QResizeEvent* event) {
  QAbstractScrollArea::resizeEvent(event);
  currentMoved = true;
  Refresh();
}

void ChartPanel::showEvent(QShowEvent* event) {
  QAbstractScrollArea::showEvent(event);
  Refresh();
}

}  // namespace chanplan
