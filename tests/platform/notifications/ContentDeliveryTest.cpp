#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "platform/notifications/ContentDelivery.h"
#include "zentrova/UNMutableNotificationContent.h"

namespace zv {
namespace {

std::shared_ptr<UNMutableNotificationContent> titled(const std::string& title) {
  auto content = std::make_shared<UNMutableNotificationContent>();
  content->setTitle(title);
  return content;
}

// The first content handed is shown as it was then; later calls change nothing.
TEST(ContentDeliveryTest, ShowsTheFirstContentAsItWasHanded) {
  ContentDelivery delivery;
  EXPECT_FALSE(delivery.waitFor(std::chrono::seconds(0)));
  EXPECT_EQ(delivery.content(), nullptr);

  auto handler = delivery.contentHandler();
  auto first = titled("first");
  handler(first);
  first->setTitle("changed after it was handed");  // a badge counted too late, say
  handler(titled("second"));
  ASSERT_TRUE(delivery.waitFor(std::chrono::seconds(0)));
  EXPECT_EQ(delivery.content()->title(), "first");
  EXPECT_EQ(delivery.calls(), 2);

  // The handler outlives the delivery it came from.
  auto kept = ContentDelivery().contentHandler();
  kept(titled("late"));
}

// Calls racing from several threads: one of them is shown, and every one is counted.
TEST(ContentDeliveryTest, OneOfConcurrentCallsIsShown) {
  ContentDelivery delivery;
  std::vector<std::thread> threads;
  for (int i = 0; i < 8; ++i) {
    threads.emplace_back(
        [i, handler = delivery.contentHandler()] { handler(titled(std::to_string(i))); });
  }
  delivery.wait();
  for (auto& t : threads) t.join();
  EXPECT_EQ(delivery.calls(), 8);
  int shown = std::stoi(delivery.content()->title());
  EXPECT_TRUE(shown >= 0 && shown < 8);
}

}  // namespace
}  // namespace zv
