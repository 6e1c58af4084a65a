// The application and its start-up.
#pragma once

#include <QStringList>
#include <memory>

#include "app/app_state.h"
#include "app/frm_main.h"

namespace chanplan {

/// What the application shares, and its frame. `main` owns the one instance.
class AppMain : public AppState {
 public:
  using AppState::AppState;

  /// Starts up: reads the settings, shows the frame with one empty document and opens the tables at
  /// `paths`. Needs a QApplication, which runs afterwards. `paths` are absolute, as the program's
  /// folder becomes the current one.
  void Main(const QStringList& paths = {});

  /// For an end that asks nothing: what was typed is kept for the next start, and a transfer that runs is the last
  /// one. Whether none runs any more.
  bool PrepareToEnd();

  std::unique_ptr<frmMain> Frame;

 private:
  void KeepCopies();
  void KeepWhatWasTyped();
  void OfferLeftTables();
  void Restore(const UnsavedTable& unsaved);
};

}  // namespace chanplan
