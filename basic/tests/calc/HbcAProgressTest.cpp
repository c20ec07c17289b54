#include <basic/calc/HbcCancelled.h>
#include <basic/calc/HbcSubProgress.h>
#include <basic/error/HbeProgrammingError.h>
#include <basic/error/HbeUserError.h>

#include "Job.h"

#include <QtCore/QElapsedTimer>

#include <new>
#include <thread>

namespace
{
using Outcome = HbcAProgress::Outcome;

// Works until a cancel ends it.
void endless(Job& job)
{
    job.initCounter(1000);
    for (;;) {
        job.advance();
        job.checkCancelled();
    }
}

struct Signals {
    explicit Signals(HbcAProgress& job)
    {
        QObject::connect(
            &job, &HbcAProgress::progressChanged, &job,
            [this](qint64 counter, qint64) { counters.push_back(counter); }, Qt::DirectConnection);
        QObject::connect(
            &job, &HbcAProgress::messageChanged, &job,
            [this](const QString& message) { messages.append(message); }, Qt::DirectConnection);
    }
    std::vector<qint64> counters;
    QStringList messages;
};
} // namespace

TEST(HbcAProgress, runsHereOrInItsOwnThread)
{
    QThread* ranIn = nullptr;
    Job job([&ranIn](Job& self) {
        ranIn = QThread::currentThread();
        self.initCounter(10);
        self.advance(10);
    });
    EXPECT_EQ(job.getOutcome(), Outcome::NOT_RUN);
    EXPECT_TRUE(job.runInCurrentThread());
    EXPECT_EQ(ranIn, QThread::currentThread());
    EXPECT_EQ(job.getOutcome(), Outcome::DONE);
    job.start();
    job.wait();
    EXPECT_EQ(ranIn, &job);
    EXPECT_EQ(job.getOutcome(), Outcome::DONE);
    EXPECT_EQ(job.getCounter(), 10);
    EXPECT_EQ(job.getErrorText(), "");
    EXPECT_NO_THROW(job.rethrowError());
}

TEST(HbcAProgress, aCancelEndsARunningJob)
{
    const std::function<void(Job&)> requests[] = {
        [](Job& job) { job.requestCancel(); },
        [](Job& job) { job.requestInterruption(); },
        [](Job& job) { job.cancelAndWait(); },
    };
    for (const auto& request : requests) {
        Job job(endless);
        job.start();
        while (job.getCounter() < 100)
            std::this_thread::yield();
        EXPECT_EQ(job.getOutcome(), Outcome::RUNNING);
        request(job);
        ASSERT_TRUE(job.wait(10000));
        EXPECT_EQ(job.getOutcome(), Outcome::CANCELLED);
        EXPECT_TRUE(job.isCancelled());
        EXPECT_EQ(job.getErrorText(), "The operation was cancelled.");
        EXPECT_THROW(job.rethrowError(), HbcCancelled);
    }
}

TEST(HbcAProgress, aRequestBeforeTheRunIsForThatRunOnly)
{
    int runs = 0;
    Job job([&runs](Job& self) {
        self.checkCancelled();
        ++runs;
    });
    job.requestCancel();
    EXPECT_FALSE(job.runInCurrentThread());
    EXPECT_TRUE(job.runInCurrentThread());
    EXPECT_FALSE(job.isCancelled());
    job.requestCancel();
    job.clearCancel();
    EXPECT_TRUE(job.runInCurrentThread());
    EXPECT_EQ(runs, 2);
}

TEST(HbcAProgress, theErrorOfARunIsKeptAsThrown)
{
    struct Row {
        std::function<void(Job&)> work;
        QString text;
    };
    const Row rows[] = {
        {[](Job&) { throw HbeUserError("No such file."); }, "No such file."},
        {[](Job&) { throw std::runtime_error("plain"); }, "plain"},
        {[](Job&) { throw std::bad_alloc(); }, "There is not enough memory."},
        {[](Job&) { throw 42; }, "An unknown error occurred."},
    };
    for (const Row& row : rows) {
        Job job(row.work);
        job.start();
        job.wait();
        EXPECT_EQ(job.getOutcome(), Outcome::FAILED);
        EXPECT_EQ(job.getErrorText(), row.text);
        EXPECT_ANY_THROW(job.rethrowError());
    }
    Job job(rows[0].work);
    EXPECT_FALSE(job.runInCurrentThread());
    EXPECT_THROW(job.rethrowError(), HbeUserError);
}

TEST(HbcAProgress, aJobRunsOnceAtATime)
{
    Job job([](Job& self) { (void)self.runInCurrentThread(); });
    EXPECT_FALSE(job.runInCurrentThread());
    EXPECT_THROW(job.rethrowError(), HbeProgrammingError);
}

