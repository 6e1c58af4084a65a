#include "tests/app/print_queue.h"

#include <cups/cups.h>
#include <unistd.h>

#include "tests/console/program.h"

namespace chanplan::testing {
namespace {

namespace fs = std::filesystem;

constexpr const char* Server = "/usr/sbin/cupsd";
constexpr const char* Helper = "/usr/lib/cups/daemon/cups-exec";
constexpr const char* Administration = "/usr/sbin/lpadmin";

// Takes a job's document as its standard input or its sixth argument.
constexpr const char* SaveBackend =
    "#!/bin/sh\n"
    "[ $# -eq 0 ] && { echo 'direct save \"Unknown\" \"Save\"'; exit 0; }\n"
    "cat \"${6:--}\" >\"${DEVICE_URI#save:}.part\" && mv \"${DEVICE_URI#save:}.part\" \"${DEVICE_URI#save:}\"\n";

}  // namespace

PrintQueue::PrintQueue() {
  if (geteuid() != 0)
    whyNot = "a print server is only started as root";
  else if (!fs::exists(Server) || !fs::exists(Administration) || !fs::exists(Helper))
    whyNot = "CUPS (packages cups-daemon and cups-client) is not installed";
  else
    Start();
}

PrintQueue::~PrintQueue() {
  Stop();
  cupsSetServer("/nonexistent/socket");
}

void PrintQueue::Stop() {
  server.terminate();
  if (!server.waitForFinished(5000)) server.kill();
}

void PrintQueue::Start() {
  const std::string root = folder.Path().string();
  for (const char* part : {"etc", "state", "cache", "spool", "tmp", "printed", "bin", "bin/backend", "bin/filter"})
    fs::create_directory(folder / part);
  fs::create_directory_symlink(fs::path(Helper).parent_path(), folder / "bin/daemon");
  TempFolder::Allow(folder / "printed", fs::perms::all);  // backends have no rights
  WriteFile(folder / "bin/backend/save", SaveBackend);
  TempFolder::Allow(folder / "bin/backend/save", fs::perms(0755));
  WriteFile(folder / "etc/cupsd.conf", "Listen " + Socket() +
                                           "\n"
                                           "Browsing No\n"
                                           "WebInterface No\n"
                                           "DefaultAuthType None\n"
                                           "<Location />\n  Order allow,deny\n  Allow all\n</Location>\n"
                                           "<Policy default>\n  <Limit All>\n    Order deny,allow\n  </Limit>\n"
                                           "</Policy>\n");
  WriteFile(folder / "etc/cups-files.conf", "ServerRoot " + root + "/etc\nServerBin " + root + "/bin\nStateDir " +
                                                root + "/state\nCacheDir " + root + "/cache\nRequestRoot " + root +
                                                "/spool\nTempDir " + root + "/tmp\nAccessLog " + root +
                                                "/access\nErrorLog " + root + "/errors\nPageLog " + root + "/pages\n");
  StartServer();
  if (whyNot) return;
  cupsSetServer(Socket().c_str());
  Configure({"-p", "Listing", "-E", "-m", "raw", "-v", "save:" + root + "/printed/document"});
  Configure({"-d", "Listing"});
}

void PrintQueue::StartServer() {
  fs::remove(Socket());
  server.start(Server, {"-f", "-c", QString::fromStdString((folder / "etc/cupsd.conf").string()), "-s",
                        QString::fromStdString((folder / "etc/cups-files.conf").string())});
  const auto answers = [this] {
    http_t* connection = httpConnect2(Socket().c_str(), 0, nullptr, AF_UNSPEC, HTTP_ENCRYPTION_NEVER, 1, 1000, nullptr);
    httpClose(connection);
    return connection != nullptr;
  };
  if (!server.waitForStarted() || !WaitFor(10s, answers)) whyNot = "the print server does not start";
}

void PrintQueue::Configure(std::vector<std::string> options) {
  options.insert(options.begin(), Administration);
  if (const ProgramRun run = RunProgram(options, {.Environment = {"CUPS_SERVER=" + Socket()}}); run.ExitStatus != 0)
    whyNot = "the print server takes no queue: " + run.Errors;
}

std::string PrintQueue::Printed() const {
  const fs::path document = folder / "printed/document";
  return WaitFor(10s, [&] { return fs::exists(document); }) ? ReadFile(document) : std::string();
}

int PrintQueue::Documents() const {
  cups_job_t* jobs = nullptr;
  const int count = cupsGetJobs(&jobs, "Listing", 0, CUPS_WHICHJOBS_ALL);
  cupsFreeJobs(count, jobs);
  return count;
}

void PrintQueue::Reject() {
  RunProgram({"/usr/sbin/cupsreject", "Listing"}, {.Environment = {"CUPS_SERVER=" + Socket()}});
}

void PrintQueue::LimitDocuments(const std::string& size) {
  Stop();
  const fs::path settings = folder / "etc/cupsd.conf";
  WriteFile(settings, ReadFile(settings) + "LimitRequestBody " + size + "\n");
  StartServer();
}

}  // namespace chanplan::testing
