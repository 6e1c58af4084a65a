#include "unit/qt_serial_port.h"

#include <QCoreApplication>
#include <QSerialPort>
#include <QSerialPortInfo>
#include <algorithm>
#include <chrono>

#include "unit/port_platform.h"

namespace chanplan {
namespace {

// Turns of the event loop that begin within this time of the end of another are one with it.
constexpr std::chrono::microseconds OneTurn(50);

}  // namespace

QtSerialPort::QtSerialPort(const std::string& devicePath)
    : QtSerialPort([devicePath](int /*number*/) { return devicePath; }) {}

QtSerialPort::QtSerialPort(DeviceOfNumber portDevices)
    : deviceOf(std::move(portDevices)), port(std::make_unique<QSerialPort>()) {
  QObject::connect(port.get(), &QSerialPort::errorOccurred, port.get(), [this](QSerialPort::SerialPortError error) {
    if (error == QSerialPort::NoError || error == QSerialPort::TimeoutError || !port->isOpen() || failure) return;
    SayItStoppedWorking();
  });
}

QtSerialPort::~QtSerialPort() = default;

void QtSerialPort::SetPortNumber(int number) {
  if (IsOpen()) throw PortError(device + " is already open");
  const std::string name = deviceOf(number);
  if (name.empty()) throw PortError("there is no port " + std::to_string(number) + ": ports are numbered 1 to 6");
  device = DevicePath(name);
  port->setPortName(QString::fromStdString(device));
}

void QtSerialPort::SetSettings(std::string_view settings) {
  const auto baud = QString::fromUtf8(settings.data(), static_cast<qsizetype>(settings.find(','))).toInt();
  const bool done = settings.ends_with(",N,8,1") && baud > 0 && port->setBaudRate(baud) &&
                    port->setParity(QSerialPort::NoParity) && port->setDataBits(QSerialPort::Data8) &&
                    port->setStopBits(QSerialPort::OneStop) && port->setFlowControl(QSerialPort::NoFlowControl);
  if (!done) throw PortError(device + " does not take the settings " + std::string(settings));
}

void QtSerialPort::SetReceiveBufferSize(std::size_t bytes) { port->setReadBufferSize(static_cast<qint64>(bytes)); }

void QtSerialPort::SetTransmitBufferSize(std::size_t /*bytes*/) {}  // grows as needed

void QtSerialPort::SetInputLength(int /*bytes*/) {}  // always all that is waiting

void QtSerialPort::Open() {
  failure.reset();
  // Opening begins with a lock file that is forced to the disk: not for a device that is not there.
  if (PortExists(device) && port->open(QIODevice::ReadWrite)) return;
  if (const auto problem = PortProblem(device)) throw PortError(*problem, !PortExists(device));
  // The platform would let one in, so it is the lock that another program holds.
  if (port->error() == QSerialPort::PermissionError)
    throw PortError(device + " is in use by another program: close that first");
  throw PortError(device + " cannot be opened: " + port->errorString().toStdString());
}

void QtSerialPort::Close() { port->close(); }

bool QtSerialPort::IsOpen() const { return port->isOpen(); }

std::size_t QtSerialPort::BytesWaiting() {
  NoticeHangUp();
  return IsOpen() ? static_cast<std::size_t>(port->bytesAvailable()) : 0;
}

void QtSerialPort::DiscardReceived() {
  if (IsOpen()) port->clear(QSerialPort::Input);
}

// Bytes go out one by one past the transmit buffer, so nothing is ever left in it. Discarding what
// the system has not put on the line yet would cut off the end of an upload.
void QtSerialPort::DiscardTransmitted() {}

std::string QtSerialPort::ReadInput() {
  NoticeHangUp();
  return IsOpen() ? port->readAll().toStdString() : std::string();
}

std::intptr_t QtSerialPort::Handle() const { return (std::intptr_t)port->handle(); }

// What the system does not take at once goes the library's way: it waits for room, and tells what is broken.
void QtSerialPort::TransmitCommChar(std::intptr_t handle, char byte) {
  if (!IsOpen() || failure) return;
  if (port->bytesToWrite() == 0 && WriteByteAtOnce(handle, byte)) return;
  port->write(&byte, 1);
  port->flush();
}

std::optional<PortError> QtSerialPort::Failure() const { return failure; }

// Newer libraries keep reading nothing from a line that has hung up, and tell it only when something is written.
void QtSerialPort::NoticeHangUp() {
  if (!failure && IsOpen() && HasHungUp(Handle())) SayItStoppedWorking();
}

void QtSerialPort::SayItStoppedWorking() {
  failure.emplace(device + " stopped working: was the cable pulled? Plug it in and start again");
}

LinkTiming SystemTiming() {
  const auto now = [] { return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()); };
  const auto letEventsRun = [now, ran = std::chrono::nanoseconds()](std::chrono::nanoseconds longest) mutable {
    const auto start = now();
    // Between two bytes of an upload there are several turns in a row, and the first handles all there is.
    if (longest.count() == 0 && start - ran < OneTurn) return;
    QCoreApplication::processEvents();
    ran = now();
    if (start + longest > ran) ShortSleep(start + longest - ran);
  };
  return {now, letEventsRun};
}

std::vector<std::string> SerialDevices(const DeviceOfNumber& deviceOf) {
  std::vector<std::string> devices;
  const auto add = [&](std::string device) {
    if (PortExists(device) && std::ranges::find(devices, device) == devices.end()) devices.push_back(std::move(device));
  };
  for (int number = 1; number <= 6; ++number) add(deviceOf(number));
  for (const QSerialPortInfo& info : QSerialPortInfo::availablePorts()) add(info.systemLocation().toStdString());
  return devices;
}

}  // namespace chanplan
