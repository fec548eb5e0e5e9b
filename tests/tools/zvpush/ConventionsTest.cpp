// The conventions every zvpush command follows: help for each command, "--opt=value", "--",
// unknown short options, one-line errors with the reason, a failed write, --compact.
#include <gtest/gtest.h>

#include <regex>
#include <set>

#include "support/TestSupport.h"

namespace zvtest {
namespace {

const std::string kPlain = ZV_SOURCE_DIR "/examples/plain.json";

TEST(ConventionsTest, OptionGrammarHelpAndErrors) {
  struct Case {
    std::string args;
    int exit;
    std::string output;  // a part of stdout and stderr together
  } cases[] = {
      {"", 2, "Commands:"},
      {"help service", 0, "--budget S"},
      {"service --help", 0, "--tmp DIR"},
      {"preview -h", 0, "--default-content-hidden"},
      {"inspect " + kPlain + " --compact", 0, "{\"process\":true,"},
      {"html --measure=100 --styled -", 2, "--measure prints a height"},
      {"html --plain=yes -", 2, "option --plain takes no value"},
      {"inspect -x " + kPlain, 2, "unknown option -x (see zvpush inspect --help)"},
      {"inspect --nope " + kPlain, 2, "unknown option --nope"},
      {"inspect /no/such.json", 2, "cannot read /no/such.json: No such file or directory"},
      {"inspect -- -dash.json", 2, "cannot read -dash.json: No such file or directory"},
      {"service " + kPlain + " --ca-file /no/ca.pem", 2, "cannot read --ca-file /no/ca.pem"},
      // stderr to the pipe the test reads, stdout to a full disk
      {"inspect " + kPlain + " 2>&1 >/dev/full", 1, "cannot write the output: No space left"},
      {"gif --frames", 2, "option --frames needs a value"},
  };
  for (const auto& c : cases) {
    bool redirects = c.args.find("2>&1") != std::string::npos;
    auto r = runZvpush(c.args + (redirects ? "" : " 2>&1"));
    EXPECT_EQ(r.exit, c.exit) << c.args;
    EXPECT_NE(r.out.find(c.output), std::string::npos) << c.args << "\n" << r.out;
    if (c.exit != 0 && c.args.find("help") == std::string::npos && !c.args.empty()) {
      EXPECT_EQ(std::count(r.out.begin(), r.out.end(), '\n'), 1) << c.args << ": one line";
    }
  }
}

// The README's command list is the one zvpush --help prints: no command missing, none extra.
TEST(ConventionsTest, TheReadmeListsEveryCommand) {
  auto help = runZvpush("--help");
  std::string readme = readFile(ZV_SOURCE_DIR "/README.md");
  readme = readme.substr(readme.find("\n## zvpush\n"));
  readme = readme.substr(0, readme.find("\n## ", 1));
  std::regex listed("\n    zvpush ([a-z]+) ");
  std::set<std::string> inReadme, inHelp;
  for (std::sregex_iterator it(readme.begin(), readme.end(), listed), end; it != end; ++it) {
    inReadme.insert((*it)[1]);
  }
  std::regex usage("\n  zvpush ([a-z]+) ");
  for (std::sregex_iterator it(help.out.begin(), help.out.end(), usage), end; it != end; ++it) {
    inHelp.insert((*it)[1]);
  }
  EXPECT_FALSE(inHelp.empty());
  EXPECT_EQ(inReadme, inHelp);
}

}  // namespace
}  // namespace zvtest
