/// The end of the program by a signal.
#pragma once

#include <string>

namespace NorvexExport {

/// From now on SIGINT, SIGTERM and SIGHUP end the program at once, whatever it is about, with one line on standard
/// error, the status 128 and the signal's number, and nothing left behind that was begun. Those that whoever started
/// the program has it ignore are ignored. To be called before any thread is made.
void TakeOverSignals(const std::string& program);

}  // namespace NorvexExport
