// The link on the real serial port, with a simulated unit at the other end of a pseudo-terminal.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <termios.h>
#include <unistd.h>

#include <QCoreApplication>
#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <optional>
#include <random>

#include "core/validation.h"
#include "simulator/pseudo_terminal.h"
#include "simulator/simulated_unit.h"
#include "tests/core/random_table.h"
#include "tests/core/temp_folder.h"
#include "unit/serial_port.h"
#include "unit/system_timing.h"
#include "unit/transfer.h"
#include "unit/unit_connection.h"
#include "unit/wire_encoding.h"

namespace chanplan::testing {
namespace {

using namespace std::chrono_literals;

// A port that counts the bytes that went through it.
class CountingPort : public SerialPort {
 public:
  using SerialPort::SerialPort;

  std::size_t Sent = 0;
  std::size_t Received = 0;

  void TransmitCommChar(std::intptr_t handle, char byte) override {
    ++Sent;
    SerialPort::TransmitCommChar(handle, byte);
  }
  std::string ReadInput() override {
    std::string input = SerialPort::ReadInput();
    Received += input.size();
    return input;
  }
  void DiscardReceived() override {
    Received += BytesWaiting();
    SerialPort::DiscardReceived();
  }
};

// A unit at the far end of the line, which works whenever the link lets events run.
class SerialPath : public ::testing::Test {
 protected:
  LinkTiming Timing() {
    LinkTiming timing = SystemTiming();
    return {timing.Now, [=, this](std::chrono::nanoseconds longest) {
              if (terminal) Reply();
              timing.LetEventsRun(longest);
            }};
  }

  // A clock of the test's own, which stands still while bytes are on their way: a busy machine may take any time
  // to bring them.
  LinkTiming OwnTiming() {
    return {[this] { return ownTime; },
            [this](std::chrono::nanoseconds longest) {
              Reply();
              QCoreApplication::processEvents();
              const bool arrived =
                  waiting.empty() && port.Sent == heard && port.Received + port.BytesWaiting() == replied;
              if (arrived) ownTime += std::max<std::chrono::nanoseconds>(longest, 10us);
            }};
  }

  void Reply() {
    const std::string bytes = terminal->Read(0ms);
    heard += bytes.size();
    waiting += unit.Receive(bytes);
    const std::size_t taken = terminal->Write(waiting);
    replied += taken;
    waiting.erase(0, taken);
  }

  termios LineSettings() {
    const int line = open(path.c_str(), O_RDWR | O_NOCTTY);
    termios settings{};
    EXPECT_EQ(tcgetattr(line, &settings), 0);
    close(line);
    return settings;
  }

