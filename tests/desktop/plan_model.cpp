#include "tests/desktop/plan_model.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace chanplan::testing {
namespace {

Fixed ToFixed(double value) { return std::llround(value * static_cast<double>(FixedOne)); }

// Exactly the double that the decimal number stands for.
double ToDouble(Fixed value) {
  const std::string digits = std::to_string(value) + "e-8";
  return std::strtod(digits.c_str(), nullptr);
}

// "#0.0000": halves go away from zero.
std::string FourDecimals(Fixed value) {
  const Fixed units = (value + 5000) / 10000;
  std::string digits = std::to_string(units % 10000);
  digits.insert(0, 4 - digits.size(), '0');
  return std::to_string(units / 10000) + "." + digits;
}

// Digits with at most one point, as the box lets them in.
Fixed FixedOf(const std::string& text) {
  const std::size_t point = std::min(text.find('.'), text.size());
  std::string decimals = point < text.size() ? text.substr(point + 1) : "";
  decimals.resize(8, '0');
  const std::string whole = text.substr(0, point);
  return (whole.empty() ? 0 : std::stoll(whole)) * FixedOne + std::stoll(decimals);
}

int WholeOf(const std::string& text) { return text.empty() ? 0 : std::stoi(text); }

}  // namespace

PlanBox::PlanBox(CellKind cellKind, std::string shown) : kind(cellKind), text(shown), original(std::move(shown)) {}

std::size_t PlanBox::Most() const { return kind == CellKind::Text ? 24 : kind == CellKind::Whole ? 7 : 9; }

bool PlanBox::Takes(const std::string& inserted) const {
  const std::string besides = allSelected ? "" : text;
  if (besides.size() + inserted.size() > Most()) return false;
  int points = static_cast<int>(std::ranges::count(besides, '.'));
  for (const char character : inserted) {
    const bool digit = character >= '0' && character <= '9';
    if (kind == CellKind::Text && (character < ' ' || character > '~')) return false;
    if (kind == CellKind::Whole && !digit) return false;
    if (kind == CellKind::Decimal && !digit && (character != '.' || ++points > 1)) return false;
  }
  return true;
}

void PlanBox::Type(char character) {
  if (!Takes({character})) return;
  text = allSelected ? std::string(1, character) : text + character;
  allSelected = false;
  edited = true;
}

void PlanBox::Backspace() {
  if (allSelected)
    text.clear();
  else if (!text.empty())
    text.pop_back();
  allSelected = false;
  edited = true;
}

void PlanBox::UndoAll() {
  // Undoing selects what came back; the cursor is put behind the text then.
  text = original;
  allSelected = false;
}

void PlanBox::Paste(const std::string& pasted) {
  const std::size_t first = pasted.find_first_not_of(" \n\t");
  const std::string trimmed =
      first == std::string::npos ? "" : pasted.substr(first, pasted.find_last_not_of(" \n\t") + 1 - first);
  for (const std::string& candidate : {pasted, trimmed})
    if (Takes(candidate)) {
      text = allSelected ? candidate : text + candidate;
      allSelected = false;
      edited = true;
      return;
    }
}

void PlanPast::Note(const Plan& plan, int rowBefore, int rowAfter) {
  if (plan == Present()) return;
  moments.erase(moments.begin() + Back() + 1, moments.end());
  moments.push_back({plan, rowBefore, rowAfter, ++last});
  if (moments.size() > Most) moments.erase(moments.begin());
  present = moments.size() - 1;
}

PlanModel::PlanModel(const SignalStandardTable& table) {
  for (int index = 0; index < table.Count;) {
    const SignalStandardRecord& head = table.Row(index);
    Standards.push_back({head.Name,
                         std::stoi(head.State),
                         ToFixed(head.UplinkStartFreq),
                         ToFixed(head.DownlinkStartFreq),
                         head.StartChannel,
                         head.StopChannel,
                         ToFixed(head.Bandwidth),
                         ToFixed(head.Spacing),
                         head.Step,
                         {}});
    for (int band = 1; band <= head.Subbands; ++band) {
      const SignalStandardRecord& row = table.Row(index + band);
      Standards.back().Bands.push_back(
          {ToFixed(row.UplinkStartFreq), ToFixed(row.DownlinkStartFreq), row.StartChannel, row.StopChannel});
    }
    index += 1 + head.Subbands;
  }
}

