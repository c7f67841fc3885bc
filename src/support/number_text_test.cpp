#include "support/number_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

namespace tervan {
namespace {

using testing::PrintToString;

const NumberFormat kEnglish;
const NumberFormat kGerman{u",", u".", u"-", u"3;0"};
const NumberFormat kSwiss{u".", u"\u2019", u"-", u"3;0"};
const NumberFormat kIndian{u".", u",", u"-", u"3;2;0"};
const NumberFormat kPersian{u"/", u",", u"\u200E-", u"3;0"};
const NumberFormat kSwedish{u",", u"\u00A0", u"\u2212", u"3;0"};
const NumberFormat kLong{u"::", u", ", u"minus ", u"3"};
const NumberFormat kClash{u"'", u"\u2019", u"-", u"3;0"};
const NumberFormat kPlain{u".", u",", u"-", u"0;0"};

TEST(NumberText, FollowsTheFormatWhereItWrites) {
  constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
  EXPECT_EQ(GroupedInteger(kLowest, kSwedish), u"\u22122\u00A0147\u00A0483\u00A0648");
  EXPECT_EQ(GroupedInteger(123456789, kIndian), u"12,34,56,789");
  EXPECT_EQ(GroupedInteger(2500000, kLong), u"2500, 000");
  EXPECT_EQ(GroupedInteger(2500, kPlain), u"2500");
  EXPECT_EQ(FixedTenths(-400, kEnglish), u"-40.0");
  EXPECT_EQ(FixedTenths(-4, kGerman), u"-0,4");
  EXPECT_EQ(FixedTenths(kLowest, kLong), u"minus 214748364::8");
}

TEST(NumberText, ReadsWhatPeopleType) {
  const std::u16string nines(400, u'9');
  const std::u16string tiny = u"0." + std::u16string(400, u'0') + u"1";
  const struct {
    const NumberFormat& format;
    std::vector<std::u16string> texts;
    double number;
    std::int32_t integer;
  } cases[] = {{kEnglish, {u"2500", u" 2,500 ", u"25,00.", u"2 500", u"+2\u202F500", u"2500.0"}, 2500.0, 2500},
               {kGerman, {u"2.500", u"25.00,", u"2 500"}, 2500.0, 2500},
               {kSwedish, {u"2,5", u"2.5", u"2.500"}, 2.5, 2},
               {kSwiss, {u"-2'500.9", u"\u200E-2\u2019500.9", u"\u2212 2500.9"}, -2500.9, -2500},
               {kSwedish, {u"-,5", u"\u2212.5"}, -0.5, 0},
               {kLong, {u"-3::5", u"minus 3.5"}, -3.5, -3},
               {kEnglish, {u"0.99999999999999999999"}, 1.0, 0},
               {kEnglish, {nines}, std::numeric_limits<double>::max(), std::numeric_limits<std::int32_t>::max()},
               {kEnglish, {tiny}, 0.0, 0}};
  for (const auto& row : cases) {
    for (const std::u16string& text : row.texts) {
      EXPECT_EQ(ParseNumber(text, row.format), row.number) << PrintToString(text);
      EXPECT_EQ(ParseInteger(text, row.format), row.integer) << PrintToString(text);
    }
  }
  for (const char16_t* text : {u"", u" ", u"-", u".", u"1.2.3", u"2,,500", u",500", u"5,", u"--5", u"5-", u"-Inf."}) {
    EXPECT_EQ(ParseNumber(text, kEnglish), std::nullopt) << PrintToString(text);
    EXPECT_EQ(ParseInteger(text, kEnglish), std::nullopt) << PrintToString(text);
  }
  EXPECT_EQ(ParseNumber(u".5", kGerman), std::nullopt);
}

TEST(NumberText, ReadsBackWhatItWritesInEveryFormat) {
  const NumberFormat formats[] = {kEnglish, kGerman, kSwiss, kIndian, kPersian, kSwedish, kLong, kClash, kPlain};
  std::minstd_rand random(4);
  for (int i = 0; i < 20000; ++i) {
    const auto shift = random() % 31;
    const std::int32_t value = (static_cast<std::int32_t>(random()) >> shift) * (i % 2 == 0 ? 1 : -1);
    const NumberFormat& format = formats[random() % std::size(formats)];
    EXPECT_EQ(ParseInteger(GroupedInteger(value, format), format), value);
    // Pages truncate ten times the number to steps.
    EXPECT_EQ(std::trunc(ParseNumber(FixedTenths(value, format), format).value_or(NAN) * 10.0), value);
  }
}

}  // namespace
}  // namespace tervan
