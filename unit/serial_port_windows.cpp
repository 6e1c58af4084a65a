// On the system's own calls: the platform library's serial port waits for its events to send a byte, where a unit is
// sent one byte at a time.
#include <windows.h>

#include <algorithm>

#include "core/windows_text.h"
#include "unit/port_platform.h"
#include "unit/serial_port.h"

namespace chanplan {

struct SerialPort::Line {
  ~Line() { Close(); }

  bool IsOpen() const { return Device != INVALID_HANDLE_VALUE; }
  void Close() {
    if (IsOpen()) CloseHandle(Device);
    Device = INVALID_HANDLE_VALUE;
  }

  HANDLE Device = INVALID_HANDLE_VALUE;
  DWORD Baud = CBR_9600;
  DWORD ReceiveBuffer = 4096;   // bytes
  DWORD TransmitBuffer = 4096;  // bytes
};

namespace {

// The bytes that have come and were not read; nothing when the line is gone.
std::optional<std::size_t> Waiting(HANDLE device) {
  DWORD errors = 0;
  COMSTAT state{};
  return ClearCommError(device, &errors, &state) ? std::optional<std::size_t>(state.cbInQue) : std::nullopt;
}

// As other systems leave a port that was opened: bytes as they are, no handshaking, both lines say that we are there.
bool SetUp(HANDLE device, DWORD baud) {
  DCB settings{};
  settings.DCBlength = sizeof settings;
  if (!GetCommState(device, &settings)) return false;
  settings = {};
  settings.DCBlength = sizeof settings;
  settings.BaudRate = baud;
  settings.fBinary = TRUE;
  settings.fDtrControl = DTR_CONTROL_ENABLE;
  settings.fRtsControl = RTS_CONTROL_ENABLE;
  settings.ByteSize = 8;
  settings.Parity = NOPARITY;
  settings.StopBits = ONESTOPBIT;
  return SetCommState(device, &settings) != 0;
}

}  // namespace

SerialPort::SerialPort(DeviceOfNumber portDevices) : deviceOf(std::move(portDevices)), line(std::make_unique<Line>()) {}

SerialPort::~SerialPort() = default;

bool SerialPort::SetUpLine(int baud) {
  line->Baud = static_cast<DWORD>(baud);
  return !IsOpen() || SetUp(line->Device, line->Baud);
}

void SerialPort::SetReceiveBufferSize(std::size_t bytes) { line->ReceiveBuffer = static_cast<DWORD>(bytes); }

void SerialPort::SetTransmitBufferSize(std::size_t bytes) { line->TransmitBuffer = static_cast<DWORD>(bytes); }

std::optional<std::string> SerialPort::OpenLine() {
  line->Close();
  line->Device = CreateFileW(WideFromUtf8("\\\\.\\" + device).c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                             OPEN_EXISTING, 0, nullptr);
  if (!IsOpen()) return " cannot be opened: " + LastError().message();
  COMMTIMEOUTS atOnce{};
  atOnce.ReadIntervalTimeout = MAXDWORD;  // with the others 0: a read takes what is there
  if (SetupComm(line->Device, line->ReceiveBuffer, line->TransmitBuffer) && SetUp(line->Device, line->Baud) &&
      SetCommTimeouts(line->Device, &atOnce))
    return std::nullopt;
  const std::string reason = LastError().message();
  line->Close();
  return " cannot be set up: " + reason;
}

void SerialPort::Close() { line->Close(); }

bool SerialPort::IsOpen() const { return line->IsOpen(); }

std::size_t SerialPort::BytesWaiting() {
  NoticeHangUp();
  return IsOpen() && !failure ? Waiting(line->Device).value_or(0) : 0;
}

void SerialPort::DiscardReceived() {
  if (IsOpen()) PurgeComm(line->Device, PURGE_RXCLEAR);
}

std::string SerialPort::ReadInput() {
  std::string input(BytesWaiting(), '\0');
  DWORD count = 0;
  if (!input.empty() && !ReadFile(line->Device, input.data(), static_cast<DWORD>(input.size()), &count, nullptr))
    NoticeHangUp();
  input.resize(count);
  return input;
}

std::intptr_t SerialPort::Handle() const { return reinterpret_cast<std::intptr_t>(line->Device); }

// The call fails as long as the byte before has not gone out.
void SerialPort::TransmitCommChar(std::intptr_t handle, char byte) {
  constexpr std::chrono::milliseconds longest(1000), pause(1);
  using Clock = std::chrono::steady_clock;
  for (const auto start = Clock::now(); IsOpen() && !failure; ShortSleep(pause)) {
    if (::TransmitCommChar(reinterpret_cast<HANDLE>(handle), byte)) return;
    NoticeHangUp();
    if (!failure && Clock::now() - start > longest) SayItStoppedWorking();
  }
}

void SerialPort::NoticeHangUp() {
  if (!failure && IsOpen() && !Waiting(line->Device)) SayItStoppedWorking();
}

// What drivers have told the system, each under a name of its own.
std::vector<std::string> DevicesOfSystem() {
  std::vector<std::string> devices;
  HKEY key = nullptr;
  if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"HARDWARE\\DEVICEMAP\\SERIALCOMM", 0, KEY_READ, &key) != ERROR_SUCCESS)
    return devices;
  for (DWORD index = 0;; ++index) {
    wchar_t name[256], device[256];
    DWORD nameLength = std::size(name), size = sizeof device, type = 0;
    const LSTATUS found =
        RegEnumValueW(key, index, name, &nameLength, nullptr, &type, reinterpret_cast<BYTE*>(device), &size);
    if (found == ERROR_NO_MORE_ITEMS) break;
    if (found != ERROR_SUCCESS || type != REG_SZ) continue;
    const std::wstring_view text(device, size / sizeof *device);
    devices.push_back(Utf8FromWide(text.substr(0, text.find(L'\0'))));
  }
  RegCloseKey(key);
  const auto number = [](const std::string& device) { return std::pair(device.size(), device); };  // COM9 before COM10
  std::ranges::sort(devices, {}, number);
  return devices;
}

}  // namespace chanplan
