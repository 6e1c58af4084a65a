// What another program, Poppler, reads in a PDF file.
#pragma once

#include <cstdio>
#include <stdexcept>
#include <string>
#include <string_view>

#include "tests/core/temp_folder.h"

namespace chanplan::testing {

/// What `program` prints about a file of these bytes; an exception when it finds fault with them.
inline std::string ReadPdf(const std::string& program, std::string_view bytes) {
  const TempFolder folder;
  WriteFile(folder / "file.pdf", bytes);
  const std::string command = "cd '" + folder.Path().string() + "' && " + program + " 2>&1";
  FILE* output = popen(command.c_str(), "r");
  if (output == nullptr) throw std::runtime_error("cannot start " + program);
  std::string text;
  char buffer[4096];
  for (std::size_t count; (count = fread(buffer, 1, sizeof buffer, output)) > 0;) text.append(buffer, count);
  if (pclose(output) != 0 || text.find("Error") != std::string::npos) throw std::runtime_error(program + ": " + text);
  return text;
}

inline std::string PdfText(std::string_view bytes) { return ReadPdf("pdftotext -layout file.pdf -", bytes); }

inline int PdfPages(std::string_view bytes) {
  const std::string facts = ReadPdf("pdfinfo file.pdf", bytes);
  return std::stoi(facts.substr(facts.find("Pages:") + 6));
}

}  // namespace chanplan::testing
