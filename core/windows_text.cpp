#include "core/windows_text.h"

#include <windows.h>

namespace chanplan {
namespace {

// The library's own category has messages in the code page of the machine.
class WindowsErrors : public std::error_category {
 public:
  const char* name() const noexcept override { return "Windows"; }

  std::string message(int code) const override {
    constexpr DWORD flags = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK;
    wchar_t text[512];
    DWORD length = FormatMessageW(flags, nullptr, static_cast<DWORD>(code), 0, text, std::size(text), nullptr);
    while (length > 0 && (text[length - 1] == L' ' || text[length - 1] == L'.')) --length;
    return length > 0 ? Utf8FromWide({text, length}) : "error " + std::to_string(code);
  }

  std::error_condition default_error_condition(int code) const noexcept override {
    return std::system_category().default_error_condition(code);
  }
};

}  // namespace

std::string Utf8FromWide(std::wstring_view wide) {
  const int size = static_cast<int>(wide.size());
  std::string text(
      static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, nullptr, 0, nullptr, nullptr)), '\0');
  WideCharToMultiByte(CP_UTF8, 0, wide.data(), size, text.data(), static_cast<int>(text.size()), nullptr, nullptr);
  return text;
}

std::wstring WideFromUtf8(std::string_view text) {
  const int size = static_cast<int>(text.size());
  std::wstring wide(static_cast<std::size_t>(MultiByteToWideChar(CP_UTF8, 0, text.data(), size, nullptr, 0)), L'\0');
  MultiByteToWideChar(CP_UTF8, 0, text.data(), size, wide.data(), static_cast<int>(wide.size()));
  return wide;
}

std::error_code WindowsError(unsigned long code) {
  static const WindowsErrors category;
  return {static_cast<int>(code), category};
}

std::error_code LastError() { return WindowsError(GetLastError()); }

}  // namespace chanplan
