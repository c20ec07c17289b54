#include <basic/base/HbbDebug.h>

#include <atomic>
#include <thread>

TEST(HbbDebug, theSinkTakesMessagesAndGivesThePlaceBack)
{
    QStringList texts;
    const HbbDebug::Sink former =
        HbbDebug::setSink([&texts](HbbDebug::Level level, const QString& message) {
            texts.append((level == HbbDebug::Level::WARNING ? "W " : "D ") + message);
        });
    HbbDebug::print("one\n");
    HbbDebug::printWarning("two %1");
    EXPECT_EQ(texts, QStringList({"D one\n", "W two %1"}));
    HbbDebug::setSink(former);

    testing::internal::CaptureStderr();
    HbbDebug::print("plain");
    HbbDebug::printWarning("bad\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "plain\nwarning: bad\n");
    EXPECT_EQ(texts.size(), 2);
}

TEST(HbbDebug, aSinkMayPrintAndManyThreadsMayPrint)
{
    std::atomic<int> count{0};
    const HbbDebug::Sink former =
        HbbDebug::setSink([&count](HbbDebug::Level level, const QString& message) {
            ++count;
            if (level == HbbDebug::Level::WARNING)
                HbbDebug::print(message);
        });
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([] {
            for (int j = 0; j < 500; ++j)
                HbbDebug::printWarning(QString::number(j));
        });
    }
    for (std::thread& thread : threads)
        thread.join();
    HbbDebug::setSink(former);
    EXPECT_EQ(count, 4000);
}