TEST(HbcAProgress, aPartCountsWithItsShare)
{
    std::vector<qint64> counters;
    Job job([&counters](Job& self) {
        const auto look = [&] { counters.push_back(self.getCounter()); };
        self.initCounter(100);
        self.advance(20);
        {
            const HbcSubProgress part(self, 60);
            look(); // nothing of it yet
            self.initCounter(4);
            self.advance(1);
            look();
            {
                const HbcSubProgress inner(self, 2);
                self.initCounter(10);
                self.advance(5);
                look(); // 20 + 60 * (1 + 2 * 0.5) / 4
                self.advance(50);
                look(); // a part never counts more than its share
            }
            look();
        }
        look();
        {
            const HbcSubProgress part(self, 10); // ends early
            self.initCounter(1000);
        }
        look();
        self.advance(50);
        look(); // never beyond the total
    });
    EXPECT_TRUE(job.runInCurrentThread());
    EXPECT_THAT(counters, testing::ElementsAre(20, 35, 50, 65, 65, 80, 90, 100));
    EXPECT_EQ(job.getTotal(), 100);
}

TEST(HbcAProgress, anotherJobRunsAsAPart)
{
    std::vector<qint64> counters;
    Job outer([&](Job& self) {
        self.setAvailableMemory(12345);
        self.initCounter(10);
        Job inner([&](Job& part) {
            EXPECT_EQ(part.getAvailableMemory(), 12345);
            part.setMessage("inner");
            part.initCounter(4);
            part.advance(2);
            counters.push_back(self.getCounter());
        });
        self.runSubProgress(inner, 6);
        counters.push_back(self.getCounter());

        Job failing([](Job&) { throw HbeUserError("inner error"); });
        EXPECT_THROW(self.runSubProgress(failing, 1), HbeUserError);
        counters.push_back(self.getCounter());

        Job cancelled(endless);
        self.requestCancel();
        self.runSubProgress(cancelled, 1);
    });
    EXPECT_FALSE(outer.runInCurrentThread());
    EXPECT_EQ(outer.getOutcome(), Outcome::CANCELLED);
    EXPECT_EQ(outer.getMessage(), "inner");
    EXPECT_THAT(counters, testing::ElementsAre(3, 6, 7));
}

TEST(HbcAProgress, signalsAreFewAndTheLastOnesArrive)
{
    Job job([](Job& self) {
        self.initCounter(2000000);
        for (int i = 0; i < 2000000; ++i) {
            if (i % 1000 == 0)
                self.setMessage(QString::number(i));
            self.advance();
        }
        self.setMessage("last");
    });
    const Signals sent(job);
    QElapsedTimer timer;
    timer.start();
    EXPECT_TRUE(job.runInCurrentThread());
    const auto most = static_cast<std::size_t>(timer.elapsed() / 50 + 3);
    EXPECT_LE(sent.counters.size(), most);
    EXPECT_TRUE(std::is_sorted(sent.counters.begin(), sent.counters.end()));
    EXPECT_EQ(sent.counters.back(), 2000000);
    EXPECT_LE(static_cast<std::size_t>(sent.messages.size()), most + 20);
    EXPECT_EQ(sent.messages.first(), "0");
    EXPECT_EQ(sent.messages.last(), "last");
}

TEST(HbcAProgress, workersCountTogetherAndSeeTheCancel)
{
    Job job([](Job& self) {
        self.initCounter(400000);
        std::vector<std::thread> workers;
        for (int i = 0; i < 4; ++i) {
            workers.emplace_back([&self] {
                for (int row = 0; row < 100000; ++row)
                    self.advance();
                while (!self.isCancelled())
                    std::this_thread::yield();
            });
        }
        for (std::thread& worker : workers)
            worker.join();
        self.checkCancelled();
    });
    job.start();
    while (job.getCounter() < 400000)
        std::this_thread::yield();
    job.requestCancel();
    job.wait();
    EXPECT_EQ(job.getOutcome(), Outcome::CANCELLED);
    EXPECT_EQ(job.getCounter(), 400000);
}

TEST(HbcAProgress, memoryIsThatOfTheSystemUnlessSet)
{
    Job job([](Job&) {});
    EXPECT_GT(job.getAvailableMemory(), 1 << 20);
    job.setAvailableMemory(1000);
    EXPECT_EQ(job.getAvailableMemory(), 1000);
    job.setAvailableMemory(0);
    EXPECT_GT(job.getAvailableMemory(), 1 << 20);
}
