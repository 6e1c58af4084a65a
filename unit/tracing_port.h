// A port that writes down the conversation that passes through it.
#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <string_view>

#include "unit/port_object.h"

namespace chanplan {

/// A line of up to 16 bytes: hexadecimal, then the printable ones as text.
std::string HexLine(std::string_view bytes);

/// The seconds of a trace, in 7 characters or more: "  0.012".
std::string SecondsText(std::chrono::nanoseconds sinceStart);

/// Passes everything on to another port and hands `writeLine` a line for what was sent and
/// received, with the seconds since the trace began: "  0.012 > 45  |E|".
/// Bytes of one direction share a line, up to 16.
class TracingPort : public PortObject {
 public:
  using Clock = std::function<std::chrono::nanoseconds()>;

  TracingPort(PortObject& traced, Clock clock, std::function<void(const std::string&)> lineWriter);
  ~TracingPort() override { Flush(); }

  void SetPortNumber(int number) override { port.SetPortNumber(number); }
  void SetSettings(std::string_view settings) override;
  void SetReceiveBufferSize(std::size_t bytes) override { port.SetReceiveBufferSize(bytes); }
  void SetTransmitBufferSize(std::size_t bytes) override { port.SetTransmitBufferSize(bytes); }
  void SetInputLength(int bytes) override { port.SetInputLength(bytes); }
  void Open() override;
  void Close() override;
  bool IsOpen() const override { return port.IsOpen(); }
  std::size_t BytesWaiting() override { return port.BytesWaiting(); }
  void DiscardReceived() override { port.DiscardReceived(); }
  void DiscardTransmitted() override { port.DiscardTransmitted(); }
  std::string ReadInput() override;
  std::intptr_t Handle() const override { return port.Handle(); }
  void TransmitCommChar(std::intptr_t handle, char byte) override;
  std::optional<PortError> Failure() const override { return port.Failure(); }

 private:
  void Add(char direction, std::string_view bytes);
  void Flush();
  void WriteLine(std::chrono::nanoseconds time, char mark, const std::string& text);

  PortObject& port;
  Clock now;
  std::function<void(const std::string&)> writeLine;
  std::chrono::nanoseconds begin;
  std::chrono::nanoseconds pendingSince{};
  char pendingDirection = '>';
  std::string pending;
};

}  // namespace chanplan
