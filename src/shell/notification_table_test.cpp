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

struct NotificationTableTest : ::testing::Test {
  FakePoster poster;
  NotificationTable table{poster};
};

TEST_F(NotificationTableTest, HoldsTwoWindowsAndRefusesAThird) {
  EXPECT_FALSE(table.HasWindow());
  EXPECT_EQ(table.SetWindow(Window(1), 11), S_OK);
  EXPECT_EQ(table.SetWindow(Window(2), 22), S_OK);
  EXPECT_EQ(table.SetWindow(Window(3), 33), E_OUTOFMEMORY);
  EXPECT_EQ(table.SetWindow(Window(3), 0), S_OK);
  table.Post(100);  // the last empty entry is filled first
  EXPECT_THAT(poster.Take(), ElementsAre(Message{Window(2), 22, 100}, Message{Window(1), 11, 100}));
}

TEST_F(NotificationTableTest, RegisteredWindowGetsItsNewIdAndLeavesWithZero) {
  table.SetWindow(Window(1), 11);
  table.SetWindow(Window(2), 22);
  EXPECT_EQ(table.SetWindow(Window(1), 12), S_OK);
  EXPECT_EQ(table.SetWindow(Window(2), 0), S_OK);
  table.Post(7);
  EXPECT_THAT(poster.Take(), ElementsAre(Message{Window(1), 12, 7}));
  EXPECT_EQ(table.SetWindow(Window(3), 33), S_OK);
  EXPECT_EQ(table.SetWindow(Window(1), 0), S_OK);
  EXPECT_EQ(table.SetWindow(Window(3), 0), S_OK);
  EXPECT_EQ(table.SetWindow(nullptr, 11), S_OK);
  table.Post(7);
  EXPECT_THAT(poster.Take(), IsEmpty());
  EXPECT_FALSE(table.HasWindow());
}

}  // namespace
}  // namespace tervan
