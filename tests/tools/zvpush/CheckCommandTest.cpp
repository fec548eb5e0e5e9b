// zvpush check, run as a process on payloads written here: contrast ratios against values worked
// by hand from the WCAG 2.1 formula, each other finding at and just past its limit, the batch's
// exit codes, shards and a broken payload among good ones, and media fetched from a local server.
// (The JUnit file and the contact sheet are read back by tests/tools/check/contact_sheet_test.py.)
#include <gtest/gtest.h>

#include <boost/json.hpp>
#include <fstream>
#include <set>

#include "platform/foundation/Md5.h"
#include "platform/graphics/PixelBuffer.h"
#include "platform/graphics/PngWriter.h"
#include "support/LocalServer.h"
#include "support/Payloads.h"
#include "support/TestSupport.h"

namespace zvtest {
namespace {

namespace json = boost::json;

class CheckCommandTest : public ::testing::Test {
 protected:
  // A stylised push without media: title, HTML body, and the expanded mode's bgColor if any.
  static json::object textPush(const std::string& title, const std::string& body,
                               const std::string& bgColor = "") {
    json::object push = stylizedPush("https://cdn.example.com/a.png");
    auto& rich = push["zovFeatures"].as_object()["richPush"].as_object();
    rich["title"] = title;
    rich["body"] = body;
    auto& expanded = rich["expanded"].as_object();
    expanded["cards"] = json::array();
    if (!bgColor.empty()) expanded["style"] = json::object{{"bgColor", bgColor}};
    return push;
  }
  std::string write(const std::string& name, const json::value& v) {
    auto path = dir.path() / name;
    std::ofstream(path) << json::serialize(v);
    return path.string();
  }
  // Delivered content of a stylised push whose image is a PNG of width x height pixels.
  std::string withImage(const std::string& name, int width, int height) {
    auto pixels = zv::PixelBuffer::make(width, height);
    std::fill(pixels->data.begin(), pixels->data.end(), 0xFF3366CCu);
    auto png = dir.path() / (name + ".png");
    EXPECT_TRUE(zv::PngWriter::write(*pixels, png));
    std::string url = "https://cdn.example.com/" + name + ".png";
    return write(name + ".json",
                 json::object{{"identifier", "n1"},
                              {"userInfo", stylizedPush(url)},
                              {"attachments",
                               json::array{json::object{{"identifier", zv::md5Hex(url)},
                                                        {"url", "file://" + png.string()}}}}});
  }
  // The JSON document of a check, expecting the exit code.
  json::object check(const std::string& args, int exit) {
    auto r = runZvpush("check " + args + " --format json --default-content-hidden");
    EXPECT_EQ(r.exit, exit) << args;
    std::error_code ec;
    json::value doc = json::parse(r.out, ec);
    if (ec || !doc.is_object()) {
      ADD_FAILURE() << args << ": " << r.out;
      return {};
    }
    return doc.as_object();
  }
  static std::vector<json::object> findings(const json::object& doc, const std::string& code) {
    std::vector<json::object> out;
    for (const auto& f : doc.at("findings").as_array()) {
      if (f.at("code") == code.c_str()) out.push_back(f.as_object());
    }
    return out;
  }
  TempDir dir;
};

// Ratios worked by hand: L = 0.2126 R + 0.7152 G + 0.0722 B of the linearised channels, ratio
// (L1 + 0.05) / (L2 + 0.05). Navy #0F172A: L = 0.00882, against black 0.05882 / 0.05 = 1.18.
// Pure red: L = 0.2126, on white 1.05 / 0.2626 = 4.00, on black 0.2626 / 0.05 = 5.25. Pure blue
// on black: 0.1222 / 0.05 = 2.44. Black at half alpha over white is grey 0.5: L = 0.2140, 3.98.
// Grey #777777: L = 0.1845, white on it 1.05 / 0.2345 = 4.48, black on it 4.69.
TEST_F(CheckCommandTest, ContrastRatiosAreWcagsOverTheColourBehindEachRun) {
  struct Case {
    const char* body;
    const char* bgColor;  // "" for none: the clear colour over the system background
    const char* style;
    const char* foreground;  // of the body's failing run, "" when the body reads well
    const char* background;
    double ratio, threshold;
  } cases[] = {
      {"Plain", "#0F172A", "light", "#000000", "#0F172A", 1.18, 4.5},
      {"Plain", "#0F172A", "dark", "", "", 0, 0},
      {"<span style=\"color:#FF0000\">red</span>", "", "light", "#FF0000", "#FFFFFF", 4.0, 4.5},
      {"<span style=\"color:#FF0000\">red</span>", "", "dark", "", "", 0, 0},
      {"<span style=\"color:#0000FF\">blue</span>", "", "dark", "#0000FF", "#000000", 2.44, 4.5},
      {"<span style=\"color:#FF0000;font-size:24px\">large</span>", "", "light", "", "", 0, 0},
      {"<b style=\"color:#FF0000;font-size:19px\">bold</b>", "", "light", "", "", 0, 0},
      {"<b style=\"color:#FF0000;font-size:18px\">bold</b>", "", "light", "#FF0000", "#FFFFFF", 4.0,
       4.5},
      {"<span style=\"color:rgba(0,0,0,0.5)\">half</span>", "", "light", "#808080", "#FFFFFF", 3.98,
       4.5},
      {"Plain", "#777777", "dark", "#FFFFFF", "#777777", 4.48, 4.5},
      {"Plain", "#777777", "light", "", "", 0, 0},
  };
  int i = 0;
  for (const auto& c : cases) {
    std::string file = write("c" + std::to_string(i++) + ".json", textPush("T", c.body, c.bgColor));
    json::object doc = check(file + " --devices 375 --styles " + c.style, 0);
    std::vector<json::object> body;
    for (auto& f : findings(doc, "low-contrast")) {
      if (f.at("view") == "bodyLabel") body.push_back(f);
    }
    SCOPED_TRACE(std::string(c.body) + " on " + c.bgColor + " " + c.style);
    if (!*c.foreground) {
      EXPECT_TRUE(body.empty()) << json::serialize(body.front());
      continue;
    }
    ASSERT_EQ(body.size(), 1u);
    const auto& f = body.front();
    const auto& d = f.at("details").as_object();
    EXPECT_EQ(d.at("foreground"), c.foreground);
    EXPECT_EQ(d.at("background"), c.background);
    EXPECT_DOUBLE_EQ(d.at("ratio").to_number<double>(), c.ratio);
    EXPECT_DOUBLE_EQ(d.at("threshold").to_number<double>(), c.threshold);
    EXPECT_EQ(f.at("style"), c.style);
    EXPECT_EQ(f.at("device"), (json::object{{"width", 375}, {"height", 812}}));
    EXPECT_EQ(f.at("severity"), "warning");
    for (const char* key : {"file", "platformVersion", "message"}) EXPECT_TRUE(f.contains(key));
  }
}

// Each finding at its limit and just past it: a title of 455 to 456 points on a line of 456 and
// of 454 (devices 476 and 474 wide); an image drawn 640 pixels wide (320 points at 2x) from 427 and
// 426 pixels (1.5x), and from 2560 and 2561 (4x).
TEST_F(CheckCommandTest, EachFindingHoldsAtItsLimitAndFiresJustPastIt) {
  struct Case {
    std::string file, devices, code;
    bool fires;
  } cases[] = {
      {write("t.json", textPush("New arrivals are here: sneakers, backpacks and watches", "b")),
       "476", "truncated-text", false},
      {"t.json", "474", "truncated-text", true},
      {withImage("up-in", 427, 214), "320", "upscaled-image", false},
      {withImage("up-out", 426, 213), "320", "upscaled-image", true},
      {withImage("big-in", 2560, 1280), "320", "oversized-image", false},
      {withImage("big-out", 2564, 1282), "320", "oversized-image", true},
  };
  for (auto& c : cases) {
    if (c.file.find('/') == std::string::npos) c.file = (dir.path() / c.file).string();
    json::object doc = check(c.file + " --devices " + c.devices + " --styles light", 0);
    auto found = findings(doc, c.code);
    EXPECT_EQ(found.size(), c.fires ? 1u : 0u)
        << c.code << " " << c.file << " " << c.devices << "\n"
        << json::serialize(doc.at("findings"));
  }
  auto up = findings(check(dir.path().string() + "/up-out.json --devices 320 --styles light", 0),
                     "upscaled-image");
  ASSERT_EQ(up.size(), 1u);
  EXPECT_EQ(up[0].at("details").at("rightPixels"), (json::array{640, 320}));
}

TEST_F(CheckCommandTest, ABrokenPayloadIsAnErrorAndTheBatchGoesOn) {
  write("a.json", textPush("Readable", "Fine"));
  std::ofstream(dir.path() / "b.json") << "{\"aps\": ";
  write("c.json", textPush("Navy", "Dark text", "#0F172A"));
  json::object doc = check(dir.path().string() + " --devices 320,375 -j 2", 1);
  const auto& payloads = doc.at("payloads").as_array();
  ASSERT_EQ(payloads.size(), 3u);
  EXPECT_EQ(payloads[1].at("previews").as_array().size(), 0u);
  EXPECT_EQ(payloads[2].at("previews").as_array().size(), 4u);
  auto unreadable = findings(doc, "unreadable-payload");
  ASSERT_EQ(unreadable.size(), 1u);
  EXPECT_EQ(unreadable[0].at("severity"), "error");
  EXPECT_EQ(unreadable[0].at("device"), nullptr);
  EXPECT_EQ(findings(doc, "low-contrast").size(), 2u * 2);  // c.json, light, 2 devices, 2 labels
  EXPECT_EQ(doc.at("summary").at("payloads"), 3);
  EXPECT_EQ(doc.at("summary").at("previews"), 12);
  EXPECT_EQ(doc.at("summary").at("failed"), true);
}

TEST_F(CheckCommandTest, ExitCodesFollowFailOnAndUsage) {
  std::string clean = write("clean.json", textPush("Readable", "Fine"));
  std::string navy = write("navy.json", textPush("Navy", "Dark text", "#0F172A"));
  struct Case {
    std::string args;
    int exit;
  } cases[] = {
      {clean + " --devices 375", 0},
      {navy + " --devices 375", 0},  // low contrast is a warning
      {navy + " --devices 375 --fail-on warning", 1},
      {clean + " --devices 100", 2},
      {clean + " --styles sepia", 2},
      {clean + " --shard 3/2", 2},
      {clean + " --format xml", 2},
      {clean + " --fail-on info", 2},
      {(dir.path() / "empty").string(), 1},  // a file that is not there: unreadable
  };
  for (const auto& c : cases) {
    EXPECT_EQ(runZvpush("check " + c.args + " --default-content-hidden").exit, c.exit) << c.args;
  }
}

TEST_F(CheckCommandTest, ShardsSplitTheSortedPayloadsWithoutOverlap) {
  for (const char* name : {"e.json", "a.json", "d.json", "b.json", "c.json"}) {
    write(name, textPush("T", "B"));
  }
  std::multiset<std::string> seen;
  for (const char* shard : {"1/2", "2/2"}) {
    json::object doc = check(dir.path().string() + " --devices 375 --shard " + shard, 0);
    for (const auto& p : doc.at("payloads").as_array()) {
      seen.insert(std::filesystem::path(json::value_to<std::string>(p.at("file"))).filename());
    }
  }
  EXPECT_EQ(seen, (std::multiset<std::string>{"a.json", "b.json", "c.json", "d.json", "e.json"}));
  json::object first = check(dir.path().string() + " --devices 375 --shard 1/2", 0);
  EXPECT_EQ(first.at("payloads").as_array().size(), 3u);  // a, c, e
}

// --fetch downloads from a local server: a missing file, a picture declared a video, and audio
// over the phone's 5 MB.
TEST_F(CheckCommandTest, FetchedMediaThePhoneWouldRefuseAreFindings) {
  LocalServer server;
  server.addFile("/card.png", readFile(ZV_SOURCE_DIR "/examples/media/card1.png"), "image/png");
  server.addFile("/song.mp3", std::string(5 * 1024 * 1024 + 1, '\0'), "audio/mpeg");
  struct Case {
    std::string path, type, code;
  } cases[] = {
      {"/missing.png", "image", "media-unreachable"},
      {"/card.png", "video", "media-type-mismatch"},
      {"/song.mp3", "audio", "media-too-large"},
      {"/card.png", "image", ""},
  };
  for (const auto& c : cases) {
    json::object push{{"aps", json::object{{"alert", "Look"}, {"mutable-content", 1}}},
                      {"zentrova", json::object{{"cid", "c1"},
                                                {"app_id", "app"},
                                                {"media-attachment", server.url(c.path)},
                                                {"media-type", c.type}}}};
    std::string file = write("fetch.json", push);
    json::object doc =
        check(file + " --fetch --devices 375 --styles light", c.code.empty() ? 0 : 1);
    std::set<std::string> codes;
    for (const auto& f : doc.at("findings").as_array()) {
      std::string code = json::value_to<std::string>(f.at("code"));
      if (code.starts_with("media-") && code != "media-url-not-https") codes.insert(code);
    }
    EXPECT_EQ(codes, c.code.empty() ? std::set<std::string>{} : std::set<std::string>{c.code})
        << c.path << " as " << c.type;
  }
}

}  // namespace
}  // namespace zvtest
