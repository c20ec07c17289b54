#include <util/observable/KuoLockObserver.h>

#include "CapturedLog.h"

#include <functional>
#include <stdexcept>

namespace
{
class Notice;
class Source;
} // namespace

template <>
struct ObservableTraits<Notice> {
    using Observable = Source;
};

namespace
{
/// A notice that is a list of numbers; merging appends.
class Notice : public KuoAObservableModif<Notice>
{
public:
    Notice() = default;
    explicit Notice(std::vector<int> numbers)
        : m_numbers(std::move(numbers))
    {
    }
    int getNumberOfModif() const override { return static_cast<int>(m_numbers.size()); }
    const std::vector<int>& numbers() const { return m_numbers; }
    const Source* source() const { return _getObservable(); }

private:
    void _merge(const Notice& other) override
    {
        m_numbers.insert(m_numbers.end(), other.m_numbers.begin(), other.m_numbers.end());
    }
    std::vector<int> m_numbers;
};

class Source : public KuoAObservable<Notice>
{
public:
    Source()
        : KuoAObservable("Source")
    {
    }
    void send(int number) const { notify(Notice({number})); }
};

using Heard = std::vector<std::vector<int>>;

/// Remembers what it hears, then does what the test wants.
class Listener : public KuoIObserver<Notice>
{
public:
    void update(const Notice& notice) override
    {
        heard.push_back(notice.numbers());
        sender = notice.source();
        if (onUpdate)
            onUpdate();
    }
    void destroyed(const KuoAObservable<Notice>* observable) override
    {
        lost = observable;
        if (onDestroyed)
            onDestroyed();
    }

