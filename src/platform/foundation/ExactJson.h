// ExactJson reads the JSON text of a stored value back into exactly the value that was written.
// Boost.JSON's own parser in this Boost release may land one unit in the last place away from a
// floating-point number written by its serialiser (1700000086.8022773 comes back as ...771), so a
// time stamp with a fraction would drift on every read-modify-write. This parser keeps Boost's
// tokeniser and tree but converts every floating-point number from its text with std::from_chars,
// which is exact; integers stay integers, floating-point numbers stay floating-point. (Boost's
// serialiser already writes the shortest text that reads back exactly.)
#pragma once

#include <boost/json/value.hpp>
#include <string_view>

namespace zv {

class ExactJson {
 public:
  // Raises zv::Exception (name "JSONParseException") on invalid JSON or invalid UTF-8, and when
  // nesting is deeper than 512 levels.
  static boost::json::value parse(std::string_view text);
};

}  // namespace zv
