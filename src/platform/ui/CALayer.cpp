#include "platform/ui/CALayer.h"

#include <algorithm>

namespace zv {

void CALayer::addSublayer(const std::shared_ptr<CALayer>& layer) {
  if (!layer || layer.get() == this) return;
  layer->removeFromSuperlayer();
  layer->superlayer_ = weak_from_this();
  sublayers_.push_back(layer);
}

void CALayer::removeFromSuperlayer() {
  auto keepAlive = weak_from_this().lock();  // the superlayer may hold the last reference
  auto parent = superlayer_.lock();
  superlayer_.reset();
  if (!parent) return;
  auto& list = parent->sublayers_;
  list.erase(std::remove_if(list.begin(), list.end(),
                            [this](const std::shared_ptr<CALayer>& l) { return l.get() == this; }),
             list.end());
}

}  // namespace zv
