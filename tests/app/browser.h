// The desktop's viewer, in its place.
#pragma once

#include <QList>
#include <QObject>
#include <QUrl>

/// Set as handler of "file" addresses, it writes down what it is to open.
class Browser : public QObject {
  Q_OBJECT

 public:
  QList<QUrl> Opened;
 public slots:
  void Open(const QUrl& url) { Opened += url; }
};
