// The real serial port: what is common to all systems in serial_port.cpp, the rest in one file a kind of system.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "unit/port_object.h"

namespace chanplan {

/// Names the device of a port number, "" for numbers that stand for none. UTF-8.
using DeviceOfNumber = std::function<std::string(int number)>;

/// A port of this machine. Needs a QCoreApplication where the platform library's events move its bytes.
class SerialPort : public PortObject {
 public:
  explicit SerialPort(DeviceOfNumber portDevices);
  /// One device, whatever the port number.
  explicit SerialPort(const std::string& devicePath);
  ~SerialPort() override;

  void SetPortNumber(int number) override;
  void SetSettings(std::string_view settings) override;
  void SetReceiveBufferSize(std::size_t bytes) override;
  void SetTransmitBufferSize(std::size_t bytes) override;
  void SetInputLength(int bytes) override;
  void Open() override;
  void Close() override;
  bool IsOpen() const override;
  std::size_t BytesWaiting() override;
  void DiscardReceived() override;
  void DiscardTransmitted() override;
  std::string ReadInput() override;
  std::intptr_t Handle() const override;
  void TransmitCommChar(std::intptr_t handle, char byte) override;
  std::optional<PortError> Failure() const override;

 private:
  struct Line;  // what the system has to an open port

  /// Whether the line takes `baud`, without parity, with 8 data bits, 1 stop bit and no handshaking.
  bool SetUpLine(int baud);
  /// Opens the device; otherwise says why not, as the end of a sentence that begins with it.
  std::optional<std::string> OpenLine();
  void NoticeHangUp();
  void SayItStoppedWorking();

  DeviceOfNumber deviceOf;
  std::string device;
  std::unique_ptr<Line> line;
  std::optional<PortError> failure;
};

/// The device paths of all serial ports that this machine has, the numbered ones first.
std::vector<std::string> SerialDevices(const DeviceOfNumber& deviceOf);

/// The device paths that the system names, in its order.
std::vector<std::string> DevicesOfSystem();

}  // namespace chanplan
