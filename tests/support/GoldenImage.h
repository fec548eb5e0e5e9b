// Compares a drawn picture with a golden PNG under tests/data/goldens: equal sizes and at most a
// few pixels off by more than a small tolerance per channel (anti-aliasing differs a little
// between machines). On a mismatch the picture drawn is written beside the golden as
// <name>.actual.png and the failure names it; ZV_UPDATE_GOLDENS=1 writes the goldens anew.
#pragma once

#include <string>

#include "platform/graphics/PixelBuffer.h"

namespace zvtest {

void expectMatchesGolden(const zv::PixelBuffer& picture, const std::string& name);

}  // namespace zvtest
