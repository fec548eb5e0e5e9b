// zvpush check's work on one payload (run in a worker process): read the file (a bare payload or
// the output of zvpush service), say what inspect says (its reasons and warnings), optionally
// fetch the media as the service does, then show the content extension for every device and
// style of the matrix and read the findings from each laid-out tree; with a previews folder each
// preview is also drawn there as a PNG. Content side only (zvpush-content).
#pragma once

#include <boost/json/object.hpp>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace zvpush {

struct CheckSettings {
  std::vector<double> widths{320, 375, 390, 414, 430};
  std::vector<std::string> styles{"light", "dark"};
  bool contentHidden = false;
  double platformVersion = 17.0;
  bool fetch = false;
  // Where previews are drawn (<index>-<width>-<style>.png), none for no drawing.
  std::optional<std::filesystem::path> previews;
  // A folder of the worker's own for fetched media and the store.
  std::filesystem::path scratch;
};

struct PayloadCheck {
  // {"file", "findings": [...], "matrix": [{"device", "style", "template", "size", "png",
  // "seconds"}]}.
  // A file that cannot be read or is not a JSON object gives one "unreadable-payload" error.
  static boost::json::object run(const std::string& file, std::size_t index,
                                 const CheckSettings& settings);
};

}  // namespace zvpush
