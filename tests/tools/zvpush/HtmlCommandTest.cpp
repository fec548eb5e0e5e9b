#include <gtest/gtest.h>
#include <sys/wait.h>

#include <boost/json/parse.hpp>
#include <cstdlib>
#include <fstream>

#include "support/TestSupport.h"

namespace {

struct Result {
  int code;
  std::string out;
  std::string err;
};

Result zvpush(const zvtest::TempDir& dir, const std::string& args, const std::string& input) {
  auto in = dir.path() / "in.html";
  std::ofstream(in, std::ios::binary) << input;
  auto out = dir.path() / "out", err = dir.path() / "err";
  std::string cmd = std::string(ZVPUSH_PATH) + " html " + args + " < " + in.string() + " > " +
                    out.string() + " 2> " + err.string();
  int status = std::system(cmd.c_str());
  return {WEXITSTATUS(status), zvtest::readFile(out), zvtest::readFile(err)};
}

TEST(HtmlCommandTest, PlainStyledAndMeasured) {
  zvtest::TempDir dir;
  const std::string html = "<b>Sale</b> <s>$10</s> $5<p>Today only</p>";
  Result plain = zvpush(dir, "", html);
  EXPECT_EQ(plain.code, 0) << plain.err;
  EXPECT_EQ(plain.out, "Sale  $5\nToday only\n");  // both spaces around the struck run stay
  EXPECT_EQ(zvpush(dir, "--plain -", html).out, plain.out);

  Result styled = zvpush(dir, "--styled --dark", html);
  ASSERT_EQ(styled.code, 0) << styled.err;
  auto json = boost::json::parse(styled.out).as_object();
  EXPECT_EQ(json["string"].as_string(), "Sale $10 $5\nToday only");
  auto runs = json["runs"].as_array();
  ASSERT_EQ(runs.size(), 4u);
  EXPECT_EQ(runs[0].at("font").at("weight").as_int64(), 700);
  EXPECT_EQ(runs[2].at("text").as_string(), "$10");
  EXPECT_TRUE(runs[2].at("strikethrough").as_bool());
  for (const auto& r : runs) {
    EXPECT_EQ(r.at("color"), boost::json::parse("[1,1,1,1]"));
    EXPECT_EQ(r.at("font").at("size").to_number<double>(), 17.0);
  }

  Result measured = zvpush(dir, "--measure 355", html);
  ASSERT_EQ(measured.code, 0) << measured.err;
  auto m = boost::json::parse(measured.out).as_object();
  EXPECT_GT(m["height"].to_number<double>(), 17.0);
  EXPECT_LT(m["height"].to_number<double>(), 25.0);  // line breaks are not measured
}

TEST(HtmlCommandTest, BadUseAndBadInputExitWithOneLine) {
  zvtest::TempDir dir;
  for (const char* args :
       {"--plain --styled", "--measure wide", "--measure -3", "--styled --measure 9",
        "--frobnicate", "a.html b.html", "/nonexistent/file.html"}) {
    Result r = zvpush(dir, args, "x");
    EXPECT_EQ(r.code, 2) << args;
    EXPECT_EQ(std::count(r.err.begin(), r.err.end(), '\n'), 1) << r.err;
  }
  for (const char* args : {"", "--styled"}) {
    Result r = zvpush(dir, args, "caf\xE9");
    EXPECT_EQ(r.code, 2);
    EXPECT_NE(r.err.find("not valid UTF-8"), std::string::npos) << r.err;
    EXPECT_EQ(std::count(r.err.begin(), r.err.end(), '\n'), 1) << r.err;
  }
}

}  // namespace
