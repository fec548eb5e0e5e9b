#include "platform/text/StyledText.h"

#include <fmt/format.h>

#include <algorithm>

#include "platform/text/Utf16.h"
#include "zentrova/Exception.h"

namespace zv {

namespace {

constexpr char kRangeException[] = "NSRangeException";

bool sameAttributes(const StyledText::AttributesRef& a, const StyledText::AttributesRef& b) {
  return a == b || (a && b && *a == *b);
}

const TextAttributes& emptyAttributes() {
  static const TextAttributes empty;
  return empty;
}

}  // namespace

StyledText::StyledText(std::string_view utf8, TextAttributes attributes) {
  append(utf8, std::make_shared<const TextAttributes>(std::move(attributes)));
}

const std::u16string& StyledText::characters() const {
  flush();
  return chars_;
}

std::string StyledText::string() const { return utf16ToUtf8(characters()); }

const std::vector<StyledText::Run>& StyledText::runs() const {
  flush();
  return runs_;
}

void StyledText::append(std::u16string_view text, const AttributesRef& attributes) {
  if (text.empty()) return;
  flush();
  chars_.append(text);
  if (!runs_.empty() && sameAttributes(runs_.back().attributes, attributes)) {
    runs_.back().length += text.size();
  } else {
    runs_.push_back(Run{text.size(), attributes});
  }
}

void StyledText::append(std::string_view utf8, const AttributesRef& attributes) {
  append(std::u16string_view(utf8ToUtf16(utf8)), attributes);
}

void StyledText::checkRange(TextRange range, const char* operation) const {
  if (range.location > chars_.size() || range.length > chars_.size() - range.location) {
    throw Exception(kRangeException,
                    fmt::format("{}: range {{{}, {}}} out of bounds; length {}", operation,
                                range.location, range.length, chars_.size()));
  }
}

const TextAttributes& StyledText::attributesAt(size_t index, TextRange* effectiveRange) const {
  if (index >= length()) {
    throw Exception(kRangeException, fmt::format("attributesAt: index {} out of bounds; length {}",
                                                 index, length()));
  }
  flush();
  size_t start = 0;
  for (const Run& run : runs_) {
    if (index < start + run.length) {
      if (effectiveRange) *effectiveRange = TextRange{start, run.length};
      return run.attributes ? *run.attributes : emptyAttributes();
    }
    start += run.length;
  }
  return emptyAttributes();  // not reached: the runs cover every character
}

std::optional<Font> StyledText::fontAt(size_t index) const {
  if (index >= length()) return std::nullopt;
  const TextAttributes& a = attributesAt(index);
  return Font(a.fontFamily.value_or(Font::kSystemFamily), a.fontSize.value_or(17.0),
              static_cast<int>(a.fontWeight.value_or(Font::kRegular)), a.italic.value_or(false));
}

size_t StyledText::splitAt(size_t pos) {
  size_t start = 0;
  for (size_t i = 0; i < runs_.size(); ++i) {
    if (pos == start) return i;
    if (pos < start + runs_[i].length) {
      Run tail{start + runs_[i].length - pos, runs_[i].attributes};
      runs_[i].length = pos - start;
      runs_.insert(runs_.begin() + static_cast<long>(i) + 1, tail);
      return i + 1;
    }
    start += runs_[i].length;
  }
  return runs_.size();
}

void StyledText::removeAttribute(Attribute attribute, TextRange range) {
  checkRange(range, "removeAttribute");
  if (range.length == 0) return;
  flush();
  size_t first = splitAt(range.location);
  size_t last = splitAt(range.end());
  for (size_t i = first; i < last; ++i) {
    if (!runs_[i].attributes || !runs_[i].attributes->has(attribute)) continue;
    auto copy = std::make_shared<TextAttributes>(*runs_[i].attributes);
    copy->remove(attribute);
    runs_[i].attributes = std::move(copy);
  }
  if (editing_ == 0) coalesce();
}

void StyledText::enumerateAttribute(Attribute attribute, TextRange range, unsigned options,
                                    const AttributeVisitor& visit) const {
  checkRange(range, "enumerateAttribute");
  flush();
  const bool merge = (options & kLongestEffectiveRangeNotRequired) == 0;
  std::optional<AttributeValue> pending;
  TextRange pendingRange{range.location, 0};
  bool stop = false;
  size_t start = 0;
  for (const Run& run : runs_) {
    size_t from = std::max(start, range.location);
    size_t to = std::min(start + run.length, range.end());
    start += run.length;
    if (from >= to) continue;
    auto value = run.attributes ? run.attributes->value(attribute) : std::nullopt;
    if (merge && pendingRange.length > 0 && value == pending) {
      pendingRange.length = to - pendingRange.location;
      continue;
    }
    if (pendingRange.length > 0) {
      visit(pending, pendingRange, stop);
      if (stop) return;
    }
    pending = std::move(value);
    pendingRange = TextRange{from, to - from};
  }
  if (pendingRange.length > 0) visit(pending, pendingRange, stop);
}

void StyledText::deleteCharacters(TextRange range) {
  checkRange(range, "deleteCharacters");
  if (range.length == 0) return;
  if (editing_ > 0) {
    // Where the last gathered deletion left its gap, in today's positions: a deletion at or after
    // it maps back to its first position by adding everything gathered so far.
    const size_t gap =
        pending_.empty() ? 0 : pending_.back().location - (pendingLength_ - pending_.back().length);
    if (range.location >= gap) {
      const size_t original = range.location + pendingLength_;
      if (!pending_.empty() && pending_.back().end() == original) {
        pending_.back().length += range.length;
      } else {
        pending_.push_back(TextRange{original, range.length});
      }
      pendingLength_ += range.length;
      return;
    }
    flush();
  }
  size_t first = splitAt(range.location);
  size_t last = splitAt(range.end());
  runs_.erase(runs_.begin() + static_cast<long>(first), runs_.begin() + static_cast<long>(last));
  chars_.erase(range.location, range.length);
  if (editing_ == 0) coalesce();
}

void StyledText::endEditing() {
  if (editing_ > 0 && --editing_ == 0) {
    flush();
    coalesce();
  }
}

void StyledText::flush() const {
  if (pending_.empty()) return;
  std::u16string kept;
  kept.reserve(chars_.size() - pendingLength_);
  size_t pos = 0;
  for (const TextRange& gone : pending_) {
    kept.append(chars_, pos, gone.location - pos);
    pos = gone.end();
  }
  kept.append(chars_, pos);
  chars_ = std::move(kept);
  // Each run loses the characters of the deletions that overlap it.
  size_t k = 0;
  size_t start = 0;
  for (Run& run : runs_) {
    const size_t end = start + run.length;
    while (k < pending_.size() && pending_[k].end() <= start) ++k;
    size_t removed = 0;
    for (size_t j = k; j < pending_.size() && pending_[j].location < end; ++j) {
      removed += std::min(end, pending_[j].end()) - std::max(start, pending_[j].location);
    }
    run.length -= removed;
    start = end;
  }
  pending_.clear();
  pendingLength_ = 0;
  coalesce();
}

void StyledText::coalesce() const {
  size_t out = 0;
  for (size_t i = 0; i < runs_.size(); ++i) {
    if (runs_[i].length == 0) continue;
    if (out > 0 && sameAttributes(runs_[out - 1].attributes, runs_[i].attributes)) {
      runs_[out - 1].length += runs_[i].length;
    } else {
      runs_[out++] = runs_[i];
    }
  }
  runs_.resize(out);
}

}  // namespace zv
