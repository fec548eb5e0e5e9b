// What zvpush check reads from one laid-out preview: the view tree as the content extension left
// it, read as the renderer draws it, without re-deriving anything from the payload.
//   low-contrast    a visible label's text colour (each styled run) against the colour behind it:
//                   the backgrounds of the views drawn before it under its centre, composited
//                   down to the style's system background. Labels over a picture are left out.
//   truncated-text  a label whose text needs more lines or height than its frame gives it, as the
//                   label's own measurer (the one layout used) measures it.
//   upscaled-image  an image drawn at more than 1.5 times its pixels at the device's scale;
//   oversized-image more than 4 times larger than drawn. Both name the pixel size that fits.
// Content side only (zvpush-content).
#pragma once

#include <string>
#include <vector>

#include "check/Device.h"
#include "check/Finding.h"

namespace zv {
class UIView;
}

namespace zvpush {

struct TreeFindings {
  // Findings of the tree rooted at root, each stamped with file, device, style and version.
  static std::vector<Finding> read(const zv::UIView& root, const Finding& stamp,
                                   const Device& device);
};

}  // namespace zvpush
