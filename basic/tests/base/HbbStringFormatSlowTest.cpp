#include "DecimalDifferential.h"

TEST(HbbStringFormatSlow, twentyMillionDecimalsEqualToChars)
{
    EXPECT_EQ(firstDecimalDifference(20261121, 20000000), "");
}

TEST(HbbStringFormatSlow, everyGroupOfEightDigitsIsRight)
{
    char ours[HbbStringFormat::INTEGER_CAPACITY];
    char theirs[HbbStringFormat::INTEGER_CAPACITY];
    for (qint64 value = 0; value < 100000000; ++value) {
        const char* end = HbbStringFormat::write(ours, value);
        const char* expected = std::to_chars(theirs, theirs + sizeof theirs, value).ptr;
        const bool same = end - ours == expected - theirs &&
                          std::memcmp(ours, theirs, static_cast<std::size_t>(end - ours)) == 0;
        ASSERT_TRUE(same) << value;
    }
}
