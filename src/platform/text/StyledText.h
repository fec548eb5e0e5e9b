// zv::StyledText is a string with attribute runs, the platform's mutable attributed string: the
// characters are UTF-16 code units and every position, length and range counts in those units, as
// the platform's string ranges do. Each character belongs to exactly one run; a run shares one
// immutable attribute set. The operations are the few the rich-text code needs: append, read the
// attributes at a position, remove one attribute over a range, walk one attribute's runs in
// ascending order, delete characters inside an editing batch, and the plain characters.
// Not thread-safe: one owner at a time.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/text/Font.h"
#include "platform/text/TextAttributes.h"

namespace zv {

struct TextRange {
  size_t location = 0;
  size_t length = 0;
  size_t end() const { return location + length; }
  bool operator==(const TextRange&) const = default;
};

class StyledText {
 public:
  using AttributesRef = std::shared_ptr<const TextAttributes>;
  struct Run {
    size_t length;
    AttributesRef attributes;
  };
  using AttributeVisitor =
      std::function<void(const std::optional<AttributeValue>& value, TextRange range, bool& stop)>;

  // Walking option: neighbouring runs with the same value may be reported separately. Without it,
  // the walk merges them into their longest effective range.
  static constexpr unsigned kLongestEffectiveRangeNotRequired = 1u << 20;

  StyledText() = default;
  explicit StyledText(std::string_view utf8, TextAttributes attributes = {});

  size_t length() const { return chars_.size() - pendingLength_; }
  const std::u16string& characters() const;
  // The plain characters as UTF-8.
  std::string string() const;
  const std::vector<Run>& runs() const;

  void append(std::u16string_view text, const AttributesRef& attributes);
  void append(std::string_view utf8, const AttributesRef& attributes);

  // The attributes of the character at index, and the run's range. Raises "NSRangeException" when
  // index is not below length().
  const TextAttributes& attributesAt(size_t index, TextRange* effectiveRange = nullptr) const;
  // The font of the character at index: its family, size, weight and italic, each defaulting to
  // the system font at 17 px regular. nullopt for an empty text.
  std::optional<Font> fontAt(size_t index) const;

  // Each raises "NSRangeException" when the range reaches past the end.
  void removeAttribute(Attribute attribute, TextRange range);
  void enumerateAttribute(Attribute attribute, TextRange range, unsigned options,
                          const AttributeVisitor& visit) const;
  void deleteCharacters(TextRange range);

  // An editing batch: runs are tidied (equal neighbours merged) when the outermost batch closes
  // instead of after every change, and deletions that go from the start towards the end are
  // gathered and carried out in one pass, so that thousands of them stay linear. Every read sees
  // the text with all deletions made. Batches nest.
  void beginEditing() { ++editing_; }
  void endEditing();

 private:
  void checkRange(TextRange range, const char* operation) const;
  // Splits the run holding position pos so that a run starts there; returns that run's index.
  size_t splitAt(size_t pos);
  void coalesce() const;
  // Carries out the gathered deletions.
  void flush() const;

  // The gathered deletions change nothing a reader can see, hence mutable.
  mutable std::u16string chars_;
  mutable std::vector<Run> runs_;
  mutable std::vector<TextRange> pending_;  // positions before any of them, ascending, disjoint
  mutable size_t pendingLength_ = 0;
  int editing_ = 0;
};

}  // namespace zv
