// zvpush studio [--port N] [--root DIR] [--host ADDR] [--token T | --no-token]: a local preview
// page for the people who send pushes, on 127.0.0.1 (see Studio.h for what it serves and
// StudioGuard.h for what it refuses). The first line printed is "listening on URL", the URL
// carrying the run's token.
#ifdef ZVPUSH_CONTENT
#include <filesystem>
#include <iostream>

#include "common/LocalHttp.h"
#include "common/ScratchFolder.h"
#include "common/ShareFolder.h"
#include "studio/Studio.h"
#include "zentrova/Exception.h"
#endif

#include "common/ArgParser.h"
#include "common/Command.h"
#include "common/ContentProgram.h"

namespace zvpush {

namespace {

#ifdef ZVPUSH_CONTENT
namespace fs = std::filesystem;

// --root, or the examples shipped with zvpush.
fs::path studioRoot(const ArgParser& parser) {
  std::optional<std::string> given = parser.value("--root");
  std::string rootArg;
  if (given) {
    rootArg = *given;
  } else if (auto share = shareFolder()) {
    rootArg = (*share / "examples").string();
  } else {
    throw InputError("the bundled examples are not installed (" +
                     (installedShareFolder() / "examples").string() + "): give --root DIR");
  }
  std::error_code ec;
  fs::path root = fs::canonical(rootArg, ec);
  if (ec || !fs::is_directory(root)) throw InputError(rootArg + " is not a directory");
  return root;
}
#endif

int run(const Args& args) {
#ifdef ZVPUSH_CONTENT
  ArgParser parser({"--port", "--root", "--host", "--token"}, {"--no-token"});
  parser.parse(args);
  if (!parser.positional().empty()) {
    throw UsageError("unexpected argument " + parser.positional()[0]);
  }
  if (parser.flag("--no-token") && parser.value("--token")) {
    throw UsageError("--token and --no-token exclude each other");
  }
  if (parser.value("--token") && parser.value("--token")->empty()) {
    throw UsageError("--token needs a value (or --no-token)");
  }
  ListenAddress address;
  address.host = parser.value("--host").value_or("127.0.0.1");
  address.port = portOption(parser, 8770);
  fs::path root = studioRoot(parser);
  std::string token;
  if (parser.flag("--no-token")) {
    std::cerr << "zvpush: warning: --no-token: any web page open in a browser on this machine can "
                 "run previews (which fetch the URLs it chooses) and read the files under "
              << root.string() << "\n";
  } else {
    token = parser.value("--token").value_or(StudioGuard::newToken());
    address.path = "/?token=" + token;
  }
  if (parser.value("--host") && address.host != "127.0.0.1") {
    std::cerr << "zvpush: warning: --host " << address.host
              << ": anyone who can reach this address can load the page"
              << (token.empty() ? ", run previews that fetch any URL from this machine and read "
                                  "the files under --root"
                                : ", and whoever learns the token can run previews that fetch "
                                  "any URL from this machine")
              << "\n";
  }

  ScratchFolder scratch("zvpush-studio");
  if (scratch.path.empty()) throw InputError("cannot make a scratch folder");
  int code = kFailure;
  try {
    Studio studio(root, scratch.path, StudioGuard(address.host, token));
    httplib::Server http;
    studio.install(http);
    code = listenUntilSignalled(
        http, address, [] {}, [&](int bound) { studio.listening(address.host, bound); });
  } catch (const zv::Exception& e) {
    std::cerr << "zvpush: " << e.reason() << "\n";
  }
  return code;
#else
  return runContentProgram("studio", args);
#endif
}

}  // namespace

ZVPUSH_COMMAND(
    "studio", "a local preview page: edit a payload, see the notification light and dark",
    "studio [--port 8770] [--root DIR] [--host ADDR] [--token T | --no-token]", run,
    "  --port N     the port (8770; 0: any free port)\n"
    "  --root DIR   the payloads (*.json) offered as examples and the files the page\n"
    "               may serve under /files/ (the examples installed with zvpush)\n"
    "  --host ADDR  the address to listen on (127.0.0.1); any other lets whoever\n"
    "               reaches it load the page\n"
    "  --token T    the secret every API request carries (default: 128 random bits,\n"
    "               new each run)\n"
    "  --no-token   no secret: any web page open on this machine can drive the studio\n"
    "Open the printed URL (it carries the token): the payload editor, the collapsed\n"
    "notification, the expanded preview light and dark, inspect's reasons and warnings,\n"
    "and what became of each media download (fetched for real). A tap on a preview says\n"
    "what it would do. Requests naming another Host, API requests without the token,\n"
    "not sent as application/json or from another page's Origin are refused. Previews\n"
    "run in a scratch folder removed at exit.\n");

}  // namespace zvpush
