// A print queue of the test's own: a CUPS server that writes what is printed into a file.
#pragma once

#include <QProcess>
#include <optional>
#include <string>

#include "tests/core/temp_folder.h"

namespace chanplan::testing {

/// Is the default printer of this process while it lives.
class PrintQueue {
 public:
  PrintQueue();
  ~PrintQueue();

  /// Why there is no queue here; nothing when there is one.
  const std::optional<std::string>& WhyNot() const { return whyNot; }

  /// What was printed, once it is whole; empty when nothing comes.
  std::string Printed() const;
  /// Documents that were sent to it so far.
  int Documents() const;
  void Reject();

 private:
  void Start();

  TempFolder folder;
  QProcess server;
  std::optional<std::string> whyNot;
};

/// Takes the printers of the person who runs the tests away from this process.
void HidePrinters();

}  // namespace chanplan::testing
