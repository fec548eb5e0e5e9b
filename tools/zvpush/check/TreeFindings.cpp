#include "check/TreeFindings.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <set>

#include "check/Contrast.h"
#include "platform/graphics/UIImage.h"
#include "platform/ui/CALayer.h"
#include "platform/ui/UICollectionView.h"
#include "platform/ui/UIColor.h"
#include "platform/ui/UIImageView.h"
#include "platform/ui/UILabel.h"
#include "zentrova/Renderer.h"

namespace zvpush {

namespace {

namespace json = boost::json;

// Beyond what a glyph's rounding moves.
constexpr double kSlack = 0.5;

double rounded2(double v) { return std::round(v * 100) / 100; }

bool drawn(const zv::UIView& v) {
  const auto f = v.frame();
  return !v.isHidden() && v.alpha() > 0 && std::isfinite(f.origin.x) && std::isfinite(f.origin.y) &&
         std::isfinite(f.size.width) && std::isfinite(f.size.height);
}

// "body text" for bodyLabel, "title text" for titleLabel; else the view's name or class.
std::string describe(const zv::UIView& v) {
  const std::string& n = v.name();
  if (n == "titleLabel") return "title text";
  if (n == "subTitleLabel") return "subtitle text";
  if (n == "bodyLabel") return "body text";
  if (!n.empty()) return n;
  return v.className();
}

std::optional<std::string> nameOf(const zv::UIView& v) {
  if (v.name().empty()) return std::nullopt;
  return v.name();
}

// The views the renderer draws, in its order, with their frames in the root's coordinates and
// the alpha they are drawn with.
struct Placed {
  const zv::UIView* view;
  zv::CGRect frame;
  double alpha;
  // The first clipping ancestor's frame, when one clips.
  std::optional<zv::CGRect> clip;
};

bool contains(const zv::CGRect& r, zv::CGPoint p) {
  return p.x >= r.origin.x && p.y >= r.origin.y && p.x < r.origin.x + r.size.width &&
         p.y < r.origin.y + r.size.height;
}

void place(const zv::UIView& v, zv::CGPoint origin, double alpha, std::optional<zv::CGRect> clip,
           std::vector<Placed>& out) {
  if (!drawn(v)) return;
  zv::CGRect frame{{origin.x + v.frame().origin.x, origin.y + v.frame().origin.y}, v.frame().size};
  alpha *= v.alpha();
  out.push_back({&v, frame, alpha, clip});
  if (v.layer()->masksToBounds() || dynamic_cast<const zv::UICollectionView*>(&v)) clip = frame;
  for (const auto& sub : v.subviews()) place(*sub, frame.origin, alpha, clip, out);
}

class Reader {
 public:
  Reader(const zv::UIView& root, const Finding& stamp, const Device& device)
      : stamp_(stamp), device_(device) {
    place(root, {-root.frame().origin.x, -root.frame().origin.y}, 1, std::nullopt, views_);
    system_ = *zv::UIColor::resolve(zv::UIColor::systemBackgroundColor(), root.traitCollection());
  }

  std::vector<Finding> read() {
    for (std::size_t i = 0; i < views_.size(); ++i) {
      const Placed& p = views_[i];
      if (p.clip && !contains(*p.clip, center(p.frame))) continue;  // clipped away
      if (auto* label = dynamic_cast<const zv::UILabel*>(p.view)) {
        if (label->text().empty() || p.frame.size.width <= 0 || p.frame.size.height <= 0) continue;
        contrast(*label, i);
        truncation(*label, p.frame);
      } else if (auto* image = dynamic_cast<const zv::UIImageView*>(p.view)) {
        pixels(*image);
      }
    }
    return std::move(found_);
  }

 private:
  static zv::CGPoint center(const zv::CGRect& r) {
    return {r.origin.x + r.size.width / 2, r.origin.y + r.size.height / 2};
  }

  Finding make(const zv::UIView& v, Severity severity, const char* code, std::string message) {
    Finding f = stamp_;
    f.severity = severity;
    f.code = code;
    f.view = nameOf(v);
    f.message = std::move(message);
    return f;
  }

  // The colour behind views_[index] at its centre, or nullopt when a picture lies behind it.
  std::optional<zv::Color> behind(std::size_t index) const {
    zv::CGPoint at = center(views_[index].frame);
    zv::Color colour = system_;
    for (std::size_t i = 0; i <= index; ++i) {
      const Placed& p = views_[i];
      if (!contains(p.frame, at) || (p.clip && !contains(*p.clip, at))) continue;
      if (i < index) {
        auto* image = dynamic_cast<const zv::UIImageView*>(p.view);
        if ((image && (image->image() || !image->animationImages().empty())) ||
            p.view->layer()->contents()) {
          return std::nullopt;
        }
      }
      if (!p.view->backgroundColor()) continue;
      auto c = zv::UIColor::resolve(p.view->backgroundColor(), p.view->traitCollection());
      if (!c || c->alpha <= 0) continue;
      zv::Color painted = *c;
      painted.alpha *= p.alpha;
      colour = Contrast::over(painted, colour);
    }
    return colour;
  }