int PlanModel::Records() const {
  std::size_t records = Standards.size();
  for (const PlanStandard& standard : Standards) records += standard.Bands.size();
  return static_cast<int>(records);
}

Fixed* PlanModel::Decimal(PlanStandard& standard, int row) const {
  return row == 4   ? &standard.Uplink
         : row == 5 ? &standard.Downlink
         : row == 8 ? &standard.Bandwidth
         : row == 9 ? &standard.Spacing
                    : nullptr;
}

int* PlanModel::Whole(PlanStandard& standard, int row) const {
  return row == 6 ? &standard.Start : row == 7 ? &standard.Stop : row == 10 ? &standard.Step : nullptr;
}

std::string PlanModel::Shown(int standard, int row) const {
  PlanStandard shown = Standards[static_cast<std::size_t>(standard)];
  if (row == 0) return shown.Name;
  if (row == 1) return std::to_string(shown.Bands.size());
  if (const Fixed* value = Decimal(shown, row)) return FourDecimals(*value);
  return std::to_string(*Whole(shown, row));
}

std::string PlanModel::ShownBand(int standard, int band, int column) const {
  const PlanBand& shown = Standards[static_cast<std::size_t>(standard)].Bands[static_cast<std::size_t>(band)];
  return column == 1   ? FourDecimals(shown.Uplink)
         : column == 2 ? FourDecimals(shown.Downlink)
         : column == 3 ? std::to_string(shown.Start)
                       : std::to_string(shown.Stop);
}

void PlanModel::Store(int standard, int row, const std::string& text) {
  PlanStandard& stored = Standards[static_cast<std::size_t>(standard)];
  if (row == 0)
    stored.Name = text;
  else if (Fixed* value = Decimal(stored, row))
    *value = FixedOf(text);
  else
    *Whole(stored, row) = WholeOf(text);
}

void PlanModel::StoreBand(int standard, int band, int column, const std::string& text) {
  if (text.find_first_of("0123456789") == std::string::npos) return;  // no number: the old value is kept
  PlanBand& stored = Standards[static_cast<std::size_t>(standard)].Bands[static_cast<std::size_t>(band)];
  if (column == 1) stored.Uplink = FixedOf(text);
  if (column == 2) stored.Downlink = FixedOf(text);
  if (column == 3) stored.Start = WholeOf(text);
  if (column == 4) stored.Stop = WholeOf(text);
}

bool PlanModel::SetCount(int standard, int count) {
  std::vector<PlanBand>& bands = Standards[static_cast<std::size_t>(standard)].Bands;
  const int others = Records() - static_cast<int>(bands.size());
  const int room = std::max(199 - others, static_cast<int>(bands.size()));
  bands.resize(static_cast<std::size_t>(std::min(count, room)));
  return count <= room;
}

bool PlanModel::Append() {
  if (Records() >= 200) return false;
  PlanStandard added;
  added.Name = "[New Standard]";
  Standards.push_back(added);
  return true;
}

SignalStandardTable PlanModel::Table() const {
  SignalStandardTable table;
  for (const PlanStandard& head : Standards) {
    table.Append({std::to_string(head.Modulation), static_cast<int>(head.Bands.size()), head.Name,
                  ToDouble(head.Uplink), ToDouble(head.Downlink), head.Start, head.Stop, ToDouble(head.Bandwidth),
                  ToDouble(head.Spacing), head.Step});
    char letter = 'A';
    for (const PlanBand& band : head.Bands)
      table.Append({"", 0, head.Name + "(" + std::string(1, letter++) + ")", ToDouble(band.Uplink),
                    ToDouble(band.Downlink), band.Start, band.Stop, ToDouble(head.Bandwidth), ToDouble(head.Spacing),
                    head.Step});
  }
  return table;
}

}  // namespace chanplan::testing
