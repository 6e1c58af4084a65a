// The setting that every program reads.
#pragma once

#include <string>

namespace chanplan {

/// The device of port `number` (1 to 6): the one that the setting "CommDevice<number>" in section
/// "Settings" names, otherwise the platform's usual one; "" for other numbers. UTF-8.
std::string CommDevice(int number);

}  // namespace chanplan
