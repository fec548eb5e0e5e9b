/// @file
/// zv::Exception is the platform's exception type: a name, a reason and optional user information.
/// Every guard of the system catches exactly this type; its description is the reason. Failures
/// caused by a payload's shape (a string where a dictionary is expected, ...) are raised as
/// zv::Exception with the name kInvalidArgument, never as a library's own exception type.
#pragma once

#include <exception>
#include <string>

#include "zentrova/Export.h"
#include "zentrova/Value.h"

ZENTROVA_API_BEGIN

namespace zv {

/// The one exception type the system raises and catches.
///
/// Raised for a payload of the wrong shape (kInvalidArgument), for invalid JSON handed to
/// Value::parse, and by the calls whose documentation says so. The service side's entry points
/// catch it themselves and still deliver content; a host calling the lower-level types directly
/// catches it. Problems with files, attachments and the network are reported as zv::Error values
/// instead. Exceptions are plain values: copy them and read them from any thread.
class Exception : public std::exception {
 public:
  /// The name used for a value of the wrong kind (the platform's "invalid argument" exception).
  static constexpr const char* kInvalidArgument = "NSInvalidArgumentException";

  /// An exception of this name and reason, with optional user information (nil by default).
  Exception(std::string name, std::string reason, Value userInfo = {});
  /// Releases the name, reason and user information.
  ~Exception() override;
  /// Copies, as every exception type may be copied when thrown.
  ///@{
  Exception(const Exception&) = default;
  Exception& operator=(const Exception&) = default;
  ///@}

  /// The exception's name (kInvalidArgument, "JSONParseException", ...).
  const std::string& name() const { return name_; }
  /// Why it was raised, in a sentence for people.
  const std::string& reason() const { return reason_; }
  /// Extra information given when it was made (nil when none).
  const Value& userInfo() const { return userInfo_; }
  /// What a "%@" placeholder prints for the exception: its reason.
  const std::string& description() const { return reason_; }
  /// The reason, for code that catches std::exception.
  const char* what() const noexcept override { return reason_.c_str(); }

  /// Throws an Exception of this name and reason; never returns.
  [[noreturn]] static void raise(std::string name, std::string reason);

 private:
  std::string name_;
  std::string reason_;
  Value userInfo_;
};

}  // namespace zv

ZENTROVA_API_END
