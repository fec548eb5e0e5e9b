// libraryVersions(): compiled into both programs; zvpush-content adds the content side's libraries.
#include "common/Command.h"
#include "platform/LibraryVersions.h"

namespace zvpush {

std::vector<std::pair<std::string, std::string>> libraryVersions() {
  auto list = zv::LibraryVersions::service();
#ifdef ZVPUSH_CONTENT
  for (auto& entry : zv::LibraryVersions::content()) list.push_back(std::move(entry));
#endif
  return list;
}

}  // namespace zvpush
