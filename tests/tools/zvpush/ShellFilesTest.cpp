// The completions and manual pages that zvpush writes from its command table: every option of every
// command, as `zvpush help CMD` prints them, appears in each (bash, zsh, fish, the command's manual
// page); each file is valid for its shell or for groff; and the completions complete when a shell
// runs them.
#include <gtest/gtest.h>

#include <functional>
#include <regex>
#include <set>

#include "support/TestSupport.h"

namespace zvtest {
namespace {

namespace fs = std::filesystem;

std::set<std::string> matches(const std::string& text, const std::regex& pattern) {
  std::set<std::string> out;
  for (std::sregex_iterator it(text.begin(), text.end(), pattern), end; it != end; ++it) {
    out.insert((*it)[1]);
  }
  return out;
}

// The part of text from the line that starts with `from` up to the next line holding `to`.
std::string block(const std::string& text, const std::string& from, const std::string& to) {
  auto start = text.find("\n" + from);
  if (start == std::string::npos) return "";
  return text.substr(start, text.find(to, start + 1) - start);
}

bool installed(const std::string& program) {
  return runShell("command -v " + program + " > /dev/null").exit == 0;
}

TEST(ShellFilesTest, EveryOptionOfEveryCommandInEachFile) {
  TempDir dir;
  ASSERT_EQ(runZvpush("--shell-files " + dir.path().string()).exit, 0);
  const std::string bash = readFile(dir.path() / "bash-completion/completions/zvpush");
  const std::string zsh = readFile(dir.path() / "zsh/site-functions/_zvpush");
  const std::string fish = readFile(dir.path() / "fish/vendor_completions.d/zvpush.fish");
  const std::string manual = readFile(dir.path() / "man/man1/zvpush.1");

  const auto commands = matches(runZvpush("--help").out, std::regex("\n  zvpush ([a-z]+)"));
  ASSERT_GE(commands.size(), 8u);
  struct Format {
    const char* name;
    std::function<bool(const std::string& command, const std::string& option)> lists;
  } formats[] = {
      {"bash",
       [&](const std::string& c, const std::string& o) {
         std::string line = block(bash, "    " + c + ") options=\"", "\n");
         auto quote = line.find('"');
         if (quote == std::string::npos) return false;
         std::string options = line.substr(quote + 1, line.find('"', quote + 1) - quote - 1);
         return (" " + options + " ").find(" " + o + " ") != std::string::npos;
       }},
      {"zsh",
       [&](const std::string& c, const std::string& o) {
         return block(zsh, "        " + c + ")", ";;").find("'" + o + "[") != std::string::npos;
       }},
      {"fish",
       [&](const std::string& c, const std::string& o) {
         std::string flag = o.starts_with("--") ? " -l " + o.substr(2) : " -s " + o.substr(1);
         return std::regex_search(
             fish, std::regex("__fish_seen_subcommand_from " + c + "'" + flag + "( |\n)"));
       }},
      {"manual page",
       [&](const std::string& c, const std::string& o) {
         std::string page = readFile(dir.path() / ("man/man1/zvpush-" + c + ".1"));
         return page.find(std::regex_replace(o, std::regex("-"), "\\-")) != std::string::npos;
       }},
  };
  const std::regex option(R"((?:^|[\s\[(|])(--?[a-z][a-z0-9-]*))");
  for (const auto& c : commands) {
    auto options = matches(runZvpush("help " + c).out, option);
    EXPECT_TRUE(options.count("--compact")) << c;
    for (const auto& o : options) {
      for (const auto& f : formats) EXPECT_TRUE(f.lists(c, o)) << f.name << ": " << c << " " << o;
    }
    EXPECT_NE(manual.find("zvpush\\-" + c), std::string::npos) << "zvpush(1) names " << c;
    for (const auto& text : {bash, zsh, fish}) EXPECT_NE(text.find(c), std::string::npos) << c;
  }
}

TEST(ShellFilesTest, ShellsAndGroffReadThemAndComplete) {
  TempDir dir;
  ASSERT_EQ(runZvpush("--shell-files " + dir.path().string()).exit, 0);
  const std::string bash = (dir.path() / "bash-completion/completions/zvpush").string();
  const std::string fish = (dir.path() / "fish/vendor_completions.d/zvpush.fish").string();
  struct Case {
    std::string program, command, expected;  // expected: a part of stdout and stderr together
  } cases[] = {
      {"bash", "bash -n " + bash + " && echo valid", "valid"},
      {"zsh", "zsh -n " + (dir.path() / "zsh/site-functions/_zvpush").string() + " && echo valid",
       "valid"},
      {"fish", "fish -n " + fish + " && echo valid", "valid"},
      {"groff",
       "for f in " + (dir.path() / "man/man1").string() +
           "/*.1; do groff -man -ww -z -Tutf8 $f; done; echo done",
       "done"},
      // What a shell offers.
      {"fish", "fish -c 'source " + fish + "; complete -C \"zvpush studio --no\"'", "--no-token"},
      {"fish", "fish -c 'source " + fish + "; complete -C \"zvpush st\"' | cut -f1 | tr '\\n' ' '",
       "store studio"},
      {"fish", "fish -c 'source " + fish + "; complete -C \"zvpush store \"' | tr '\\n' ' '",
       "dump get remove set"},
      {"bash",
       "test -f /usr/share/bash-completion/bash_completion || { echo --root; exit; }; "
       "bash -c 'source /usr/share/bash-completion/bash_completion; source " +
           bash +
           "; COMP_WORDS=(zvpush studio --r); COMP_CWORD=2; COMP_LINE=\"zvpush studio --r\"; "
           "COMP_POINT=${#COMP_LINE}; _zvpush; echo \"${COMPREPLY[@]}\"'",
       "--root"},
  };
  for (const auto& c : cases) {
    if (!installed(c.program)) {
      std::printf("(%s is not installed: not checked)\n", c.program.c_str());
      continue;
    }
    auto r = runShell(c.command + " 2>&1");
    EXPECT_NE(r.out.find(c.expected), std::string::npos) << c.command << "\n" << r.out;
    if (c.program == "groff") {
      EXPECT_EQ(r.out, "done\n") << "groff's warnings";
    }
  }
}

}  // namespace
}  // namespace zvtest
