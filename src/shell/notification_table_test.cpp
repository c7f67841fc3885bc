#include "shell/notification_table.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "testing/fakes.h"

namespace tervan {
namespace {

using tervan::testing::FakePoster;
using tervan::testing::Window;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Message = FakePoster::Message;

TEST(NotificationTable, RegisteredWindowGetsItsNewIdAndLeavesWithZero) {
  FakePoster poster;
  NotificationTable table(poster);
  EXPECT_EQ(table.SetWindow(nullptr, 11), S_OK);
  EXPECT_EQ(table.SetWindow(Window(3), 0), S_OK);
  EXPECT_FALSE(table.HasWindow());
  table.SetWindow(Window(1), 11);
  table.SetWindow(Window(2), 22);
  EXPECT_EQ(table.SetWindow(Window(1), 12), S_OK);
  EXPECT_TRUE(table.HasWindow());
  table.Post(100);  // the last empty entry is filled first
  EXPECT_THAT(poster.Take(), ElementsAre(Message{Window(2), 22, 100}, Message{Window(1), 12, 100}));
  EXPECT_EQ(table.SetWindow(Window(2), 0), S_OK);
  EXPECT_EQ(table.SetWindow(Window(1), 0), S_OK);
  table.Post(7);
  EXPECT_THAT(poster.Take(), IsEmpty());
  EXPECT_FALSE(table.HasWindow());
}

}  // namespace
}  // namespace tervan
