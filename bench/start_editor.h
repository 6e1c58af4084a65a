// The editor, started as its program starts it.
#pragma once

#include <memory>

#include "app/app_main.h"
#include "app/frm_main.h"
#include "editor/frm_document.h"
#include "settings/user_settings.h"
#include "unit/serial_port.h"
#include "unit/system_timing.h"

namespace chanplan {

inline std::unique_ptr<AppMain> StartEditor() {
  auto app = std::make_unique<AppMain>(std::make_unique<SerialPort>(CommDevice), SystemTiming(), frmDocument::Make);
  app->Main();
  return app;
}

}  // namespace chanplan
