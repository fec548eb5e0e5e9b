#include "common/ShellFiles.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>

#include "zentrova/Version.h"

namespace zvpush {

namespace fs = std::filesystem;

namespace {

constexpr char kGenerated[] = "generated from zvpush's command table (zvpush --shell-files)";

std::string join(const std::vector<std::string>& items, const std::string& between = " ") {
  std::string out;
  for (const auto& i : items) out += (out.empty() ? "" : between) + i;
  return out;
}

// Text inside single quotes, for sh (a quote closes, is escaped, reopens) or fish (\' and \\).
std::string shQuoted(const std::string& text) {
  std::string out = "'";
  for (char c : text) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return out + "'";
}
std::string fishQuoted(const std::string& text) {
  std::string out = "'";
  for (char c : text) {
    if (c == '\'' || c == '\\') out += '\\';
    out += c;
  }
  return out + "'";
}

// Roff text: backslashes and hyphens escaped, no line starting with a control character.
std::string roff(const std::string& text) {
  std::string out;
  for (char c : text) {
    if (c == '\\') {
      out += "\\e";
    } else if (c == '-') {
      out += "\\-";
    } else {
      out += c;
    }
  }
  if (!out.empty() && (out[0] == '.' || out[0] == '\'')) out = "\\&" + out;
  return out;
}

// A help item's head in roff: options bold, placeholders italic, other words as they are.
std::string roffHead(const std::string& head) {
  std::istringstream in(head);
  std::string out;
  for (std::string w; in >> w;) {
    if (!out.empty()) out += " ";
    bool placeholder = std::none_of(w.begin(), w.begin() + std::min(w.find('.'), w.size()),
                                    [](unsigned char c) { return std::islower(c); });
    out += w[0] == '-'   ? "\\fB" + roff(w) + "\\fR"
           : placeholder ? "\\fI" + roff(w) + "\\fR"
                         : roff(w);
  }
  return out;
}

std::vector<std::string> names(const std::vector<OptionDoc>& options, ValueKind kind, bool valued) {
  std::vector<std::string> out;
  for (const auto& o : options) {
    if (o.value.empty() != valued && o.kind() == kind) out.push_back(o.name);
  }
  return out;
}

}  // namespace

std::string ShellFiles::bash() const {
  std::ostringstream out;
  std::vector<std::string> commandNames{"help"};
  for (const auto& c : commands_) commandNames.push_back(c.name);
  out << "# bash completion for zvpush, " << kGenerated << ".\n"
      << "_zvpush() {\n"
         "  local cur prev words cword\n"
         "  _init_completion || return\n"
         "  if ((cword == 1)); then\n"
         "    mapfile -t COMPREPLY < <(compgen -W \""
      << join(commandNames)
      << " --help --version\" -- \"$cur\")\n"
         "    return\n"
         "  fi\n"
         "  local options=\"\" directories=\"\" files=\"\" values=\"\" literals=\"\" "
         "operands=\"\"\n"
         "  case ${words[1]} in\n"
         "    help) literals=\""
      << join({commandNames.begin() + 1, commandNames.end()}) << "\" ;;\n";
  for (const auto& c : commands_) {
    std::vector<std::string> options;
    for (const auto& o : c.options) options.push_back(o.name);
    out << "    " << c.name << ") options=\"" << join(options) << "\"\n"
        << "      directories=\"" << join(names(c.options, ValueKind::kDirectory, true))
        << "\" files=\"" << join(names(c.options, ValueKind::kFile, true)) << "\"\n"
        << "      values=\"" << join(names(c.options, ValueKind::kNone, true)) << "\" literals=\""
        << join(c.literals) << "\" operands=\""
        << (c.operands == ValueKind::kDirectory ? "directories"
            : c.operands == ValueKind::kFile    ? "files"
                                                : "")
        << "\" ;;\n";
  }
  out << "  esac\n"
         "  case \" $directories \" in *\" $prev \"*) _filedir -d; return ;; esac\n"
         "  case \" $files \" in *\" $prev \"*) _filedir; return ;; esac\n"
         "  case \" $values \" in *\" $prev \"*) return ;; esac\n"
         "  if [[ $cur == -* ]]; then\n"
         "    mapfile -t COMPREPLY < <(compgen -W \"$options\" -- \"$cur\")\n"
         "    return\n"
         "  fi\n"
         "  [[ -n $literals ]] && mapfile -t COMPREPLY < <(compgen -W \"$literals\" -- \"$cur\")\n"
         "  [[ $operands == files ]] && _filedir\n"
         "  [[ $operands == directories ]] && _filedir -d\n"
         "  return 0\n"
         "}\n"
         "complete -F _zvpush zvpush\n";
  return out.str();
}

std::string ShellFiles::zsh() const {
  auto optionArgument = [](const OptionDoc& o) {
    std::string description;
    for (char c : o.description) {
      if (c == '[' || c == ']' || c == '\\') description += '\\';
      description += c;
    }
    std::string s = o.name + "[" + description + "]";
    if (!o.value.empty()) {
      std::string action = o.kind() == ValueKind::kDirectory ? "_files -/"
                           : o.kind() == ValueKind::kFile    ? "_files"
                                                             : "";
      s += ":" + o.value + ":" + action;
    }
    return shQuoted(s);
  };
  std::ostringstream out;
  out << "#compdef zvpush\n"
      << "# zsh completion for zvpush, " << kGenerated << ".\n"
      << "_zvpush() {\n"
         "  local curcontext=$curcontext state line\n"
         "  typeset -A opt_args\n"
         "  _arguments -C '(- *)--help[the commands]' '(- *)--version[the version]' \\\n"
         "    '1:command:->command' '*::argument:->argument'\n"
         "  case $state in\n"
         "    command)\n"
         "      local -a commands=(\n"
         "        'help:what a command does and every option it takes'\n";
  for (const auto& c : commands_) out << "        " << shQuoted(c.name + ":" + c.summary) << "\n";
  out << "      )\n"
         "      _describe -t commands command commands ;;\n"
         "    argument)\n"
         "      case $words[1] in\n"
         "        help) _arguments '1:command:(";
  for (const auto& c : commands_) out << c.name << (&c == &commands_.back() ? "" : " ");
  out << ")' ;;\n";
  for (const auto& c : commands_) {
    out << "        " << c.name << ")\n          _arguments";
    for (const auto& o : c.options) out << " \\\n            " << optionArgument(o);
    if (!c.literals.empty()) out << " \\\n            '1:action:(" << join(c.literals) << ")'";
    if (c.operands == ValueKind::kFile) out << " \\\n            '*:file:_files'";
    if (c.operands == ValueKind::kDirectory) out << " \\\n            '*:folder:_files -/'";
    out << " ;;\n";
  }
  out << "      esac ;;\n"
         "  esac\n"
         "}\n"
         "_zvpush \"$@\"\n";
  return out.str();
}

std::string ShellFiles::fish() const {
  std::vector<std::string> commandNames{"help"};
  for (const auto& c : commands_) commandNames.push_back(c.name);
  std::ostringstream out;
  out << "# fish completion for zvpush, " << kGenerated << ".\n"
      << "set -l commands " << join(commandNames) << "\n"
      << "complete -c zvpush -f\n"
      << "complete -c zvpush -n \"not __fish_seen_subcommand_from $commands\" -l help -d "
         "'the commands'\n"
      << "complete -c zvpush -n \"not __fish_seen_subcommand_from $commands\" -l version -d "
         "'the version'\n"
      << "complete -c zvpush -n \"not __fish_seen_subcommand_from $commands\" -a help -d "
         "'what a command does and every option it takes'\n";
  for (const auto& c : commands_) {
    out << "complete -c zvpush -n \"not __fish_seen_subcommand_from $commands\" -a " << c.name
        << " -d " << fishQuoted(c.summary) << "\n";
  }
  out << "complete -c zvpush -n '__fish_seen_subcommand_from help' -a "
      << fishQuoted(join({commandNames.begin() + 1, commandNames.end()})) << "\n";
  for (const auto& c : commands_) {
    const std::string when = "complete -c zvpush -n '__fish_seen_subcommand_from " + c.name + "'";
    for (const auto& o : c.options) {
      out << when
          << (o.name.starts_with("--") ? " -l " + o.name.substr(2) : " -s " + o.name.substr(1));
      if (o.kind() == ValueKind::kDirectory) {
        out << " -x -a '(__fish_complete_directories)'";
      } else if (o.kind() == ValueKind::kFile) {
        out << " -r -F";
      } else if (!o.value.empty()) {
        out << " -x";
      }
      if (!o.description.empty()) out << " -d " << fishQuoted(o.description);
      out << "\n";
    }
    if (!c.literals.empty()) out << when << " -a " << fishQuoted(join(c.literals)) << "\n";
    if (c.operands == ValueKind::kFile) out << when << " -F\n";
    if (c.operands == ValueKind::kDirectory) out << when << " -a '(__fish_complete_directories)'\n";
  }
  return out.str();
}

std::string ShellFiles::manual() const {
  std::ostringstream out;
  out << ".\\\" zvpush(1), " << kGenerated << ".\n"
      << ".TH ZVPUSH 1 \"\" \"zvpush " ZENTROVA_VERSION_STRING "\" \"User Commands\"\n"
      << ".SH NAME\nzvpush \\- run the Zentrova rich\\-notification extensions on this machine\n"
      << ".SH SYNOPSIS\n.B zvpush\n.I command\n[\\fIoptions\\fR]\n.br\n"
      << ".B zvpush help\n.I command\n.br\n.B zvpush \\-\\-version\n"
      << ".SH DESCRIPTION\nEach command runs one part of the notification extensions, or a tool "
         "around them; \\fBzvpush help\\fR \\fIcommand\\fR (or \\fIcommand\\fR \\fB\\-\\-help\\fR) "
         "explains its options.\n"
      << ".SH COMMANDS\n";
  for (const auto& c : commands_) {
    out << ".TP\n\\fBzvpush " << roff(c.usage) << "\\fR\n"
        << roff(c.summary) << "; see\n.BR zvpush\\-" << roff(c.name) << " (1).\n";
  }
  out << ".SH OPTIONS\n";
  for (const auto& o : commonOptions()) {
    out << ".TP\n\\fB" << roff(o.name) << "\\fR\n" << roff(o.description) << "\n";
  }
  out << ".TP\n\\fB\\-\\-version\\fR\nthe version, and those of the libraries it runs on\n"
      << ".SH EXIT STATUS\n0 on success, 1 when the command failed, 2 for a usage error or an "
         "input that cannot be used (with one line on standard error).\n";
  return out.str();
}

std::string ShellFiles::manual(const CommandDoc& c) const {
  std::string upper = c.name;
  for (char& ch : upper) ch = static_cast<char>(std::toupper(static_cast<unsigned char>(ch)));
  std::ostringstream out;
  out << ".\\\" zvpush-" << c.name << "(1), " << kGenerated << ".\n"
      << ".TH ZVPUSH\\-" << upper
      << " 1 \"\" \"zvpush " ZENTROVA_VERSION_STRING "\" \"User Commands\"\n"
      << ".SH NAME\nzvpush\\-" << roff(c.name) << " \\- " << roff(c.summary) << "\n"
      << ".SH SYNOPSIS\n.B zvpush\n"
      << roff(c.usage) << "\n";
  if (!c.notes.empty()) {
    out << ".SH DESCRIPTION\n";
    for (const auto& line : c.notes) out << roff(line) << "\n";
  }
  out << ".SH OPTIONS\n";
  for (const auto& item : c.items) {
    out << ".TP\n" << roffHead(item.head) << "\n" << roff(item.description) << "\n";
  }
  for (const auto& o : commonOptions()) {
    out << ".TP\n\\fB" << roff(o.name) << "\\fR\n" << roff(o.description) << "\n";
  }
  out << ".SH SEE ALSO\n.BR zvpush (1)\n";
  return out.str();
}

bool ShellFiles::write(const fs::path& dir) const {
  std::vector<std::pair<fs::path, std::string>> files = {
      {"bash-completion/completions/zvpush", bash()},
      {"zsh/site-functions/_zvpush", zsh()},
      {"fish/vendor_completions.d/zvpush.fish", fish()},
      {"man/man1/zvpush.1", manual()},
  };
  for (const auto& c : commands_) files.push_back({"man/man1/zvpush-" + c.name + ".1", manual(c)});
  for (const auto& [name, text] : files) {
    std::error_code ec;
    fs::create_directories((dir / name).parent_path(), ec);
    std::ofstream out(dir / name, std::ios::binary | std::ios::trunc);
    out << text;
    out.close();
    if (!out) {
      std::fprintf(stderr, "zvpush: cannot write %s: %s\n", (dir / name).c_str(),
                   std::strerror(errno ? errno : EIO));
      return false;
    }
  }
  return true;
}

}  // namespace zvpush
