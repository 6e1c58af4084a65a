#include "unit/tracing_port.h"

#include <utility>

#include "core/number_picture.h"

namespace chanplan {
namespace {

constexpr std::size_t BytesPerLine = 16;

}  // namespace

std::string HexLine(std::string_view bytes) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string hex;
  std::string text;
  for (const char byte : bytes) {
    const auto value = static_cast<unsigned char>(byte);
    hex.append({digits[value / 16], digits[value % 16], ' '});
    text += value >= 32 && value < 127 ? byte : '.';
  }
  return hex + " |" + text + "|";
}

std::string SecondsText(std::chrono::nanoseconds sinceStart) {
  std::string seconds = FormatNumber(std::chrono::duration<double>(sinceStart).count(), "#0.000");
  return seconds.insert(0, seconds.size() < 7 ? 7 - seconds.size() : 0, ' ');
}

TracingPort::TracingPort(PortObject& traced, Clock clock, std::function<void(const std::string&)> lineWriter)
    : port(traced), now(std::move(clock)), writeLine(std::move(lineWriter)), begin(now()) {}

void TracingPort::SetSettings(std::string_view settings) {
  WriteLine(now(), '*', "settings " + std::string(settings));
  port.SetSettings(settings);
}

void TracingPort::Open() {
  try {
    port.Open();
    WriteLine(now(), '*', "port opened");
  } catch (const PortError& error) {
    WriteLine(now(), '*', error.what());
    throw;
  }
}

void TracingPort::Close() {
  port.Close();
  Flush();
  WriteLine(now(), '*', "port closed");
}

std::string TracingPort::ReadInput() {
  std::string bytes = port.ReadInput();
  Add('<', bytes);
  return bytes;
}

void TracingPort::TransmitCommChar(std::intptr_t handle, char byte) {
  Add('>', {&byte, 1});
  port.TransmitCommChar(handle, byte);
}

void TracingPort::Add(char direction, std::string_view bytes) {
  for (const char byte : bytes) {
    if (direction != pendingDirection || pending.size() == BytesPerLine) Flush();
    if (pending.empty()) {
      pendingSince = now();
      pendingDirection = direction;
    }
    pending += byte;
  }
}

void TracingPort::Flush() {
  if (!pending.empty()) WriteLine(pendingSince, pendingDirection, HexLine(pending));
  pending.clear();
}

void TracingPort::WriteLine(std::chrono::nanoseconds time, char mark, const std::string& text) {
  writeLine(SecondsText(time - begin) + " " + mark + " " + text);
}

}  // namespace chanplan
