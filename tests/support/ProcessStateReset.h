// zvtest::ProcessStateReset gives every test the process as a new one has it: its destructor puts
// back the platform object's settings and ports (clock, version, folders, CA, URL session,
// notification center, text measurer) and the log receivers, and makes the process-wide handler
// and managers take their configuration from the platform object again at their next use. Every
// fixture holds one, so a failed assertion cannot leak a fixed clock or a folder into later tests.
#pragma once

namespace zvtest {

class ProcessStateReset {
 public:
  ProcessStateReset() = default;
  ~ProcessStateReset();
  ProcessStateReset(const ProcessStateReset&) = delete;
  ProcessStateReset& operator=(const ProcessStateReset&) = delete;
};

}  // namespace zvtest
