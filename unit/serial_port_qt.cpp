// On the platform library's serial port.
#include <QSerialPort>
#include <QSerialPortInfo>

#include "unit/port_platform.h"
#include "unit/serial_port.h"

namespace chanplan {

struct SerialPort::Line : QSerialPort {};

SerialPort::SerialPort(DeviceOfNumber portDevices) : deviceOf(std::move(portDevices)), line(std::make_unique<Line>()) {
  QObject::connect(line.get(), &QSerialPort::errorOccurred, line.get(), [this](QSerialPort::SerialPortError error) {
    if (error == QSerialPort::NoError || error == QSerialPort::TimeoutError || !IsOpen() || failure) return;
    SayItStoppedWorking();
  });
}

SerialPort::~SerialPort() = default;

bool SerialPort::SetUpLine(int baud) {
  return line->setBaudRate(baud) && line->setParity(QSerialPort::NoParity) && line->setDataBits(QSerialPort::Data8) &&
         line->setStopBits(QSerialPort::OneStop) && line->setFlowControl(QSerialPort::NoFlowControl);
}

void SerialPort::SetReceiveBufferSize(std::size_t bytes) { line->setReadBufferSize(static_cast<qint64>(bytes)); }

void SerialPort::SetTransmitBufferSize(std::size_t /*bytes*/) {}  // grows as needed

std::optional<std::string> SerialPort::OpenLine() {
  line->setPortName(QString::fromStdString(device));
  if (line->open(QIODevice::ReadWrite)) return std::nullopt;
  // Where the platform would let one in, it is the lock that another program holds.
  if (line->error() == QSerialPort::PermissionError) return " is in use by another program: close that first";
  return " cannot be opened: " + line->errorString().toStdString();
}

void SerialPort::Close() { line->close(); }

bool SerialPort::IsOpen() const { return line->isOpen(); }

std::size_t SerialPort::BytesWaiting() {
  NoticeHangUp();
  return IsOpen() ? static_cast<std::size_t>(line->bytesAvailable()) : 0;
}

void SerialPort::DiscardReceived() {
  if (IsOpen()) line->clear(QSerialPort::Input);
}

std::string SerialPort::ReadInput() {
  NoticeHangUp();
  return IsOpen() ? line->readAll().toStdString() : std::string();
}

std::intptr_t SerialPort::Handle() const { return (std::intptr_t)line->handle(); }

// What the system does not take at once goes the library's way: it waits for room, and tells what is broken.
void SerialPort::TransmitCommChar(std::intptr_t handle, char byte) {
  if (!IsOpen() || failure) return;
  if (line->bytesToWrite() == 0 && WriteByteAtOnce(handle, byte)) return;
  line->write(&byte, 1);
  line->flush();
}

// Newer libraries keep reading nothing from a line that has hung up, and tell it only when something is written.
void SerialPort::NoticeHangUp() {
  if (!failure && IsOpen() && HasHungUp(Handle())) SayItStoppedWorking();
}

std::vector<std::string> DevicesOfSystem() {
  std::vector<std::string> devices;
  for (const QSerialPortInfo& info : QSerialPortInfo::availablePorts())
    devices.push_back(info.systemLocation().toStdString());
  return devices;
}

}  // namespace chanplan
