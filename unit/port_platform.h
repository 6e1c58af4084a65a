// What the platform knows about serial ports and sleeping. One implementation a platform.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace chanplan {

/// The device usually behind port `number` (1 to 6), "" for others.
std::string UsualDevice(int number);

/// The path of a device named as people name it, such as "ttyUSB0".
std::string DevicePath(const std::string& name);

/// Whether there is such a device, whoever may use it.
bool PortExists(const std::string& device);

/// Why `device` cannot be opened and what to do about it; nothing when the platform sees no reason.
std::optional<std::string> PortProblem(const std::string& device);

/// Sleeps for `duration`, waking late by no more than some 0.1 ms while the machine is not busy.
void ShortSleep(std::chrono::nanoseconds duration);

// Where the port is the platform library's, which is not on Windows:

/// Whether the system took `byte` for the open port `handle` at once.
bool WriteByteAtOnce(std::intptr_t handle, char byte);

/// Whether the line behind the open port `handle` is gone, and nothing of what came from it is left to read.
bool HasHungUp(std::intptr_t handle);

}  // namespace chanplan
