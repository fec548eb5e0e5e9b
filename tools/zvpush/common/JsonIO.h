// JSON in and out for zvpush commands: reading a file (or "-" for stdin) that must hold one JSON
// object, and printing values as indented JSON with keys in insertion order.
#pragma once

#include <boost/json/value.hpp>
#include <string>

#include "zentrova/Value.h"

namespace zvpush {

// The bytes of a file, or of stdin for "-". Throws UsageError when it cannot be read.
std::string readInput(const std::string& path);
// A file that must hold one JSON object. Throws UsageError with a one-line reason otherwise.
zv::Value readJsonObject(const std::string& path);
// Indented JSON text (two spaces), or one line after setCompact(true) (--compact), ending without
// a newline.
std::string pretty(const boost::json::value& v);
void setCompact(bool compact);
bool isCompact();

}  // namespace zvpush
