// The real serial port, on the platform library's serial port, and the link's timing with it.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "unit/port_object.h"
#include "unit/unit_link.h"

class QSerialPort;

namespace chanplan {

/// Names the device of a port number, "" for numbers that stand for none. UTF-8.
using DeviceOfNumber = std::function<std::string(int number)>;

/// A port of this machine. Needs a QCoreApplication, whose events move its bytes.
class QtSerialPort : public PortObject {
 public:
  explicit QtSerialPort(DeviceOfNumber portDevices);
  /// One device, whatever the port number.
  explicit QtSerialPort(const std::string& devicePath);
  ~QtSerialPort() override;

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
  void NoticeHangUp();
  void SayItStoppedWorking();

  DeviceOfNumber deviceOf;
  std::string device;
  std::unique_ptr<QSerialPort> port;
  std::optional<PortError> failure;
};

/// The monotonic clock; events of the QCoreApplication run, then the thread sleeps.
LinkTiming SystemTiming();

/// The device paths of all serial ports that this machine has, the numbered ones first.
std::vector<std::string> SerialDevices(const DeviceOfNumber& deviceOf);

}  // namespace chanplan
