#include "platform/ui/NSBundle.h"

#include "zentrova/UIView.h"

namespace zv {

NSBundle& NSBundle::mainBundle() {
  static NSBundle bundle;
  return bundle;
}

Value NSBundle::objectForInfoDictionaryKey(const std::string& key) const {
  if (!info_.isObject()) return {};
  return info_.get(key);
}

void NSBundle::registerInterface(const std::string& name, InterfaceBuilder builder) {
  interfaces_[name] = std::move(builder);
}

std::vector<std::shared_ptr<UIView>> NSBundle::loadNibNamed(const std::string& name,
                                                            void* owner) const {
  auto it = interfaces_.find(name);
  if (it == interfaces_.end() || !it->second) return {};
  return it->second(owner);
}

}  // namespace zv
