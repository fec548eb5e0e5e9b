// The two log outlets of the system. The log sink receives every diagnostic message of the library
// and discards it unless a host, the CLI or a test installs a receiver. The system log receives the
// few messages that bypass the sink ("Attachment Download failure", a failed HTML parse); it writes
// to stderr unless replaced. Both are safe to use and to replace from any thread.
#pragma once

#include <functional>
#include <string>

namespace zv::log {

using Receiver = std::function<void(const std::string& message)>;

// The log sink. Discards messages until a receiver is installed; an empty receiver restores that.
void setSinkReceiver(Receiver receiver);
void sink(const std::string& message);

// The system log. Writes a line to stderr until another receiver is installed; an empty receiver
// restores stderr.
void setSystemReceiver(Receiver receiver);
void system(const std::string& message);

}  // namespace zv::log
