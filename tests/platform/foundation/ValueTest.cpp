#include <gtest/gtest.h>

#include "zentrova/Exception.h"
#include "zentrova/Value.h"

namespace zv {
namespace {

struct Conversion {
  const char* json;
  long long integer;
  bool boolean;
};

// The platform's number and string conversions, which payload senders rely on.
TEST(ValueTest, IntegerAndBoolConversions) {
  const Conversion cases[] = {
      {"7", 7, true},
      {"0", 0, false},
      {"-3", -3, true},
      {"3.9", 3, true},
      {"-3.9", -3, true},
      {"0.25", 0, true},
      {"true", 1, true},
      {"false", 0, false},
      {"18446744073709551615", 9223372036854775807LL, true},
      {"1e30", 9223372036854775807LL, true},
      {"-1e30", -9223372036854775807LL - 1, true},
      {"\"12\"", 12, true},
      {"\"12abc\"", 12, true},
      {"\"0x1A\"", 0, false},
      {"\" -7\"", -7, true},
      {"\"+5\"", 5, true},
      {"\"abc\"", 0, false},
      {"\"\"", 0, false},
      {"\"12.9\"", 12, true},
      {"\"99999999999999999999\"", 9223372036854775807LL, true},
      {"\"-99999999999999999999\"", -9223372036854775807LL - 1, true},
      {"\"Y\"", 0, true},
      {"\"yes\"", 0, true},
      {"\"t\"", 0, true},
      {"\"true\"", 0, true},
      {"\"01\"", 1, true},
      {"\"0\"", 0, false},
      {"\"00\"", 0, false},
      {"\"-0\"", 0, false},
      {"\"no\"", 0, false},
      {"\"false\"", 0, false},
      {"\"  9\"", 9, true},
  };
  for (const auto& c : cases) {
    Value v = Value::parse(c.json);
    EXPECT_EQ(v.integerValue(), c.integer) << c.json;
    EXPECT_EQ(v.boolValue(), c.boolean) << c.json;
  }
}

TEST(ValueTest, WrongKindsRaiseThePlatformException) {
  for (const char* json : {"[1]", "{\"a\":1}", "null"}) {
    Value v = Value::parse(json);
    EXPECT_THROW(v.integerValue(), Exception) << json;
    EXPECT_THROW(v.boolValue(), Exception) << json;
  }
  EXPECT_THROW(Value().integerValue(), Exception);
  EXPECT_THROW(Value::parse("\"s\"").get("k"), Exception);
  EXPECT_THROW(Value::parse("{}").elements(), Exception);
  try {
    Value::parse("[]").object();
    FAIL();
  } catch (const Exception& e) {
    EXPECT_EQ(e.name(), Exception::kInvalidArgument);
    EXPECT_EQ(e.description(), "expected a dictionary but found array");
  }
}

TEST(ValueTest, NilIsNotNullAndChildrenShareTheTree) {
  Value root = Value::parse(R"({"a":null,"b":{"c":[1,"x"]}})");
  EXPECT_TRUE(root.get("a").isNull());
  EXPECT_FALSE(root.get("a").isNil());
  EXPECT_TRUE(root.get("missing").isNil());
  Value c = root.get("b").get("c");
  root = Value();  // the child keeps the tree alive
  auto elements = c.elements();
  ASSERT_EQ(elements.size(), 2u);
  EXPECT_EQ(elements[1].string(), "x");
  EXPECT_EQ(elements[0].shared().get(), &c.array()[0]);
}

TEST(ValueTest, Descriptions) {
  const std::pair<Value, const char*> cases[] = {
      {Value(), "(null)"},          {Value::null(), "<null>"},
      {Value("abc"), "abc"},        {Value::parse("42"), "42"},
      {Value::parse("1.5"), "1.5"}, {Value::parse("3.0"), "3"},
      {Value::parse("true"), "1"},  {Value::parse("[1,\"a\"]"), "[1,\"a\"]"},
  };
  for (const auto& [v, text] : cases) EXPECT_EQ(v.description(), text);
}

TEST(ValueTest, ParseRefusesInvalidInput) {
  for (const std::string& bad :
       std::vector<std::string>{"{", "", "{\"a\":}", "\"\xff\"", std::string(600, '[')}) {
    EXPECT_THROW(Value::parse(bad), Exception) << bad.substr(0, 10);
  }
}

}  // namespace
}  // namespace zv
