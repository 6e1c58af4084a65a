#include "unit/unit_line.h"

#include <algorithm>

#include "unit/wire_encoding.h"

namespace chanplan {

void UnitLine::Opened(Time now) {
  openedAt = now;
  lastHeard = now;
  answeredSinceOpened = false;
}

void UnitLine::CommandSent(Time now) {
  lastAsked = now;
  owesAnswer = true;
}

void UnitLine::SyncSent(Time now) {
  lastAsked = now;
  ++owedEchoes;
}

void UnitLine::Answered(Time now) {
  lastHeard = now;
  owesAnswer = false;
  owedEchoes = 0;
  answeredSinceOpened = true;
}

void UnitLine::Heard(std::string_view bytes, Time now) {
  if (bytes.empty()) return;
  lastHeard = now;
  owedEchoes = std::max(0, owedEchoes - static_cast<int>(std::ranges::count(bytes, SyncByte)));
}

bool UnitLine::IsQuiet(Time now, Time quiet) const {
  return now - lastHeard >= quiet && (!Owes() || now - lastAsked > LatestAnswer);
}

std::size_t EchoesInFront(std::string_view answer, std::size_t size) {
  const std::size_t surplus = answer.size() - std::min(answer.size(), size);
  return std::min(surplus, std::min(answer.find_first_not_of(SyncByte), answer.size()));
}

}  // namespace chanplan