  void contrast(const zv::UILabel& label, std::size_t index) {
    auto background = behind(index);
    if (!background) return;
    const auto& text = label.attributedText();
    const std::u16string& units = text.characters();
    auto traits = label.traitCollection();
    zv::ColorRef fallback = label.textColor() ? label.textColor() : zv::UIColor::blackColor();
    std::set<std::string> said;
    std::size_t start = 0;
    for (const auto& run : text.runs()) {
      std::size_t from = start;
      start += run.length;
      bool ink = false;
      for (std::size_t u = from; u < start && u < units.size(); ++u) {
        ink = ink || !(units[u] == u' ' || units[u] == u'\n' || units[u] == u'\t');
      }
      if (!ink) continue;
      const auto* a = run.attributes.get();
      auto colour =
          zv::UIColor::resolve(a && a->foregroundColor ? a->foregroundColor : fallback, traits);
      zv::Color fg = Contrast::over(
          {colour->red, colour->green, colour->blue, colour->alpha * views_[index].alpha},
          *background);
      zv::Font font = text.fontAt(from).value_or(label.font());
      bool bold = font.weight() >= zv::Font::kBold;
      double need = Contrast::threshold(font.size(), bold);
      double ratio = Contrast::ratio(fg, *background);
      if (ratio >= need) continue;
      std::string key = Contrast::hex(fg) + Contrast::hex(*background) + std::to_string(need);
      if (!said.insert(key).second) continue;
      Finding f = make(
          label, Severity::kWarning, "low-contrast",
          fmt::format("{} {} on {} is {:.2f}:1 in {} style, needs {:.1f}:1", describe(label),
                      Contrast::hex(fg), Contrast::hex(*background), ratio, *stamp_.style, need));
      f.details = json::object{
          {"foreground", Contrast::hex(fg)}, {"background", Contrast::hex(*background)},
          {"ratio", rounded2(ratio)},        {"threshold", need},
          {"fontSize", font.size()},         {"bold", bold}};
      found_.push_back(std::move(f));
    }
  }

  void truncation(const zv::UILabel& label, const zv::CGRect& frame) {
    const auto& measurer = label.measurer();
    if (!measurer) return;
    const std::string plain = label.text();
    const zv::Font font = label.font();
    const int lines = label.numberOfLines();
    double line = measurer->boundingSize("X", font, 0).height;
    if (line <= 0) return;
    zv::TextSize full = measurer->boundingSize(plain, font, lines == 1 ? 0 : frame.size.width);
    int needed = std::max(1, static_cast<int>(std::lround(full.height / line)));
    bool cut = lines == 1
                   ? full.width > frame.size.width + kSlack
                   : (lines > 0 && needed > lines) || full.height > frame.size.height + kSlack;
    if (!cut) return;
    int given = static_cast<int>(std::floor(frame.size.height / line + 0.01));
    if (lines > 0) given = std::min(given, lines);
    std::string message =
        lines == 1
            ? fmt::format("{} is cut: it needs {:.0f} points of width on its one line",
                          describe(label), std::ceil(full.width))
            : fmt::format("{} is cut: it needs {} lines, {} shown", describe(label), needed, given);
    Finding f = make(label, Severity::kWarning, "truncated-text", message);
    f.details =
        json::object{{"text", plain},
                     {"neededLines", needed},
                     {"numberOfLines", lines},
                     {"neededSize", json::array{std::ceil(full.width), std::ceil(full.height)}},
                     {"frame", json::array{frame.size.width, frame.size.height}}};
    found_.push_back(std::move(f));
  }

  void pixels(const zv::UIImageView& view) {
    auto image = view.image();
    if (!image && !view.animationImages().empty()) image = view.animationImages().front();
    if (!image) return;
    zv::CGSize have = image->size();  // pixels: images are at scale 1
    if (have.width <= 0 || have.height <= 0) return;
    zv::CGRect placed = zv::placeImage(have.width, have.height, view.bounds(),
                                       static_cast<int>(view.contentMode()));
    double w = placed.size.width * device_.scale, h = placed.size.height * device_.scale;
    if (w <= 0 || h <= 0) return;
    double factor = std::max(w / have.width, h / have.height);
    const char* code = nullptr;
    std::string why;
    if (factor > 1.5) {
      code = "upscaled-image";
      why = fmt::format("drawn at {:.1f}x its pixels, blurry", factor);
    } else if (have.width > 4 * w && have.height > 4 * h) {
      code = "oversized-image";
      why = fmt::format("{:.1f}x larger than drawn, bytes wasted",
                        std::min(have.width / w, have.height / h));
    }
    if (!code) return;
    int rightW = static_cast<int>(std::ceil(w - 1e-6)),
        rightH = static_cast<int>(std::ceil(h - 1e-6));
    Finding f = make(
        view, Severity::kWarning, code,
        fmt::format("{} of {:.0f}x{:.0f} pixels is {} on a {:.0f}x screen: "
                    "{}x{} pixels would fit",
                    describe(view), have.width, have.height, why, device_.scale, rightW, rightH));
    if (std::string(code) == "oversized-image") f.severity = Severity::kInfo;
    f.details = json::object{{"pixels", json::array{have.width, have.height}},
                             {"drawn", json::array{placed.size.width, placed.size.height}},
                             {"scale", device_.scale},
                             {"factor", rounded2(factor)},
                             {"rightPixels", json::array{rightW, rightH}}};
    found_.push_back(std::move(f));
  }

  Finding stamp_;
  Device device_;
  std::vector<Placed> views_;
  zv::Color system_;
  std::vector<Finding> found_;
};

}  // namespace

std::vector<Finding> TreeFindings::read(const zv::UIView& root, const Finding& stamp,
                                        const Device& device) {
  return Reader(root, stamp, device).read();
}

}  // namespace zvpush
