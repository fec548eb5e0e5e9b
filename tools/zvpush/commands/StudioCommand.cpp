// zvpush studio [--port N] [--root DIR]: a local preview page for the people who send pushes, on
// 127.0.0.1 (see Studio.h for what it serves). The first line printed is "listening on URL".
#ifdef ZVPUSH_CONTENT
#include <filesystem>
#include <iostream>

#include "common/LocalHttp.h"
#include "common/ScratchFolder.h"
#include "studio/Studio.h"
#include "zentrova/Exception.h"
#endif

#include "common/ArgParser.h"
#include "common/Command.h"
#include "common/ContentProgram.h"

namespace zvpush {

namespace {

int run(const Args& args) {
#ifdef ZVPUSH_CONTENT
  namespace fs = std::filesystem;
  ArgParser parser({"--port", "--root"}, {});
  parser.parse(args);
  if (!parser.positional().empty()) {
    throw UsageError("unexpected argument " + parser.positional()[0]);
  }
  int port = portOption(parser, 8770);
  std::string rootArg = parser.value("--root").value_or("examples");
  std::error_code ec;
  fs::path root = fs::canonical(rootArg, ec);
  if (ec || !fs::is_directory(root)) throw InputError(rootArg + " is not a directory");

  ScratchFolder scratch("zvpush-studio");
  if (scratch.path.empty()) throw InputError("cannot make a scratch folder");
  int code = kFailure;
  try {
    Studio studio(root, scratch.path);
    httplib::Server http;
    studio.install(http);
    code = listenUntilSignalled(
        http, port, "http", [] {},
        [&](int bound) { studio.setOrigin("http://127.0.0.1:" + std::to_string(bound)); });
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
    "studio [--port 8770] [--root DIR]", run,
    "  --port N     the port on 127.0.0.1 (8770; 0: any free port)\n"
    "  --root DIR   the payloads (*.json) offered as examples and the files the page\n"
    "               may serve under /files/ (examples)\n"
    "Open the printed URL: the payload editor, the collapsed notification, the expanded\n"
    "preview light and dark, inspect's reasons and warnings, and what became of each\n"
    "media download (fetched for real). A tap on a preview says what it would do.\n");

}  // namespace zvpush
