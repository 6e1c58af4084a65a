// The setting that every program reads.
#pragma once

#include <string>

namespace chanplan {

/// The device of port `number`: the one that the setting "CommDevice<number>" in section "Settings" names, otherwise
/// the platform's usual one, which only 1 to 6 have; "" where there is neither. UTF-8.
std::string CommDevice(int number);

}  // namespace chanplan
