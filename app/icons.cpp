#include "app/icons.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <QPixmap>

namespace chanplan {
namespace {

constexpr int GridSize = 24;

// Paths on a grid of 24 by 24: M x y moves, L x y draws a line, O x y r a circle, Z closes.
struct Picture {
  const char* Key;
  const char* Outline;  // in the colour of text
  const char* Accent;   // in the colour of highlights
};

constexpr Picture Pictures[] = {
    {"New", "M 6 3 L 14 3 L 18 7 L 18 21 L 6 21 Z", "M 14 3 L 14 7 L 18 7"},
    {"Open", "M 3 19 L 3 5 L 9 5 L 11 7 L 19 7 L 19 10", "M 3 19 L 6 10 L 22 10 L 19 19 Z"},
    {"Save", "M 4 4 L 17 4 L 20 7 L 20 20 L 4 20 Z M 8 4 L 8 9 L 15 9 L 15 4", "M 7 20 L 7 14 L 17 14 L 17 20"},
    {"Print", "M 7 9 L 7 3 L 17 3 L 17 9 M 7 17 L 3 17 L 3 9 L 21 9 L 21 17 L 17 17",
     "M 7 14 L 17 14 L 17 21 L 7 21 Z"},
    {"Cut", "M 7 3 L 15 16 M 17 3 L 9 16", "O 7 18 3 O 17 18 3"},
    {"Copy", "M 9 8 L 20 8 L 20 21 L 9 21 Z", "M 6 17 L 4 17 L 4 4 L 15 4 L 15 5"},
    {"Paste", "M 8 5 L 5 5 L 5 21 L 19 21 L 19 5 L 16 5 M 8 3 L 16 3 L 16 7 L 8 7 Z", "M 8 12 L 16 12 M 8 16 L 16 16"},
    {"Add", "M 3 5 L 21 5 M 3 11 L 14 11 M 3 17 L 10 17", "M 18 11 L 18 21 M 13 16 L 23 16"},
    {"Upload", "M 13 8 L 21 8 L 21 21 L 13 21 Z M 19 8 L 19 3 M 16 12 L 18 12", "M 2 15 L 10 15 M 7 11 L 10 15 L 7 19"},
    {"Query", "M 13 8 L 21 8 L 21 21 L 13 21 Z M 19 8 L 19 3 M 16 12 L 18 12", "M 10 15 L 2 15 M 5 11 L 2 15 L 5 19"},
    {"Program", "M 4 9 L 11 9 L 11 21 L 4 21 Z M 9 9 L 9 3 M 7 13 L 8 13",
     "M 15 21 L 15 17 M 18 21 L 18 13 M 21 21 L 21 9"},
};

QPainterPath PainterPath(const char* text) {
  const QStringList words = QString(text).split(' ');
  QPainterPath path;
  for (qsizetype word = 0; word < words.size();) {
    const auto number = [&words, word](int offset) { return words[word + offset].toDouble(); };
    switch (words[word].front().toLatin1()) {
      case 'M':
        path.moveTo(number(1), number(2));
        word += 3;
        break;
      case 'L':
        path.lineTo(number(1), number(2));
        word += 3;
        break;
      case 'O':
        path.addEllipse(QPointF(number(1), number(2)), number(3), number(3));
        word += 4;
        break;
      default:
        path.closeSubpath();
        ++word;
    }
  }
  return path;
}

class PictureEngine : public QIconEngine {
 public:
  explicit PictureEngine(const Picture& pictureDrawn) : picture(pictureDrawn) {}

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State /*state*/) override {
    const QPalette palette = QGuiApplication::palette();
    const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    const int side = qMin(rect.width(), rect.height());
    painter->translate(rect.center() + QPointF(0.5, 0.5) - QPointF(side, side) / 2);
    painter->scale(side / double{GridSize}, side / double{GridSize});
    Stroke(*painter, picture.Outline, palette.color(group, QPalette::ButtonText));
    Stroke(*painter, picture.Accent, palette.color(group, QPalette::Highlight));
    painter->restore();
  }

  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    QPixmap drawn(size);
    drawn.fill(Qt::transparent);
    QPainter painter(&drawn);
    paint(&painter, QRect(QPoint(), size), mode, state);
    return drawn;
  }

  QIconEngine* clone() const override { return new PictureEngine(picture); }

 private:
  static void Stroke(QPainter& painter, const char* path, const QColor& colour) {
    painter.strokePath(PainterPath(path), QPen(colour, 2, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
  }

  const Picture& picture;
};

}  // namespace

QIcon DrawnIcon(const QString& key) {
  for (const Picture& picture : Pictures)
    if (key == picture.Key) return QIcon(new PictureEngine(picture));
  return {};
}

}  // namespace chanplan
