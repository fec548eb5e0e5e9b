// zv::Exception is the platform's exception type: a name, a reason and optional user information.
// Every guard of the system catches exactly this type; its description is the reason. Failures
// caused by a payload's shape (a string where a dictionary is expected, ...) are raised as
// zv::Exception with the name kInvalidArgument, never as a library's own exception type.
#pragma once

#include <exception>
#include <string>

#include "zentrova/Export.h"
#include "zentrova/Value.h"

ZENTROVA_API_BEGIN

namespace zv {

class Exception : public std::exception {
 public:
  // The name used for a value of the wrong kind (the platform's "invalid argument" exception).
  static constexpr const char* kInvalidArgument = "NSInvalidArgumentException";

  Exception(std::string name, std::string reason, Value userInfo = {});

  const std::string& name() const { return name_; }
  const std::string& reason() const { return reason_; }
  const Value& userInfo() const { return userInfo_; }
  // What a "%@" placeholder prints for the exception: its reason.
  const std::string& description() const { return reason_; }
  const char* what() const noexcept override { return reason_.c_str(); }

  [[noreturn]] static void raise(std::string name, std::string reason);

 private:
  std::string name_;
  std::string reason_;
  Value userInfo_;
};

}  // namespace zv

ZENTROVA_API_END
