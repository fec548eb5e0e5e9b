// Where zvpush finds the files it ships (the examples): <prefix>/share/zentrova beside the
// installed program (<prefix>/bin/zvpush), else the build tree's share/zentrova when the program
// runs from the build tree; never the working directory, so the tool works from any folder.
#pragma once

#include <filesystem>
#include <optional>

namespace zvpush {

// The folder, or nullopt when neither is there.
std::optional<std::filesystem::path> shareFolder();

// The place looked at first (<folder of this program>/../share/zentrova), for messages.
std::filesystem::path installedShareFolder();

}  // namespace zvpush
