// zvpush html: what an HTML text becomes in a notification. By default the plain text that the
// service side puts in the notification's title, subtitle or body (struck-through text left out);
// --styled prints the styled runs that the content side shows (17 px, black, or white with
// --dark); --measure WIDTH prints the height that the content side measures for the text at that
// width, with the Pango measurer.
#include <boost/json/array.hpp>
#include <boost/json/object.hpp>
#include <iostream>
#include <string>
#include <vector>

#include "common/ArgParser.h"
#include "common/Command.h"
#include "common/JsonIO.h"
#include "model/ZVRichNotifUtils.h"
#include "platform/foundation/Log.h"
#include "platform/text/HtmlImporter.h"
#include "zentrova/Exception.h"
#include "zentrova/Platform.h"
#ifdef ZVPUSH_CONTENT
#include "platform/text/PangoTextMeasurer.h"
#else
#include "common/ContentProgram.h"
#endif
#include "platform/text/StyledText.h"
#include "platform/text/Utf16.h"

namespace zvpush {

namespace {

namespace json = boost::json;

json::value fontJson(const zv::Font& f) {
  return json::object{
      {"family", f.family()}, {"size", f.size()}, {"weight", f.weight()}, {"italic", f.italic()}};
}

json::value stylesJson(const zv::StyledText& text) {
  json::array runs;
  size_t location = 0;
  for (const auto& run : text.runs()) {
    const zv::TextAttributes& a = run.attributes ? *run.attributes : zv::TextAttributes();
    json::object o;
    o["location"] = location;
    o["length"] = run.length;
    o["text"] = zv::utf16ToUtf8(text.characters().substr(location, run.length));
    o["font"] = fontJson(*text.fontAt(location));
    if (a.foregroundColor) {
      const zv::Color& c = *a.foregroundColor;
      o["color"] = json::array{c.red, c.green, c.blue, c.alpha};
    } else {
      o["color"] = nullptr;
    }
    o["underline"] = a.underline.has_value();
    o["strikethrough"] = a.strikethrough.has_value();
    o["link"] = a.link ? json::value(*a.link) : json::value(nullptr);
    runs.push_back(std::move(o));
    location += run.length;
  }
  return json::object{{"string", text.string()}, {"length", text.length()}, {"runs", runs}};
}

// The styled text, or a usage error carrying the import's system-log message.
std::shared_ptr<zv::StyledText> styled(const std::string& html, bool dark,
                                       const std::string& path) {
  std::string logged;
  zv::log::setSystemReceiver([&](const std::string& m) { logged = m; });
  auto text = zv::ZVRichNotifUtils::getAttributedStringFromHTMLStr(html, dark);
  zv::log::setSystemReceiver({});
  if (!text) throw UsageError(path + " cannot be read as HTML: " + logged);
  return text;
}

int run(const Args& args) {
  ArgParser p({"--measure"}, {"--plain", "--styled", "--dark"});
  p.parse(args);
  if (p.positional().size() > 1) throw UsageError("one input at most");
  const std::string path = p.positional().empty() ? "-" : p.positional()[0];
  if (p.flag("--plain") && p.flag("--styled")) throw UsageError("--plain or --styled, not both");
  auto width = p.number("--measure");
  if (width && (p.flag("--plain") || p.flag("--styled"))) {
    throw UsageError("--measure prints a height: it takes neither --plain nor --styled");
  }
  if (width && !(*width > 0 && *width < 1e7)) throw UsageError("--measure needs a width above 0");
#ifndef ZVPUSH_CONTENT
  // Measuring needs the content side's fonts: zvpush-content does it (stdin still unread).
  if (width) return runContentProgram("html", args);
#endif
  const std::string html = readInput(path);
  const bool dark = p.flag("--dark");

  if (width) {
    auto text = styled(html, dark, path);
    // The body view measures the label's text in the font of its first character.
    zv::Font font = text->fontAt(0).value_or(zv::Font::systemFont(17));
#ifdef ZVPUSH_CONTENT
    try {
      zv::Platform::shared().setTextMeasurer(std::make_shared<zv::PangoTextMeasurer>());
    } catch (const zv::Exception& e) {
      std::cerr << "zvpush: " << e.reason() << "\n";
      return kFailure;
    }
#endif
    auto measurer = zv::Platform::shared().textMeasurer();
    if (!measurer) {
      std::cerr << "zvpush: no text measurer in this program\n";
      return kFailure;
    }
    double height = zv::ZVRichNotifUtils::getHeightForText(text->string(), *width, font, *measurer);
    std::cout << pretty(json::object{{"text", text->string()},
                                     {"width", *width},
                                     {"font", fontJson(font)},
                                     {"height", height}})
              << "\n";
    return kOk;
  }
  if (p.flag("--styled")) {
    std::cout << pretty(stylesJson(*styled(html, dark, path))) << "\n";
    return kOk;
  }
  auto plain = zv::ZVRichNotifUtils::getStringFromHTML(html);
  if (!plain) {
    zv::Error error;
    zv::HtmlImporter::import(html, &error);  // only for the reason
    throw UsageError(path + " cannot be read as HTML: " + error.localizedDescription);
  }
  std::cout << *plain << "\n";
  return kOk;
}

}  // namespace

ZVPUSH_COMMAND("html", "what an HTML text becomes: plain text, styled runs or measured height",
               "html [FILE|-] [--plain | --styled] [--dark] [--measure WIDTH]", run,
               "  FILE             the HTML text (default \"-\": stdin)\n"
               "  --plain          the plain text the notification shows (the default)\n"
               "  --styled         the styled runs the content side shows, as JSON\n"
               "  --dark           style for dark mode (white text)\n"
               "  --measure WIDTH  the height the body view measures at WIDTH points\n");

}  // namespace zvpush
