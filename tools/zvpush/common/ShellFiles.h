// The shell completions (bash, zsh, fish) and manual pages (zvpush(1), zvpush-CMD(1)) of zvpush,
// written from its command table at build time by the hidden "zvpush --shell-files DIR", into
// DIR laid out as <prefix>/share is:
//   bash-completion/completions/zvpush, zsh/site-functions/_zvpush,
//   fish/vendor_completions.d/zvpush.fish, man/man1/zvpush.1 and zvpush-CMD.1.
// The completions offer the commands, each command's options, folders or files where an option or
// operand names one, and the words a command takes (store's dump, get, set, remove).
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "common/CommandDoc.h"

namespace zvpush {

class ShellFiles {
 public:
  explicit ShellFiles(std::vector<CommandDoc> commands) : commands_(std::move(commands)) {}

  std::string bash() const;
  std::string zsh() const;
  std::string fish() const;
  std::string manual() const;                           // zvpush(1)
  std::string manual(const CommandDoc& command) const;  // zvpush-CMD(1)

  // Writes every file under dir; returns false (with a line on stderr) when one cannot be written.
  bool write(const std::filesystem::path& dir) const;

 private:
  std::vector<CommandDoc> commands_;
};

}  // namespace zvpush
