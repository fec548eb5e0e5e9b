#include "support/Payloads.h"

#include <boost/json.hpp>

namespace zvtest {

namespace json = boost::json;

json::object stylizedPush(const std::string& imageUrl) {
  json::object image{{"id", 1}, {"type", "image"}, {"content", imageUrl}};
  json::object card{{"id", 1}, {"widgets", json::array{image}}};
  json::object expanded{{"type", "stylizedBasic"}, {"cards", json::array{card}}};
  return json::object{
      {"aps", json::object{{"alert", json::object{{"title", "t"}, {"body", "b"}}},
                           {"mutable-content", 1}}},
      {"zentrova", json::object{{"cid", "c1"}, {"app_id", "app"}}},
      {"zovFeatures", json::object{{"richPush", json::object{{"title", "Rich"},
                                                             {"body", "Body"},
                                                             {"displayName", "T"},
                                                             {"expanded", expanded}}}}}};
}

}  // namespace zvtest
