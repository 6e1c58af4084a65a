// Running a piece of a test in a process of its own, with limits and mounts that go with it.
#pragma once

#include <sys/wait.h>
#include <unistd.h>

#include <exception>
#include <string>

namespace chanplan::testing {

/// What `work` returned in a child process (at most some kilobytes), or what ended it instead.
template <typename Work>
std::string RunInChild(const Work& work) {
  int ends[2];
  if (pipe(ends) != 0) return "no pipe";
  const pid_t child = fork();
  if (child < 0) return "no child process";
  if (child == 0) {
    std::string said;
    try {
      said = work();
    } catch (const std::exception& error) {
      said = error.what();
    }
    const bool told = write(ends[1], said.data(), said.size()) == static_cast<ssize_t>(said.size());
    _exit(told ? 0 : 1);
  }
  close(ends[1]);
  std::string said;
  char buffer[4096];
  for (ssize_t count; (count = read(ends[0], buffer, sizeof buffer)) > 0;)
    said.append(buffer, static_cast<std::size_t>(count));
  close(ends[0]);
  int status = 0;
  waitpid(child, &status, 0);
  return status == 0 ? said : said + " (child ended with status " + std::to_string(status) + ")";
}

}  // namespace chanplan::testing
