// The view tree of a preview as JSON, one node per view: class, name (the binding it was laid out
// under, else its outlet), frame in the superview, hidden, background colour as shown, the visual
// formats of its constraint sets, tap recognisers, subviews; and what each kind of view shows
// (label text and font size, image-view frames, collection-view paging, page dots, the carousel's
// and body view's state, a clip's player). Only zvpush-content builds it.
#pragma once

#include <boost/json/value.hpp>

namespace zv {
class UIView;
}

namespace zvpush {

class PreviewTree {
 public:
  static boost::json::value describe(const zv::UIView& view);
};

}  // namespace zvpush
