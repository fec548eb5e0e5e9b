// Rich text costs, each against its baseline in the same run:
// - plain text from HTML (getStringFromHTML) against gumbo's parse alone of the same input (parse
//   and free, gumbo's default allocator), for a typical title and a 4 KB body; goal: at most twice
//   the parse;
// - measuring a 200-character message at 355 px with the Pango measurer.
#include <benchmark/benchmark.h>
#include <gumbo.h>

#include <string>

#include "model/ZVRichNotifUtils.h"
#include "platform/text/PangoTextMeasurer.h"

namespace {

const std::string& title() {
  static const std::string t =
      "<b>&#128293; Flash Sale:</b> <span style=\"color:#e91e63\">up to 70% off</span> on "
      "<i>all</i> sneakers &amp; hoodies. <s>$129.99</s> <b>$59.99</b> &mdash; today only! "
      "Use code <b>SAVE70</b> at checkout &amp; get <u>free shipping</u> on orders over $50. "
      "<del>Ends Sunday</del> Ends tonight at midnight.";
  return t;
}

const std::string& body() {
  static const std::string b = [] {
    std::string s =
        "<style>.old{text-decoration:line-through;color:#999}.hot{color:#d00;font-weight:bold}"
        "</style>";
    const char* paragraph =
        "<p>Hi <b>Anna</b>, the items in your cart are going fast. <span class=\"hot\">Only 3 "
        "left</span> of the <i>Trail Runner&nbsp;2</i> in your size. Was <span "
        "class=\"old\">&euro;129.99</span>, now <b>&euro;89.99</b> &#127881;</p>"
        "<ul><li>Free returns for 30 days</li><li>Delivery in <b>2&ndash;3</b> days</li>"
        "<li><s>Express &euro;9.99</s> Express free</li></ul>"
        "<div style=\"font-size:14px\">Questions? <a href=\"app://help\">Tap here</a> or reply "
        "to this message.<br>Your Zentrova team</div>\n";
    while (s.size() < 4000) s += paragraph;
    return s;
  }();
  return b;
}

const std::string& message200() {
  static const std::string m =
      "Your order #48213 has shipped and is on its way. Track the parcel in the app to see when "
      "it arrives, change the delivery day, or send it to a pickup point near you. Thanks for "
      "shopping with us, Anna!!";
  return m;
}

void gumboParse(benchmark::State& state, const std::string& html) {
  for (auto _ : state) {
    GumboOutput* out = gumbo_parse_with_options(&kGumboDefaultOptions, html.data(), html.size());
    benchmark::DoNotOptimize(out);
    gumbo_destroy_output(&kGumboDefaultOptions, out);
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * html.size()));
}

void plainText(benchmark::State& state, const std::string& html) {
  for (auto _ : state) {
    auto text = zv::ZVRichNotifUtils::getStringFromHTML(html);
    benchmark::DoNotOptimize(text);
  }
  state.SetBytesProcessed(static_cast<int64_t>(state.iterations() * html.size()));
}

void BM_GumboParse_Title(benchmark::State& s) { gumboParse(s, title()); }
void BM_GetStringFromHTML_Title(benchmark::State& s) { plainText(s, title()); }
void BM_GumboParse_Body4K(benchmark::State& s) { gumboParse(s, body()); }
void BM_GetStringFromHTML_Body4K(benchmark::State& s) { plainText(s, body()); }

void BM_StyledTextFromHTML_Title(benchmark::State& state) {
  for (auto _ : state) {
    auto text = zv::ZVRichNotifUtils::getAttributedStringFromHTMLStr(title(), false);
    benchmark::DoNotOptimize(text);
  }
}

void BM_Measure200Chars_355px(benchmark::State& state) {
  static zv::PangoTextMeasurer measurer;
  const zv::Font font = zv::Font::systemFont(17);
  double height = 0;
  for (auto _ : state) {
    height = zv::ZVRichNotifUtils::getHeightForText(message200(), 355.0, font, measurer);
    benchmark::DoNotOptimize(height);
  }
  state.counters["height"] = height;
  state.counters["chars"] = static_cast<double>(message200().size());
}

BENCHMARK(BM_GumboParse_Title);
BENCHMARK(BM_GetStringFromHTML_Title);
BENCHMARK(BM_GumboParse_Body4K);
BENCHMARK(BM_GetStringFromHTML_Body4K);
BENCHMARK(BM_StyledTextFromHTML_Title);
BENCHMARK(BM_Measure200Chars_355px);

}  // namespace
