#include <gtest/gtest.h>

#include "model/ZVRichNotifUtils.h"
#include "platform/foundation/Clock.h"
#include "zentrova/Exception.h"

namespace zv {
namespace {

TEST(ZVRichNotifUtilsLookupTest, NullIsAbsenceAndNothingElseIsChecked) {
  Value d = Value::parse(R"({"n":null,"e":"","z":0,"a":[],"s":{"b":{"c":1,"n":null},"str":"x"}})");
  EXPECT_TRUE(ZVRichNotifUtils::validObjectForKey("n", d).isNil());
  EXPECT_EQ(ZVRichNotifUtils::validObjectForKey("e", d).string(), "");
  EXPECT_EQ(ZVRichNotifUtils::validObjectForKey("z", d).integerValue(), 0);
  EXPECT_TRUE(ZVRichNotifUtils::validObjectForKey("a", d).isArray());
  EXPECT_TRUE(ZVRichNotifUtils::validObjectForKey("missing", d).isNil());
  EXPECT_TRUE(ZVRichNotifUtils::validObjectForKey("k", Value()).isNil());
  EXPECT_THROW(ZVRichNotifUtils::validObjectForKey("k", Value("str")), Exception);

  EXPECT_EQ(ZVRichNotifUtils::validObjectForKeyPath("s.b.c", d).integerValue(), 1);
  EXPECT_TRUE(ZVRichNotifUtils::validObjectForKeyPath("s.b.n", d).isNil());
  EXPECT_TRUE(ZVRichNotifUtils::validObjectForKeyPath("missing.b", d).isNil());
  EXPECT_TRUE(ZVRichNotifUtils::validObjectForKeyPath("s.missing.c", d).isNil());
  EXPECT_THROW(ZVRichNotifUtils::validObjectForKeyPath("s.str.c", d), Exception);
  EXPECT_THROW(ZVRichNotifUtils::validObjectForKeyPath("n.c", d), Exception);
}

TEST(ZVRichNotifUtilsLookupTest, RemovalTakesNullEntriesToo) {
  boost::json::object o{{"n", nullptr}, {"v", 1}};
  ZVRichNotifUtils::removeValidObjectForKey("n", &o);
  ZVRichNotifUtils::removeValidObjectForKey("absent", &o);
  ZVRichNotifUtils::removeValidObjectForKey("v", nullptr);
  EXPECT_EQ(o, (boost::json::object{{"v", 1}}));
}

TEST(ZVRichNotifUtilsLookupTest, MandatoryExceptionAndTimeStamps) {
  try {
    ZVRichNotifUtils::raiseMandatoryParamsMissingException();
    FAIL();
  } catch (const Exception& e) {
    EXPECT_EQ(e.name(), "PAYLOAD_MANDATORY_PARAMS_MISSING_EXCEPTION");
    EXPECT_EQ(e.description(), "Rich Push Payload Mandatory Params Missing");
  }
  // 2023-11-14 22:13:20.999 UTC, shown in a zone one hour ahead.
  const FixedClock ahead(1700000000.999, 3600);
  EXPECT_EQ(ZVRichNotifUtils::getGMTtime(ahead), "1700000000");
  EXPECT_EQ(ZVRichNotifUtils::getLocalTime(ahead), "14:11:2023:23:13:20");
  EXPECT_EQ(ZVRichNotifUtils::getLocalTime(FixedClock(1709658249, 0)), "05:03:2024:17:04:09");
}

}  // namespace
}  // namespace zv
