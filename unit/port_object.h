// The serial port as the link sees it: just the operations that the link uses.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace chanplan {

/// Why a port cannot be used, in words that say what to do about it.
class PortError : public std::runtime_error {
 public:
  explicit PortError(const std::string& text, bool deviceIsMissing = false)
      : std::runtime_error(text), DeviceIsMissing(deviceIsMissing) {}

  bool DeviceIsMissing;
};

/// One serial port, closed at first. Setting up and opening throw PortError. Once the port is
/// open nothing throws: what goes wrong then is kept in `Failure`, and the operation does nothing.
class PortObject {
 public:
  virtual ~PortObject() = default;

  virtual void SetPortNumber(int number) = 0;  ///< 1 = COM1
  /// "<baud>,N,8,1": speed, no parity, 8 data bits, 1 stop bit.
  virtual void SetSettings(std::string_view settings) = 0;
  virtual void SetReceiveBufferSize(std::size_t bytes) = 0;
  virtual void SetTransmitBufferSize(std::size_t bytes) = 0;
  virtual void SetInputLength(int bytes) = 0;  ///< 0 = `ReadInput` reads all that is waiting
  virtual void Open() = 0;
  virtual void Close() = 0;
  virtual bool IsOpen() const = 0;
  virtual std::size_t BytesWaiting() = 0;
  virtual void DiscardReceived() = 0;
  virtual void DiscardTransmitted() = 0;
  virtual std::string ReadInput() = 0;  ///< all waiting bytes, which leaves none waiting
  virtual std::intptr_t Handle() const = 0;
  /// Sends one byte ahead of any pending output.
  virtual void TransmitCommChar(std::intptr_t handle, char byte) = 0;

  /// What broke the port since it was opened, such as the cable being pulled.
  virtual std::optional<PortError> Failure() const = 0;
};

}  // namespace chanplan
