// Small GIF files built in memory for tests: frames of one colour with chosen delays, screen sizes
// and damage, so that a test states exactly the bytes it decodes.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace zvtest {

struct GifFrame {
  std::optional<int> delay;  // hundredths; nullopt writes no graphic control extension
  int colorIndex = 1;        // 0 black, 1 red, 2 green, 3 blue in the global table
  int width = 1, height = 1;
};

// A GIF89a with a 4-colour global table and the given screen size.
std::string gifBytes(const std::vector<GifFrame>& frames, int screenWidth = 1,
                     int screenHeight = 1);

}  // namespace zvtest
