#include "common/ContentProgram.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <vector>

#include "common/JsonIO.h"

namespace zvpush {

int runContentProgram(const std::string& command, const Args& args) {
  std::error_code ec;
  std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", ec);
  std::filesystem::path program = self.parent_path() / "zvpush-content";
  std::vector<std::string> words{program.string(), command};
  if (isCompact()) words.push_back("--compact");
  words.insert(words.end(), args.begin(), args.end());
  std::vector<char*> argv;
  for (auto& w : words) argv.push_back(w.data());
  argv.push_back(nullptr);
  std::fflush(stdout);
  execv(program.c_str(), argv.data());
  std::fprintf(stderr, "zvpush: cannot start %s: %s\n", program.c_str(), std::strerror(errno));
  return kFailure;
}

}  // namespace zvpush
