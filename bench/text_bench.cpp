// Rich text costs, each against its baseline in the same run:
// - plain text from HTML (getStringFromHTML) against gumbo's parse alone of the same input (parse
//   and free, gumbo's default allocator), for a typical title and a 4 KB body; goal: at most twice
//   the parse;
// - measuring a 200-character message at 355 px with the Pango measurer;
// - a preview's text, measured as the body view measures it and drawn at scale 2 (title, subtitle,
//   body), in Japanese, Arabic and emoji against the same number of Latin characters; goal: at most
//   1.3 times the Latin one (bench/text_preview_bench.sh times whole previews, fonts loaded cold).
#include <benchmark/benchmark.h>
#include <gumbo.h>

#include <cmath>
#include <string>
#include <vector>

#include "model/ZVRichNotifUtils.h"
#include "platform/text/PangoTextMeasurer.h"
#include "platform/text/Utf16.h"
#include "platform/ui/UIColor.h"
#include "platform/ui/UILabel.h"
#include "zentrova/Renderer.h"

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

// Title, subtitle and body of each script, the body cut to the Latin texts' length in characters.
struct PreviewTexts {
  std::string title, subtitle, body;
};
const PreviewTexts& previewTexts(int script) {
  static const std::vector<PreviewTexts> all = [] {
    std::vector<PreviewTexts> t = {
        {"Flash sale today only", "Ends at midnight",
         "Popular sneakers, bags and watches are up to thirty percent off. Shipping is free on "
         "orders over fifty euros. Check them in the app now before your favourites sell out, "
         "and enjoy the weekend with us!"},
        {"🔥 本日限定セール開催中です", "今夜23時59分まで",
         "人気のスニーカー、バッグ、腕時計が最大30%オフ。送料は5,000円以上のご注文で無料です。"
         "お気に入りの商品が売り切れる前に、今すぐアプリでチェックしてください。"},
        {"🔥 تخفيضات اليوم فقط", "حتى منتصف الليل",
         "خصم يصل إلى 30% على الأحذية والحقائب والساعات الأكثر مبيعا. الشحن مجاني للطلبات التي "
         "تزيد عن 200 ريال. تصفح التطبيق الآن قبل نفاد منتجاتك المفضلة!"},
        {"🔥🔥 Sale 👟👜⌚ today 🎉", "⏰ midnight 🌙✨",
         "👟👜⌚ up to 30% off 💸 free 🚚 over 50 💶 👉 app now 📱 before they sell out 😱 enjoy "
         "🎉🥳 the weekend 🏖️ with us ❤️ 👩‍💻👍🏽🇯🇵1️⃣ "
         "🛍️🛒🎁🎈🎊"},
    };
    const std::size_t latin = zv::utf8ToUtf16(t[0].body).size();
    for (auto& p : t) {
      std::u16string body = zv::utf8ToUtf16(p.body);
      while (body.size() < latin) body += body;
      p.body = zv::utf16ToUtf8(body.substr(0, latin));
    }
    return t;
  }();
  return all[static_cast<std::size_t>(script)];
}

void BM_PreviewText(benchmark::State& state) {
  static auto measurer = std::make_shared<zv::PangoTextMeasurer>();
  static zv::Renderer renderer(2);
  const PreviewTexts& t = previewTexts(static_cast<int>(state.range(0)));
  const zv::Font fonts[] = {zv::Font::systemFont(15, 600), zv::Font::systemFont(14, 600),
                            zv::Font::systemFont(14)};
  for (auto _ : state) {
    double height = zv::ZVRichNotifUtils::getHeightForText(t.body, 355, fonts[2], *measurer);
    auto root = zv::UIView::make({{0, 0}, {375, 60 + std::ceil(height) + 10}});
    root->setBackgroundColor(zv::UIColor::whiteColor());
    const std::string* texts[] = {&t.title, &t.subtitle, &t.body};
    for (int i = 0; i < 3; ++i) {
      auto label = zv::UILabel::make(measurer, {{10, 10.0 + 25 * i}, {355, i < 2 ? 25 : height}});
      label->setFont(fonts[i]);
      label->setNumberOfLines(i < 2 ? 1 : 0);
      label->setText(*texts[i]);
      root->addSubview(label);
    }
    benchmark::DoNotOptimize(renderer.draw(*root));
  }
}

BENCHMARK(BM_GumboParse_Title);
BENCHMARK(BM_GetStringFromHTML_Title);
BENCHMARK(BM_GumboParse_Body4K);
BENCHMARK(BM_GetStringFromHTML_Body4K);
BENCHMARK(BM_StyledTextFromHTML_Title);
BENCHMARK(BM_Measure200Chars_355px);
// 0 Latin (the baseline), 1 Japanese, 2 Arabic, 3 emoji.
BENCHMARK(BM_PreviewText)->DenseRange(0, 3)->Unit(benchmark::kMillisecond);

}  // namespace
