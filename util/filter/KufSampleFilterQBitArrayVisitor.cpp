#include "KufRulePredicate.h"

#include <util/dataset/KudADataTable.h>
#include <util/filter/KufISampleFilter.h>
#include <util/filter/KufSampleFilterQBitArrayVisitor.h>
#include <util/filter/KufSampleFilterValidator.h>

#include <QtCore/QtEndian>

#include <algorithm>
#include <atomic>
#include <future>
#include <system_error>
#include <thread>
#include <vector>

namespace
{
constexpr int BLOCK_SIZE = 8192; // samples; what a rule reads of them stays in the cache
constexpr int BLOCK_WORDS = BLOCK_SIZE / 64;

/// Blocks that a thread takes at a time: next to each other, as memory likes to be read, and enough
/// of them to be worth a thread.
constexpr int RUN_BLOCKS = 32;
} // namespace

/// The combination as instructions for a stack of bit blocks.
struct KufSampleFilterQBitArrayVisitor::Program {
    enum class Operation { TEST, NOT, AND, OR };
    struct Step {
        Operation operation;
        std::size_t rule; // of a TEST
    };

    void add(Operation operation, std::size_t rule = 0)
    {
        steps.push_back({operation, rule});
        depth += operation == Operation::TEST;
        depth -= operation == Operation::AND || operation == Operation::OR;
        maxDepth = std::max(maxDepth, depth);
    }

    QBitArray run() const;
    void runAll(int count, quint64* words) const;
    void runBlock(int first, int count, quint64* stack) const;

    const KufISampleFilter* filter = nullptr;
    const KudADataTable* table = nullptr;
    QList<KudDatasetVariable> variables;
    std::vector<KufRulePredicate> tests; // of the rules that the combination names, by index
    std::vector<Step> steps;
    std::size_t depth = 0;
    std::size_t maxDepth = 0;
};

void KufSampleFilterQBitArrayVisitor::Program::runBlock(int first, int count, quint64* stack) const
{
    quint64* top = stack - BLOCK_WORDS; // the operand that was made last
    const int words = (count + 63) / 64;
    for (const Step& step : steps) {
        switch (step.operation) {
        case Operation::TEST:
            top += BLOCK_WORDS;
            tests[step.rule](first, count, top);
            break;
        case Operation::NOT:
            std::transform(top, top + words, top, [](quint64 word) { return ~word; });
            break;
        case Operation::AND:
            top -= BLOCK_WORDS;
            for (int i = 0; i < words; ++i)
                top[i] &= top[BLOCK_WORDS + i];
            break;
        case Operation::OR:
            top -= BLOCK_WORDS;
            for (int i = 0; i < words; ++i)
                top[i] |= top[BLOCK_WORDS + i];
            break;
        }
    }
}

/// Large tables on all cores: the columns are only read, and each block has words of its own.
void KufSampleFilterQBitArrayVisitor::Program::runAll(int count, quint64* words) const
{
    const int blockCount = count / BLOCK_SIZE + (count % BLOCK_SIZE != 0);
    std::atomic<int> nextRun(0);
    const auto work = [&](std::vector<quint64> stack) {
        const int runCount = (blockCount + RUN_BLOCKS - 1) / RUN_BLOCKS;
        for (int run = nextRun++; run < runCount; run = nextRun++) {
            const int end = std::min((run + 1) * RUN_BLOCKS, blockCount);
            for (int block = run * RUN_BLOCKS; block < end; ++block) {
                const int first = block * BLOCK_SIZE;
                const int size = std::min(BLOCK_SIZE, count - first);
                runBlock(first, size, stack.data());
                qToLittleEndian<quint64>(stack.data(), (size + 63) / 64, words + first / 64);
            }
        }
    };
    const std::vector<quint64> stack(maxDepth * BLOCK_WORDS);
    std::vector<std::future<void>> helpers; // waited for where they end
    const int cores = static_cast<int>(std::thread::hardware_concurrency());
    const int helperCount = std::min(cores, blockCount / RUN_BLOCKS) - 1;
    try {
        while (static_cast<int>(helpers.size()) < helperCount)
            helpers.push_back(std::async(std::launch::async, work, stack));
    } catch (const std::system_error&) {
        // A system out of threads: those there are do the work.
    }
    work(stack);
}

QBitArray KufSampleFilterQBitArrayVisitor::Program::run() const
{
    const int count = table->getSampleCount();
    if (steps.empty())
        return QBitArray(count, true);
    std::vector<quint64> words((static_cast<std::size_t>(count) + 63) / 64);
    runAll(count, words.data());
    // Bits beyond the last sample, which a negation sets, are left out here.
    return QBitArray::fromBits(reinterpret_cast<const char*>(words.data()), count);
}

KufSampleFilterQBitArrayVisitor::KufSampleFilterQBitArrayVisitor(
    const KufISampleFilter* filter, const KudADataset* dataset,
    const QList<KudDatasetVariable>& variables)
    : KufSampleFilterASTVisitor(filter)
    , m_program(std::make_unique<Program>())
{
    const KufSampleFilterValidator validator(filter, dataset, variables);
    validator.requireValid();
    m_program->filter = filter;
    m_program->table = validator.getTable();
    m_program->variables = variables;
    m_program->tests.resize(filter == nullptr ? 0 : std::size_t(filter->getRuleCount()));
    _traverse();
    m_selection = m_program->run();
    m_program.reset();
}

KufSampleFilterQBitArrayVisitor::~KufSampleFilterQBitArrayVisitor() = default;

void KufSampleFilterQBitArrayVisitor::_visitRule(int index)
{
    const auto rule = static_cast<std::size_t>(index);
    KufRulePredicate& test = m_program->tests[rule];
    if (!test)
        test = kufMakeRulePredicate(*m_program->filter->getRule(index),
                                    *m_program->table->readValues(m_program->variables.at(index)));
    m_program->add(Program::Operation::TEST, rule);
}

void KufSampleFilterQBitArrayVisitor::_visitNot()
{
    m_program->add(Program::Operation::NOT);
}

void KufSampleFilterQBitArrayVisitor::_visitAnd()
{
    m_program->add(Program::Operation::AND);
}

void KufSampleFilterQBitArrayVisitor::_visitOr()
{
    m_program->add(Program::Operation::OR);
}
