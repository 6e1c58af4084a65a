// The user guide in a window of its own.
#pragma once

#include <QString>
#include <QTextBrowser>
#include <QWidget>
#include <memory>

class QLabel;
class QLineEdit;
class QListWidget;

namespace chanplan {

/// A help file that was opened: a binary resource file with the guide and its pictures.
class HelpResource {
 public:
  /// `failure` is empty when `path` was opened, or says why it was not.
  HelpResource(const QString& path, QString& failure);
  ~HelpResource();
  HelpResource(const HelpResource&) = delete;
  HelpResource& operator=(const HelpResource&) = delete;

 private:
  QString opened;
};

/// Shows the guide: chapters on the left, a field to search for words above.
class HelpViewer : public QWidget {
  Q_OBJECT

 public:
  HelpViewer(QWidget* owner, std::unique_ptr<HelpResource> file);

  /// Goes to the guide's start.
  void ShowContents();
  /// Waits for a word in the search field.
  void ShowSearch();

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void FillChapters();
  void GoToChapter(int chapter);
  /// Goes to the next place of what is searched for, from the end to the start again.
  void FindNext();

  std::unique_ptr<HelpResource> resource;
  QLineEdit* sought;  // in the order of the Tab key
  QLabel* outcome;
  QListWidget* chapters;
  QTextBrowser* guide;
};

}  // namespace chanplan
