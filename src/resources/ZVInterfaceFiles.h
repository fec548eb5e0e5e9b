// zv::ZVInterfaceFiles registers the content extension's interface files with a bundle, as named
// builders: "ZVPushBodyView" (three labels stacked inside 10 points of padding: a semibold title
// and subtitle row, each with a height constraint, and a regular wrapping message),
// "ZVPushMediaView" (an image view filling the view, aspect fit), "ZVCarouselCollectionView" (a
// horizontally paging strip filling the view, with a page indicator centred on its bottom edge
// whose width the carousel sets) and "ZVImageCarouselCell" (an image view filling the cell, aspect
// fill, clipped). Labels measure their text with the measurer given here.
#pragma once

#include <memory>

namespace zv {

class NSBundle;
class TextMeasurer;

class ZVInterfaceFiles {
 public:
  static void registerWithBundle(NSBundle& bundle, std::shared_ptr<TextMeasurer> measurer);
};

}  // namespace zv
