// The table of Signal Standards: its records, its groups, and passing whole tables between documents.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace chanplan {

/// Records a table holds at most, standards and sub-bands together.
inline constexpr int MaxRecords = 200;

/// Where start frequencies lie in a sound table, both bounds included.
inline constexpr double LowestMegahertz = 0;
inline constexpr double HighestMegahertz = 9000;

/// One table row: a Signal Standard, or one sub-band of the standard above it. Texts are
/// Windows-1252 bytes. The field order is the column order of the file and of the wire.
struct SignalStandardRecord {
  std::string State;             ///< packed flags as decimal text: bits 0-1 modulation, bit 7 display mode
  std::int32_t Subbands = 0;     ///< in a standard's row: sub-band rows that directly follow it
  std::string Name;              ///< the Signal Standard's name
  double UplinkStartFreq = 0;    ///< MHz
  double DownlinkStartFreq = 0;  ///< MHz
  std::int32_t StartChannel = 0;
  std::int32_t StopChannel = 0;
  double Bandwidth = 0;   ///< occupied bandwidth, MHz
  double Spacing = 0;     ///< channel spacing, MHz
  std::int32_t Step = 0;  ///< channel step, channels

  bool operator==(const SignalStandardRecord&) const = default;
};

/// The two low bits of `State`.
enum class ModulationType { None = 0, Cdma = 1, Gsm = 2, CdmaGsm = 3 };

/// Texts of the modulation types, indexed by their code.
inline constexpr std::array<std::string_view, 4> ModulationTexts = {"None", "CDMA", "GSM", "CDMA/GSM"};

/// The bit of `State` that holds the Active Display Mode.
inline constexpr std::int64_t ActiveDisplayBit = 128;

/// `State` as a whole number: the leading number of its text, rounded. Values beyond 64 bits saturate.
std::int64_t StateValue(const SignalStandardRecord& record);
ModulationType Modulation(const SignalStandardRecord& record);
std::string_view ModulationText(const SignalStandardRecord& record);
bool ActiveDisplayMode(const SignalStandardRecord& record);

/// A document's table: a value with room for `MaxRecords` rows. Rows 0 to `Count` - 1 are in use.
struct SignalStandardTable {
  std::array<SignalStandardRecord, MaxRecords> Records;
  std::int16_t Count = 0;

  /// Row `index`; throws std::out_of_range at 200 and above, also for rows not in use below it.
  SignalStandardRecord& Row(int index) { return Records.at(static_cast<std::size_t>(index)); }
  const SignalStandardRecord& Row(int index) const { return Records.at(static_cast<std::size_t>(index)); }

  /// Adds a row at the end; throws std::out_of_range when the table is full.
  void Append(SignalStandardRecord record);

  /// Tables are equal when their rows in use are.
  bool operator==(const SignalStandardTable& other) const;
};

/// The index after the last row of the group whose standard stands at `index`. A count of
/// sub-bands that points past the table's end (a damaged file) is cut at `Count`.
int GroupEnd(const SignalStandardTable& table, int index);

/// Table indices of the standards, found by walking the table group by group.
std::vector<int> StandardIndices(const SignalStandardTable& table);

/// Names of the standards in the order of `StandardIndices`: the name cells of a filled list view.
std::vector<std::string> ListNames(const SignalStandardTable& table);

/// The letter of a standard's sub-band `number` (1 = the first): A, B, ... Z, then the following
/// character codes. After code 255 the letters start again at A, so that no control character
/// ever gets into a name.
char SubbandLetter(int number);

/// The list of records in which a whole table is passed from one document to another.
using PassedRows = std::vector<SignalStandardRecord>;

/// Re-creates `rows` with `MaxRecords` empty records and copies the rows in use to its start.
void GetTable(const SignalStandardTable& table, PassedRows& rows);

/// Copies the records of `rows` (at most `MaxRecords`) into `table`. `Count` becomes the index
/// of the last record with a name plus 1, so it is 1 when no record has a name. Does not validate.
void SetTable(const PassedRows& rows, SignalStandardTable& table);

}  // namespace chanplan
