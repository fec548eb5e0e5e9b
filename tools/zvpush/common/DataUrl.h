// Bytes as a data: URL ("data:image/png;base64,..."), for pages that must carry their pictures
// inside them: the studio's answers and zvpush check's contact sheet.
#pragma once

#include <string>
#include <string_view>

namespace zvpush {

std::string base64(std::string_view bytes);
std::string dataUrl(const std::string& type, std::string_view bytes);

}  // namespace zvpush
