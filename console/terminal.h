#pragma once

namespace chanplan {

bool StandardErrorIsTerminal();
bool StandardOutputIsTerminal();

}  // namespace chanplan
