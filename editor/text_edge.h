// Where the table's Windows-1252 bytes and the file system's paths meet the window's texts.
#pragma once

#include <QString>
#include <filesystem>
#include <string>
#include <string_view>

namespace chanplan {

QString TextOf(std::string_view bytes);

/// Windows-1252 bytes of `text`, "?" for characters that have none.
std::string BytesOf(const QString& text);

std::filesystem::path PathOf(const QString& path);

/// Whether a pipe or a device stands at `path`, which could hold up whoever opens it for ever.
bool IsNoFile(const QString& path);

}  // namespace chanplan
