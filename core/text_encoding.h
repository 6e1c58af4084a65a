// Where the two kinds of texts meet. Windows-1252 bytes are the texts of a record's fields, and what
// goes to files and units. All other texts are UTF-8: messages, captions, what exceptions say.
#pragma once

#include <string>
#include <string_view>

namespace chanplan {

/// UTF-8 of Windows-1252 bytes. Each of the 256 byte values has a character of its own: the five
/// that the code page leaves open (0x81, 0x8D, 0x8F, 0x90, 0x9D) stand for the control characters
/// of the same number.
std::string Utf8FromWindows1252(std::string_view bytes);

/// Windows-1252 bytes of UTF-8: the way back. "?" stands for a character that the code page lacks
/// and for a byte that is not part of valid UTF-8, such as a file's name may have.
std::string Windows1252FromUtf8(std::string_view text);

/// `text` (UTF-8) with "?" in place of control characters but line ends and TABs: what a file or a unit
/// holds must not move the cursor.
std::string HarmlessText(std::string text);

/// The characters of UTF-8; U+FFFD for a byte that is not part of valid UTF-8.
std::u32string Utf32FromUtf8(std::string_view text);

/// Adds the character `code`, at most U+10FFFF, to UTF-8.
void AppendUtf8(std::string& text, char32_t code);

}  // namespace chanplan
