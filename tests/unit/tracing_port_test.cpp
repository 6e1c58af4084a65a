#include "unit/tracing_port.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tests/unit/fake_unit.h"
#include "tests/unit/hand_driven_link.h"
#include "unit/unit_connection.h"

namespace chanplan::testing {
namespace {

using Lines = std::vector<std::string>;

// A traced port; Lines are without the blanks that they begin with.
struct Trace {
  HandDrivenClock Clock;
  FakePort Port{Clock};
  Lines Written;
  TracingPort Tracing{Port, [this] { return Clock.Time; },
                      [this](const std::string& line) { Written.push_back(line.substr(line.find_first_not_of(' '))); }};

  void Send(std::string_view bytes) {
    for (const char byte : bytes) Tracing.TransmitCommChar(1, byte);
  }
  void Receive(const std::string& bytes) {
    Port.Arrive(bytes);
    Tracing.ReadInput();
  }
};

TEST(HexLine, ShowsBytesAndTheTextAmongThem) {
  EXPECT_EQ(HexLine("E"), "45  |E|");
  EXPECT_EQ(HexLine("\x01\x02QX"), "01 02 51 58  |..QX|");
  EXPECT_EQ(HexLine(Bytes({0x00, 0x1F, 0x20, 0x7E, 0x7F, 0x80, 0xFF})), "00 1F 20 7E 7F 80 FF  |.. ~...|");
}

TEST(TracingPort, StartsALineWithTheSecondsInAColumnOfTheirOwn) {
  HandDrivenClock clock;
  FakePort port(clock);
  Lines lines;
  clock.Time = 5s;
  {
    TracingPort tracing(
        port, [&] { return clock.Time; }, [&](const std::string& line) { lines.push_back(line); });
    clock.Time = 5s + 12ms;
    tracing.Open();
    tracing.TransmitCommChar(1, 'E');
    clock.Time = 5s + 123456ms;
    tracing.Close();
  }
  EXPECT_EQ(lines, (Lines{"  0.012 * port opened", "  0.012 > 45  |E|", "123.456 * port closed"}));
}

TEST(TracingPort, ShowsOpeningSettingsAndClosing) {
  Trace trace;
  trace.Tracing.SetPortNumber(1);
  trace.Tracing.SetSettings("9600,N,8,1");
  trace.Clock.Time += 1500ms;
  trace.Tracing.Open();
  trace.Clock.Time += 1ms;
  trace.Tracing.Close();
  EXPECT_EQ(trace.Written, (Lines{"0.000 * settings 9600,N,8,1", "1.500 * port opened", "1.501 * port closed"}));
}

TEST(TracingPort, ShowsWhyThePortDidNotOpen) {
  Trace trace;
  trace.Port.RefusedCall = "open";
  EXPECT_THROW(trace.Tracing.Open(), PortError);
  EXPECT_EQ(trace.Written, Lines{"0.000 * refused: open"});
}

TEST(TracingPort, PutsBytesOfOneDirectionOnALine) {
  Trace trace;
  trace.Tracing.Open();
  trace.Send("AB");
  trace.Receive("cd");
  trace.Receive("ef");
  trace.Send("G");
  trace.Tracing.Close();
  EXPECT_EQ(trace.Written, (Lines{"0.000 * port opened", "0.000 > 41 42  |AB|", "0.000 < 63 64 65 66  |cdef|",
                                  "0.000 > 47  |G|", "0.000 * port closed"}));
}

TEST(TracingPort, PutsUpToSixteenBytesOnALine) {
  Trace trace;
  trace.Tracing.Open();
  trace.Receive("0123456789ABCDEF");
  EXPECT_EQ(trace.Written.size(), 1u);
  trace.Receive("0123456789ABCDEFg");
  trace.Tracing.Close();
  EXPECT_EQ(trace.Written,
            (Lines{"0.000 * port opened", "0.000 < 30 31 32 33 34 35 36 37 38 39 41 42 43 44 45 46  |0123456789ABCDEF|",
                   "0.000 < 30 31 32 33 34 35 36 37 38 39 41 42 43 44 45 46  |0123456789ABCDEF|", "0.000 < 67  |g|",
                   "0.000 * port closed"}));
}

TEST(TracingPort, DatesALineByItsFirstByte) {
  Trace trace;
  trace.Tracing.Open();
  trace.Clock.Time = 2s;
  trace.Send("A");
  trace.Clock.Time = 3s;
  trace.Send("B");
  trace.Clock.Time = 4s;
  trace.Receive("C");
  trace.Clock.Time = 5s;
  trace.Tracing.Close();
  EXPECT_EQ(trace.Written,
            (Lines{"0.000 * port opened", "2.000 > 41 42  |AB|", "4.000 < 43  |C|", "5.000 * port closed"}));
}

TEST(TracingPort, WritesWhatIsLeftWhenItGoes) {
  HandDrivenClock clock;
  FakePort port(clock);
  Lines lines;
  {
    TracingPort tracing(
        port, [&] { return clock.Time; }, [&](const std::string& line) { lines.push_back(line); });
    tracing.Open();
    tracing.TransmitCommChar(1, 'E');
    EXPECT_EQ(lines.size(), 1u);
  }
  ASSERT_EQ(lines.size(), 2u);
  EXPECT_TRUE(lines[1].ends_with("> 45  |E|"));
}

TEST(TracingPort, SaysNothingAboutInputThatIsEmpty) {
  Trace trace;
  trace.Tracing.Open();
  trace.Tracing.ReadInput();
  trace.Tracing.BytesWaiting();
  trace.Tracing.Close();
  EXPECT_EQ(trace.Written, (Lines{"0.000 * port opened", "0.000 * port closed"}));
}

TEST(TracingPort, PassesEverythingOn) {
  Trace trace;
  trace.Port.HandleWhenOpen = 4711;
  trace.Tracing.SetPortNumber(2);
  trace.Tracing.SetSettings("9600,N,8,1");
  trace.Tracing.SetReceiveBufferSize(10);
  trace.Tracing.SetTransmitBufferSize(20);
  trace.Tracing.SetInputLength(0);
  EXPECT_FALSE(trace.Tracing.IsOpen());
  trace.Tracing.Open();
  EXPECT_TRUE(trace.Tracing.IsOpen());
  EXPECT_EQ(trace.Tracing.Handle(), 4711);
  trace.Tracing.TransmitCommChar(4711, 'x');
  trace.Port.Arrive("abc");
  EXPECT_EQ(trace.Tracing.BytesWaiting(), 3u);
  EXPECT_EQ(trace.Tracing.ReadInput(), "abc");
  trace.Tracing.DiscardReceived();
  trace.Tracing.DiscardTransmitted();
  EXPECT_EQ(trace.Tracing.Failure(), std::nullopt);
  trace.Port.BreaksAt = trace.Clock.Time;
  EXPECT_TRUE(trace.Tracing.Failure().has_value());
  trace.Tracing.Close();
  EXPECT_FALSE(trace.Tracing.IsOpen());
  EXPECT_EQ(trace.Port.Calls, (Lines{"port number 2", "settings 9600,N,8,1", "receive buffer 10", "transmit buffer 20",
                                     "input length 0", "open", "discard received", "discard transmitted", "close"}));
  EXPECT_EQ(trace.Port.SentBytes(), "x");
  EXPECT_EQ(trace.Port.Sent.at(0).Handle, 4711);
}

TEST(TracingPort, ShowsAWholeConversation) {
  Trace trace;
  FakeUnit unit;
  trace.Port.Script = unit.Script();
  UnitLink link(trace.Tracing, trace.Clock.Timing());
  EXPECT_TRUE(ConnectToUnit(link).Accepted());
  Lines withoutTimes;
  for (const std::string& line : trace.Written) withoutTimes.push_back(line.substr(line.find(' ') + 1));
  EXPECT_EQ(withoutTimes, (Lines{"* settings 9600,N,8,1", "* port opened", "> 45  |E|",
                                 "< 01 02 58 59 31 32 33 34 44 33 2E 30 30  |..XY1234D3.00|", "> FF  |.|", "< FF  |.|",
                                 "* port closed"}));
}

}  // namespace
}  // namespace chanplan::testing
