#pragma once

#include <QString>
#include <functional>

namespace mosswick {

// The few lines Mosswick leaves for the user in the system log: written to syslog and to standard
// error with a journal priority prefix, so they land in the journal either way.
namespace SystemLog {

void warning(const QString& line);

// Replaces where lines go (nothing installed: the system log), for tests.
void setSink(std::function<void(const QString&)> sink);

}  // namespace SystemLog

}  // namespace mosswick
