#include "editor/caption_style.h"

#include <QApplication>
#include <QPainter>
#include <QPointer>
#include <QProxyStyle>
#include <QStyleOptionTitleBar>

#include "editor/document_window.h"

namespace chanplan {
namespace {

class CaptionStyle : public QProxyStyle {
 public:
  void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option, QPainter* painter,
                          const QWidget* widget) const override {
    const auto* bar = qstyleoption_cast<const QStyleOptionTitleBar*>(option);
    if (control != CC_TitleBar || bar == nullptr || widget == nullptr)
      return QProxyStyle::drawComplexControl(control, option, painter, widget);
    QStyleOptionTitleBar elided = *bar;
    // Styles leave some of the label free, and would cut the end off for that.
    const QFontMetrics letters(painter->font());
    const int room =
        subControlRect(CC_TitleBar, bar, SC_TitleBarLabel, widget).width() - 4 * letters.averageCharWidth();
    const auto* document = qobject_cast<const DocumentWindow*>(widget);
    const bool marked =
        document != nullptr && document->State().Changed && styleHint(SH_TitleBar_ModifyNotification, option, widget);
    elided.text = letters.elidedText(widget->windowTitle() + (marked ? "*" : ""), Qt::ElideLeft, room);
    QProxyStyle::drawComplexControl(control, &elided, painter, widget);
  }
};

}  // namespace

void UseCaptionStyle(QMdiSubWindow& window) {
  static QPointer<CaptionStyle> style;  // one for all, as long as the application
  if (style == nullptr) {
    style = new CaptionStyle;
    style->setParent(QApplication::instance());
  }
  window.setStyle(style);
}

bool OnTitleBar(const QMdiSubWindow& window, const QPoint& position) {
  return window.widget() != nullptr && position.y() < window.widget()->y();
}

}  // namespace chanplan
