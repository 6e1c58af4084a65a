// A handheld unit as the link meets it: it knows nothing but bytes.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tests/unit/hand_driven_link.h"
#include "tests/unit/wire_bytes.h"

namespace chanplan::testing {

/// What a unit answers when it is asked who it is. `model` has 7 characters, `firmware` 4.
inline std::string IdentityReply(std::string_view model, std::string_view firmware) {
  return std::string("\x01\x02").append(model).append(firmware);
}

/// Identifies itself, sends and receives a table and echoes the sync byte, each within 5 ms.
class FakeUnit {
 public:
  std::string Identity = IdentityReply("XY1234D", "3.00");
  std::string TableBytes = TableHeader(7, 0);  ///< header and records
  int TablesReceived = 0;

  /// The rest of an upload does not come any more.
  void ForgetUpload() { receiving = false; }

  /// For the port that this unit is connected to.
  PortScript Script() {
    return [this](std::string_view sent) { return Hear(sent.back()); };
  }

 private:
  std::vector<DelayedBytes> Hear(char byte) {
    if (receiving) {
      received += byte;
      if (received.size() == SizeOf(received)) {
        receiving = false;
        TableBytes = received;
        ++TablesReceived;
      }
      return {};
    }
    switch (byte) {
      case 0x45:
        return {{Identity, 5}};
      case 0x4F:
        return {{TableBytes, 5}};
      case 0x4E:
        receiving = true;
        received.clear();
        return {};
      case '\xFF':
        return {{"\xFF", 5}};
      default:
        return {};
    }
  }

  static std::size_t SizeOf(std::string_view table) {
    if (table.size() < 4) return 4;
    return 4 + 48 * (static_cast<std::size_t>(static_cast<unsigned char>(table[2])) * 256 +
                     static_cast<unsigned char>(table[3]));
  }

  bool receiving = false;
  std::string received;
};

}  // namespace chanplan::testing
