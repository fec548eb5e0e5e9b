// The Clock port: the current time and the local time zone. SystemClock reads the system clock and
// converts with localtime_r (the TZ of the process); FixedClock answers a set instant and a fixed
// offset from UTC, for tests. Any thread may call either.
#pragma once

#include <atomic>
#include <ctime>

namespace zv {

class Clock {
 public:
  virtual ~Clock() = default;
  // Seconds since 1970-01-01 00:00:00 UTC, with fraction.
  virtual double now() const = 0;
  // The broken-down local time of an instant.
  virtual std::tm localTime(double secondsSince1970) const = 0;
};

class SystemClock : public Clock {
 public:
  double now() const override;
  std::tm localTime(double secondsSince1970) const override;
};

class FixedClock : public Clock {
 public:
  explicit FixedClock(double now, long utcOffsetSeconds = 0)
      : now_(now), offset_(utcOffsetSeconds) {}
  void set(double now) { now_ = now; }
  double now() const override { return now_; }
  std::tm localTime(double secondsSince1970) const override;

 private:
  std::atomic<double> now_;
  long offset_;
};

}  // namespace zv
