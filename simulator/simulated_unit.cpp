#include "simulator/simulated_unit.h"

#include <utility>

#include "core/sig_file.h"
#include "core/text_encoding.h"
#include "unit/tracing_port.h"
#include "unit/wire_encoding.h"

namespace chanplan {
namespace {

constexpr std::size_t BytesPerLine = 16;  // of the trace

std::size_t TableSize(std::string_view header) {
  return WireHeaderSize + WireRecordSize * static_cast<std::size_t>(TwoBytesToInteger(header.substr(2)));
}

// Bytes that look random and are the same every time: the fault can be told from a new one.
std::string Noise(std::size_t size) {
  std::string noise;
  for (unsigned state = 12345; noise.size() < size;) {
    state = state * 1103515245u + 12345u;
    noise += static_cast<char>(state >> 16);
  }
  return noise;
}

std::string FieldsLine(const SignalStandardRecord& record) {
  std::string line;
  for (const std::string& field : FieldTexts(record)) line += line.empty() ? field : " | " + field;
  return Utf8FromWindows1252(line);
}

}  // namespace

SimulatedUnit::SimulatedUnit(const SimulatedUnitOptions& unitOptions, TraceWriter traceWriter)
    : options(unitOptions), writeTrace(std::move(traceWriter)), memory(EncodeTable(options.Table, options.Tag)) {}

std::string SimulatedUnit::Receive(std::string_view bytes) {
  std::string reply;
  for (const char byte : bytes) {
    untracedBytes += byte;
    if (untracedBytes.size() == BytesPerLine) TraceBytes();
    if (!LosesByte(receivesTable ? commands : commands + 1)) ReceiveByte(byte, reply);
  }
  std::erase_if(reply, [this](char) { return LosesByte(commands); });
  return reply;
}

std::string SimulatedUnit::TakeLateEchoes() { return std::exchange(lateEchoes, {}); }

void SimulatedUnit::LineIsQuiet() {
  TraceBytes();
  if (!receivesTable) return;
  Trace("upload ended early: " + std::to_string(upload.size()) + " bytes came; the table stays as it was");
  receivesTable = false;
}

SignalStandardTable SimulatedUnit::Table() const {
  SignalStandardTable table;
  for (std::size_t start = WireHeaderSize; start < memory.size(); start += WireRecordSize)
    table.Append(DecodeRecord(std::string_view(memory).substr(start, WireRecordSize)));
  return table;
}

void SimulatedUnit::TraceBytes() {
  if (!untracedBytes.empty()) writeTrace("received " + HexLine(untracedBytes));
  untracedBytes.clear();
}

void SimulatedUnit::Trace(const std::string& event) {
  TraceBytes();
  writeTrace(event);
}

// `command` is the one that the byte belongs to.
bool SimulatedUnit::LosesByte(int command) {
  if (options.Misbehaviour != Fault::DropEveryNthByte || command < options.FaultFrom) return false;
  return ++bytesOnLine % options.DropInterval == 0;
}

void SimulatedUnit::ReceiveByte(char byte, std::string& reply) {
  if (off || hangsUp) return;
  if (!receivesTable) ++commands;
  if (Has(Fault::Echo)) reply += byte;
  if (receivesTable)
    ReceiveTableByte(byte);
  else
    ReceiveCommand(byte, reply);
}

void SimulatedUnit::ReceiveCommand(char command, std::string& reply) {
  if (Has(Fault::Silent) || (Has(Fault::SilentAfterIdentify) && identified)) {
    Trace("keeps silent");
    return;
  }
  switch (command) {
    case IdentifyCommand:
      Trace("identifies itself as " + Utf8FromWindows1252(options.Model + " with firmware " + options.Firmware));
      identified = true;
      reply += IdentityReply();
      break;
    case SendTableCommand:
      Trace("sends its table of " + std::to_string(Table().Count) + " records");
      reply += TableReply();
      break;
    case ReceiveTableCommand:
      Trace("is to receive a table");
      receivesTable = true;
      upload.clear();
      break;
    case SyncByte:
      Trace("echoes the sync byte");
      (Has(Fault::LateEcho) ? lateEchoes : reply) += Has(Fault::Garbage) ? Noise(1) : std::string(1, SyncByte);
      break;
    default:
      Trace("does not know this command");
  }
}

void SimulatedUnit::ReceiveTableByte(char byte) {
  upload += byte;
  if (upload.size() < WireHeaderSize) return;
  const std::size_t size = TableSize(upload);
  if (Has(Fault::HangUp) && upload.size() >= size / 2) hangsUp = true;
  if (hangsUp) return;
  if (Has(Fault::OffInUpload) && upload.size() >= size / 2) return SwitchOff();
  if (upload.size() < size) return;
  receivesTable = false;
  if (TwoBytesToInteger(std::string_view(upload).substr(2)) > MaxRecords) {
    Trace("has no room for so many records; the table stays as it was");
    return;
  }
  memory = std::exchange(upload, {});
  ++uploads;
  const SignalStandardTable table = Table();
  Trace("has received a table of " + std::to_string(table.Count) + " records");
  for (int index = 0; index < table.Count; ++index)
    Trace("  " + std::to_string(index + 1) + ": " + FieldsLine(table.Row(index)));
}

void SimulatedUnit::SwitchOff() {
  Trace("is switched off; the table stays as it was");
  off = true;
  receivesTable = false;
}

std::string SimulatedUnit::TableReply() {
  std::string reply = memory;
  const int count = TwoBytesToInteger(std::string_view(reply).substr(2));
  if (Has(Fault::TruncateReply) || Has(Fault::HangUp)) reply.resize(reply.size() / 2);
  if (Has(Fault::HangUp)) hangsUp = true;
  if (Has(Fault::Garbage)) reply = Noise(reply.size());
  if (Has(Fault::WrongCount)) reply.replace(2, 2, IntegerToTwoBytes(count + 1));
  if (Has(Fault::TooMany)) {
    reply.replace(2, 2, IntegerToTwoBytes(MaxRecords + 1));
    for (int number = count + 1; number <= MaxRecords + 1; ++number)
      reply += EncodeRecord({"2", 0, "X" + std::to_string(number)}, number);
  }
  return reply;
}

std::string SimulatedUnit::IdentityReply() const {
  std::string reply(2, '\0');
  reply += options.Model.substr(0, ModelSize);
  reply.resize(2 + ModelSize, ' ');
  reply += options.Firmware.substr(0, FirmwareSize);
  reply.resize(2 + ModelSize + FirmwareSize, ' ');
  return reply;
}

}  // namespace chanplan
