// What the wide calls of Windows take and tell, as the UTF-8 of everything else.
#pragma once

#include <string>
#include <string_view>
#include <system_error>

namespace chanplan {

std::string Utf8FromWide(std::wstring_view wide);

std::wstring WideFromUtf8(std::string_view text);

/// The error `code` of the system, whose message is UTF-8 whatever the code page is.
std::error_code WindowsError(unsigned long code);

/// What the thread's last failing call came to.
std::error_code LastError();

}  // namespace chanplan
