// zv::Font names a font the way labels and the text measurer need it: a family, a size in pixels
// (points and pixels are the same unit on this platform), a CSS weight from 1 to 1000 (400 regular,
// 700 bold) and whether it is italic. The system font is the family "-apple-system", which is what
// the rich-text style template asks for; the measurer decides which real face stands in for it.
#pragma once

#include <string>

namespace zv {

class Font {
 public:
  static constexpr const char* kSystemFamily = "-apple-system";
  static constexpr int kRegular = 400;
  static constexpr int kBold = 700;

  Font() = default;
  Font(std::string family, double size, int weight = kRegular, bool italic = false);
  static Font systemFont(double size, int weight = kRegular);

  const std::string& family() const { return family_; }
  double size() const { return size_; }
  int weight() const { return weight_; }
  bool italic() const { return italic_; }

  // "-apple-system 17px 400", with " italic" when italic.
  std::string description() const;
  bool operator==(const Font&) const = default;

 private:
  std::string family_ = kSystemFamily;
  double size_ = 17.0;
  int weight_ = kRegular;
  bool italic_ = false;
};

}  // namespace zv
