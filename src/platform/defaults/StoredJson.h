// StoredJson keeps a store from holding what it cannot read back, and reads back what it can of a
// value that is already unreadable. A stored value must be readable by ExactJson: at most
// kMaxDepth levels of arrays and dictionaries, finite numbers only, UTF-8 strings and keys. A
// value that breaks one of these is refused at the write (writeRefusal says why), so one bad push
// cannot cost the events and notifications stored beside it.
//
// A text that does not parse (written before the check, or by another program) is read piece by
// piece: the members of its top-level dictionary or array, and theirs, one level further down.
// Each piece that reads (and could be written again) is kept; only the unreadable ones are lost.
#pragma once

#include <boost/json/value.hpp>
#include <optional>
#include <string>
#include <string_view>

namespace zv {

class StoredJson {
 public:
  // The deepest nesting of arrays and dictionaries that ExactJson reads.
  static constexpr int kMaxDepth = 512;

  // Why value cannot be stored ("nested deeper than 512 levels", "holds the number inf", ...);
  // empty when it can.
  static std::string writeRefusal(const boost::json::value& value);

  // The readable part of text: all of it when it parses; else, when it is a dictionary or an
  // array, its members that can be read, looked into two levels deep. *dropped counts the pieces
  // left out. nullopt when nothing can be read.
  static std::optional<boost::json::value> salvage(std::string_view text, int* dropped);
};

}  // namespace zv
