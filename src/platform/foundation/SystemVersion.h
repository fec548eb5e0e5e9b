// The version of the operating system the extensions run on (12.0, 13.0, 14.0, 15.0, ...), which
// the content side compares with to pick what the system of that version can show. It is a
// process-wide setting, like the phone's own OS version: 17.0 unless the host, the CLI or a test
// sets another. Any thread may read or set it.
#pragma once

namespace zv {

double systemVersion();
void setSystemVersion(double version);

}  // namespace zv
