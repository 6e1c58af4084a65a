#pragma once

namespace chanplan {

bool StandardErrorIsTerminal();

}  // namespace chanplan
