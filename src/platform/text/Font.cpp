#include "platform/text/Font.h"

#include <fmt/format.h>

namespace zv {

Font::Font(std::string family, double size, int weight, bool italic)
    : family_(std::move(family)), size_(size), weight_(weight), italic_(italic) {}

Font Font::systemFont(double size, int weight) { return Font(kSystemFamily, size, weight); }

std::string Font::description() const {
  return fmt::format("{} {}px {}{}", family_, size_, weight_, italic_ ? " italic" : "");
}

}  // namespace zv
