#include "zentrova/Exception.h"

#include <utility>

namespace zv {

// Out of line: the library is where the class's vtable and type information live, so that a host
// catches what the library throws by the one type.
Exception::~Exception() = default;

Exception::Exception(std::string name, std::string reason, Value userInfo)
    : name_(std::move(name)), reason_(std::move(reason)), userInfo_(std::move(userInfo)) {}

void Exception::raise(std::string name, std::string reason) {
  throw Exception(std::move(name), std::move(reason));
}

}  // namespace zv