    Heard heard;
    const Source* sender = nullptr;
    const KuoAObservable<Notice>* lost = nullptr;
    std::function<void()> onUpdate;
    std::function<void()> onDestroyed;
};

/// A source and three listeners in its list, a, b, c.
class KuoAObservableTest : public testing::Test
{
protected:
    void SetUp() override
    {
        for (Listener* listener : {&a, &b, &c})
            source->addObserver(listener);
    }
    Listener a, b, c;
    std::unique_ptr<Source> source = std::make_unique<Source>(); // dies first
};

TEST_F(KuoAObservableTest, DeliversOnceToEachAndNamesTheSender)
{
    source->addObserver(&a);
    source->addObserver(nullptr);
    source->send(1);
    EXPECT_EQ(a.heard, Heard({{1}}));
    EXPECT_EQ(c.heard, Heard({{1}}));
    EXPECT_EQ(b.sender, source.get());
    source->notify(Notice());
    EXPECT_EQ(a.heard.size(), 1u) << "an empty notice is not delivered";
}

TEST_F(KuoAObservableTest, LockedMergesAndCommitsOnce)
{
    EXPECT_FALSE(source->lock(true));
    EXPECT_TRUE(source->isLocked());
    source->send(1);
    source->send(2);
    EXPECT_TRUE(a.heard.empty());
    EXPECT_TRUE(source->hasNotifications());
    EXPECT_TRUE(source->lock(false));
    source->commit();
    source->commit();
    EXPECT_EQ(a.heard, Heard({{1, 2}}));
    EXPECT_EQ(a.sender, source.get());
    EXPECT_FALSE(source->hasNotifications());

    source->lock(true);
    source->send(3);
    source->clearNotifications();
    source->commit();
    EXPECT_EQ(a.heard.size(), 1u);

    source->send(4);
    source->lock(false);
    source->send(5);
    EXPECT_EQ(a.heard.back(), std::vector<int>({4, 5})) << "what is pending goes along";
}

TEST_F(KuoAObservableTest, SilencedObservableDropsButCommits)
{
    source->lock(true);
    source->send(1);
    EXPECT_FALSE(source->lockObservable(true));
    source->send(2);
    source->commit();
    EXPECT_EQ(a.heard, Heard({{1}}));
    EXPECT_TRUE(source->lockObservable(false));
}

TEST_F(KuoAObservableTest, KeepsNothingPendingForNobody)
{
    const Source lonely;
    lonely.lock(true);
    lonely.send(1);
    EXPECT_FALSE(lonely.hasNotifications());

    lonely.addObserver(&a);
    lonely.removeObserver(&a);
    lonely.send(2);
    EXPECT_TRUE(lonely.hasNotifications()) << "a vacated slot counts until a delivery compresses";
    lonely.commit();
    lonely.send(3);
    EXPECT_FALSE(lonely.hasNotifications());
}

TEST_F(KuoAObservableTest, ObserverLocksAreCounted)
{
    source->lockObserver(&a, false);
    source->lockObserver(&a, true);
    source->lockObserver(&a, true);
    source->lockObserver(&a, false);
    source->send(1);
    EXPECT_TRUE(a.heard.empty());
    source->lockObserver(&a, false);
    source->send(2);
    EXPECT_EQ(a.heard, Heard({{2}}));
    EXPECT_EQ(b.heard, Heard({{1}, {2}}));
}

TEST_F(KuoAObservableTest, LockCountsFollowTheirObserversWhenSlotsGo)
{
    source->lockObserver(&c, true);
    source->removeObserver(&a);
    source->send(1);
    source->addObserver(&a);
    source->send(2);
    EXPECT_EQ(a.heard, Heard({{2}}));
    EXPECT_EQ(b.heard, Heard({{1}, {2}}));
    EXPECT_TRUE(c.heard.empty());
}

TEST_F(KuoAObservableTest, CopiesHaveNoObserversLocksOrPendingNotice)
{
    source->lock(true);
    source->lockObservable(true);
    Listener own;
    Source copy(*source);
    EXPECT_FALSE(copy.isLocked());
    copy.addObserver(&own);
    copy = *source;
    copy.send(1);
    EXPECT_EQ(own.heard, Heard({{1}}));
    EXPECT_TRUE(a.heard.empty());
}

TEST_F(KuoAObservableTest, ObserversMayComeAndGoDuringADelivery)
{
    Listener late;
    a.onUpdate = [&] {
        a.onUpdate = nullptr;
        source->removeObserver(&a);
        source->removeObserver(&b);
        source->addObserver(&late);
        source->addObserver(&a);
    };
    source->send(1);
    EXPECT_TRUE(b.heard.empty()) << "removed before its turn";
    EXPECT_TRUE(late.heard.empty()) << "added, it waits for the next delivery";
    EXPECT_EQ(c.heard, Heard({{1}}));
    source->send(2);
    EXPECT_EQ(a.heard, Heard({{1}, {2}}));
    EXPECT_EQ(late.heard, Heard({{2}}));
    source->removeObserver(&late);

    c.onUpdate = [&] {
        for (Listener* listener : {&a, &b, &c})
            source->removeObserver(listener);
    };
    source->send(3);
    source->send(4);
    EXPECT_EQ(a.heard.size(), 2u) << "c stands before a now";
}

TEST_F(KuoAObservableTest, NestedNoticesReachAllAndCompressAtTheEndOnly)
{
    a.onUpdate = [&] {
        if (a.heard.size() == 1) {
            source->removeObserver(&a);
            source->send(2);
            source->addObserver(&a);
        }
    };
    source->send(1);
    EXPECT_EQ(b.heard, Heard({{2}, {1}}));
    EXPECT_EQ(c.heard, Heard({{2}, {1}}));
    source->send(3);
    EXPECT_EQ(a.heard, Heard({{1}, {3}}));
}

TEST_F(KuoAObservableTest, LockingDuringADeliveryTakesEffectAtOnce)
{
    a.onUpdate = [&] {
        source->lockObserver(&b, true);
        source->lock(true);
        source->send(2);
        a.onUpdate = nullptr;
    };
    source->send(1);
    source->lock(false);
    source->commit();
    EXPECT_EQ(a.heard, Heard({{1}, {2}}));
    EXPECT_TRUE(b.heard.empty());
    EXPECT_EQ(c.heard, Heard({{1}, {2}}));
}

TEST_F(KuoAObservableTest, RunawayRecursionWarnsAndDrops)
{
    const CapturedLog log;
    source->removeObserver(&b);
    source->removeObserver(&c);
    a.onUpdate = [&] { source->send(static_cast<int>(a.heard.size())); };
    source->send(0);
    EXPECT_EQ(a.heard.size(), 101u);
    ASSERT_EQ(log.texts.size(), 1);
    EXPECT_EQ(log.texts[0], QStringLiteral("KuoAObservable: suspicious recursion detected.\n"
                                           "Maybe some KuoLock/KuoLockObserver can help you?!?"));
    EXPECT_FALSE(source->hasNotifications());
    a.onUpdate = nullptr;
    source->send(1);
    EXPECT_EQ(a.heard.size(), 102u) << "the depth is restored";
}

TEST_F(KuoAObservableTest, AnObserverThatThrowsLeavesTheObservableWhole)
{
    b.onUpdate = [&] {
        source->removeObserver(&a);
        throw std::runtime_error("b");
    };
    for (int i = 0; i < 150; ++i)
        EXPECT_THROW(source->send(i), std::runtime_error);
    b.onUpdate = nullptr;
    source->send(200);
    EXPECT_EQ(a.heard.size(), 1u);
    EXPECT_EQ(b.heard.back(), std::vector<int>({200}));
    EXPECT_EQ(c.heard, Heard({{200}}));
}

TEST_F(KuoAObservableTest, MayBeDestroyedFromInsideNestedDeliveries)
{
    b.onUpdate = [&] {
        if (b.heard.size() == 3)
            source.reset();
        else if (source)
            source->send(2);
    };
    source->send(1);
    EXPECT_EQ(a.heard.size(), 3u);
    EXPECT_TRUE(c.heard.empty());
    EXPECT_NE(c.lost, nullptr);
}

TEST_F(KuoAObservableTest, TellsItsEndOnceAndNothingElse)
{
    auto doomed = std::make_unique<Listener>();
    source->addObserver(doomed.get());
    Source* dying = source.get();
    a.onDestroyed = [&] {
        dying->removeObserver(doomed.get());
        doomed.reset();
        dying->removeObserver(&a);
        dying->addObserver(&a);
        dying->notify(Notice({1}));
        dying->commit();
    };
    const KuoAObservable<Notice>* const address = dying;
    source.reset();
    EXPECT_EQ(a.lost, address);
    EXPECT_EQ(c.lost, address);
    EXPECT_TRUE(c.heard.empty());
}

TEST_F(KuoAObservableTest, LockGuardHoldsForItsLifetime)
{
    {
        const KuoLockObserver<Notice> guard(&a, source.get());
        const KuoLockObserver<Notice> nothing(nullptr, source.get());
        source->send(1);
    }
    source->send(2);
    EXPECT_EQ(a.heard, Heard({{2}}));

    const KuoLockObserver<Notice> outlives(&a, source.get());
    const KuoLockObserver<Notice> nowhere(&a, static_cast<Source*>(nullptr));
    source.reset();
}
} // namespace
