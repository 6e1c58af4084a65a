// A print queue of the test's own: a CUPS server that writes what is printed into a file.
#pragma once

#include <QProcess>
#include <optional>
#include <string>
#include <vector>

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
  /// Documents larger than `size`, such as "5k", are refused from now on.
  void LimitDocuments(const std::string& size);
  /// Calls lpadmin.
  void Configure(std::vector<std::string> options);
  /// Makes an end of the server.
  void Stop();

 private:
  void Start();
  void StartServer();
  std::string Socket() const { return (folder / "socket").string(); }

  TempFolder folder;
  QProcess server;
  std::optional<std::string> whyNot;
};

}  // namespace chanplan::testing