  // A path of the test's own: locks of ports are named after it, and terminals' numbers come back soon.
  TempFolder folder;
  const std::string path = folder / "unit";
  std::optional<PseudoTerminal> terminal{std::in_place, path};
  SimulatedUnit unit{{}, [](const std::string&) {}};
  std::string waiting;
  std::size_t heard = 0;
  std::size_t replied = 0;
  std::chrono::nanoseconds ownTime{};
  CountingPort port{path};
  UnitLink link{port, Timing()};
  TransferProgress progress;
};

TEST_F(SerialPath, LineRunsAt9600Baud8BitsNoParityWhateverWasChosen) {
  link.BaudRate = "115200";
  ASSERT_EQ(link.OpenCommPort(1), 1);
  EXPECT_EQ(link.BaudRate, "9600");
  const termios settings = LineSettings();
  EXPECT_EQ(cfgetospeed(&settings), static_cast<speed_t>(B9600));
  EXPECT_EQ(settings.c_cflag & CSIZE, static_cast<tcflag_t>(CS8));
  EXPECT_EQ(settings.c_cflag & (PARENB | CSTOPB | CRTSCTS), 0u);
  EXPECT_EQ(settings.c_lflag & (ICANON | ECHO), 0u);
  link.CloseCommPort();
}

TEST_F(SerialPath, PauseBehindAByteIsNeverUnderAMillisecond) {
  for (int pause = 0; pause < 200; ++pause) {
    const auto start = std::chrono::steady_clock::now();
    link.DelayMs(1);
    ASSERT_GE(std::chrono::steady_clock::now() - start, 1ms);
  }
}

TEST_F(SerialPath, UnitIdentifiesItself) {
  const ConnectOutcome outcome = ConnectToUnit(link);
  EXPECT_TRUE(outcome.Accepted()) << outcome.Message;
  EXPECT_EQ(link.UnitModel, "QX4471C");
  EXPECT_EQ(link.UnitFirmwareVersion, 3.0);
  EXPECT_FALSE(port.IsOpen());
}

TEST_F(SerialPath, EveryByteValuePassesBothWays) {
  ASSERT_EQ(link.OpenCommPort(1), 1);
  std::string all;
  for (int value = 0; value < 256; ++value) all += static_cast<char>(value);
  std::string received;
  UnitLink silent(port, SystemTiming());
  for (const char byte : all) {
    silent.SendCommString(link.CommHandle, {&byte, 1});
    received += terminal->Read(1000ms);
  }
  EXPECT_EQ(received, all);
  ASSERT_EQ(terminal->Write(all), all.size());
  EXPECT_TRUE(silent.WaitUntil(silent.Now(), 5000, [&] { return port.BytesWaiting() == all.size(); }));
  EXPECT_EQ(port.ReadInput(), all);
  EXPECT_EQ(port.BytesWaiting(), 0u);
  port.Close();
}

TEST_F(SerialPath, DiscardedBytesAreGone) {
  ASSERT_EQ(link.OpenCommPort(1), 1);
  UnitLink silent(port, SystemTiming());
  ASSERT_EQ(terminal->Write("stale"), 5u);
  ASSERT_TRUE(silent.WaitUntil(silent.Now(), 5000, [&] { return port.BytesWaiting() == 5; }));
  silent.ClearCommBuffers();
  EXPECT_EQ(port.BytesWaiting(), 0u);
  port.Close();
}

TEST_F(SerialPath, RandomTablesSurviveUploadAndDownload) {
  std::mt19937 random(20);
  UnitLink fast(port, OwnTiming());
  for (int round = 0; round < 12; ++round) {
    const SignalStandardTable table = RandomTable(random, {.FitsTheWire = true});
    const TransferOutcome upload = RunUpload(fast, EncodeTable(table, 7), progress, [] { return false; });
    ASSERT_EQ(upload.Result, LinkTrue) << upload.Message;
    ASSERT_EQ(FinishTransfer(fast, upload), LinkAck);
    UnitTable held;
    const TransferOutcome download = RunDownload(fast, held, progress, [] { return false; });
    ASSERT_EQ(download.Result, LinkTrue) << download.Message;
    ASSERT_EQ(FinishTransfer(fast, download), LinkAck);
    ASSERT_EQ(held.Table, table) << "round " << round;
    ASSERT_EQ(held.UnitTableTag, 7);
  }
}

TEST_F(SerialPath, PulledCableEndsAWaitEarlyAndIsNamed) {
  ASSERT_EQ(link.OpenCommPort(1), 1);
  terminal.reset();
  std::string reply;
  EXPECT_EQ(link.ReadUnitIdentity(3600 * 1000, reply), LinkTimeout);
  ASSERT_TRUE(link.PortFailure());
  EXPECT_NE(std::string(link.PortFailure()->what()).find("was the cable pulled?"), std::string::npos);
  link.CloseCommPort();
  EXPECT_FALSE(port.IsOpen());
}

TEST_F(SerialPath, CableThatIsPulledWhileUploadingStopsTheUpload) {
  SignalStandardTable table;
  for (int index = 0; index < MaxRecords; ++index) table.Append({"0", 0, "Standard"});
  struct PullCable : TransferProgress {
    explicit PullCable(std::optional<PseudoTerminal>& line) : terminal(line) {}
    void SetValue(int value) override {
      last = value;
      if (value == 20) terminal.reset();
    }
    std::optional<PseudoTerminal>& terminal;
    int last = 0;
  } cable(terminal);
  ASSERT_EQ(link.OpenCommPort(1), 1);
  EXPECT_EQ(UploadChanplans(link, EncodeTable(table, 7), cable), LinkFalse);
  EXPECT_LT(cable.last, 1000);
  link.CloseCommPort();
}

TEST_F(SerialPath, PortIsFreeAfterATransferFailed) {
  terminal.reset();
  EXPECT_FALSE(ConnectToUnit(link).Accepted());
  EXPECT_FALSE(port.IsOpen());
  terminal.emplace(path);
  SerialPort second(path);
  UnitLink secondLink(second, Timing());
  EXPECT_TRUE(ConnectToUnit(secondLink).Accepted());
}

TEST_F(SerialPath, PortInUseIsRefusedToASecondProgram) {
  ASSERT_EQ(link.OpenCommPort(1), 1);
  SerialPort second(path);
  UnitLink secondLink(second, Timing());
  EXPECT_EQ(secondLink.OpenCommPort(1), 0);
  ASSERT_TRUE(secondLink.PortFailure());
  EXPECT_EQ(secondLink.PortFailure()->what(), path + " is in use by another program: close that first");
  link.CloseCommPort();
  EXPECT_EQ(secondLink.OpenCommPort(1), 1);
  secondLink.CloseCommPort();
}

TEST_F(SerialPath, ProbeTellsWhichPortsExist) {
  EXPECT_TRUE(link.ProbeCommPort(1));
  EXPECT_FALSE(port.IsOpen());
  SerialPort missing("/dev/no-such-port");
  UnitLink missingLink(missing, Timing());
  EXPECT_FALSE(missingLink.ProbeCommPort(1));
}

TEST(SerialPort, OpenFailuresSayWhatToDo) {
  const TempFolder folder;
  WriteFile(folder / "file", "");
  const struct {
    std::string Device;
    std::string Text;
  } cases[] = {
      {"/dev/no-such-port", "there is no port /dev/no-such-port: check the cable and the name"},
      {"no-such-port", "there is no port /dev/no-such-port: check the cable and the name"},
      {(folder / "file").string(), (folder / "file").string() + " is not a serial port"},
      {"/dev/null", "/dev/null is not a serial port, or nothing is connected to it"},
  };
  for (const auto& [device, text] : cases) {
    SerialPort port(device);
    UnitLink link(port, SystemTiming());
    EXPECT_EQ(link.OpenCommPort(1), 0) << device;
    ASSERT_TRUE(link.PortFailure()) << device;
    EXPECT_EQ(link.PortFailure()->what(), text);
  }
}

TEST(SerialPort, OtherSettingsThanEightBitsWithoutParityAreRefused) {
  SerialPort port("/dev/null");
  port.SetPortNumber(1);
  EXPECT_THROW(port.SetSettings("9600,E,7,1"), PortError);
  EXPECT_THROW(port.SetSettings("fast,N,8,1"), PortError);
}

TEST(SerialPort, NumbersStandForTheDevicesItIsGiven) {
  SerialPort port([](int number) { return number == 2 ? "/dev/no-such-port" : ""; });
  UnitLink link(port, SystemTiming());
  EXPECT_EQ(link.OpenCommPort(2), 0);
  EXPECT_EQ(std::string(link.PortFailure()->what()).find("there is no port /dev/no-such-port"), 0u);
  EXPECT_EQ(link.OpenCommPort(7), 0);
  EXPECT_STREQ(link.PortFailure()->what(), "there is no port 7: ports are numbered 1 to 6");
}

}  // namespace
}  // namespace chanplan::testing

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  const QCoreApplication application(argc, argv);
  return RUN_ALL_TESTS();
}
