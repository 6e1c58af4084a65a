// The platform library's application object, which its ports and fonts need while they are used.
// Making one takes time: commands that use neither do without.
#pragma once

#include <QCoreApplication>
#include <memory>

namespace chanplan {

/// For serial ports.
std::unique_ptr<QCoreApplication> MakePortApplication();

/// For fonts and PDF files; needs no screen, and uses none.
std::unique_ptr<QCoreApplication> MakePrintApplication();

}  // namespace chanplan
