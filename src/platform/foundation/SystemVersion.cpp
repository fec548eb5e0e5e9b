#include "platform/foundation/SystemVersion.h"

#include <atomic>

namespace zv {

namespace {
std::atomic<double> version{17.0};
}  // namespace

double systemVersion() { return version.load(); }
void setSystemVersion(double v) { version.store(v); }

}  // namespace zv
