// zv::NSBundle is the extension's bundle: its information dictionary (settable for tests and the
// CLI: the host's "UNNotificationExtensionDefaultContentHidden" lives there) and its interface
// files, which here are named view builders that the resources folder registers.
// loadNibNamed(name, owner) runs the builder and returns the top-level views (empty for an unknown
// name). Main thread only.
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "zentrova/Value.h"

namespace zv {

class UIView;

class NSBundle {
 public:
  // Builds an interface's top-level views; `owner` is the object its outlets connect to.
  using InterfaceBuilder = std::function<std::vector<std::shared_ptr<UIView>>(void* owner)>;

  static NSBundle& mainBundle();

  const Value& infoDictionary() const { return info_; }
  void setInfoDictionary(Value info) { info_ = std::move(info); }
  // The value for `key` in the information dictionary (nil when absent or not a dictionary).
  Value objectForInfoDictionaryKey(const std::string& key) const;

  void registerInterface(const std::string& name, InterfaceBuilder builder);
  bool hasInterface(const std::string& name) const { return interfaces_.count(name) != 0; }
  std::vector<std::shared_ptr<UIView>> loadNibNamed(const std::string& name, void* owner) const;

 private:
  Value info_;
  std::map<std::string, InterfaceBuilder> interfaces_;
};

}  // namespace zv
