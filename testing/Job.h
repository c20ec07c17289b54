#pragma once

#include <basic/calc/HbcAProgress.h>

#include <functional>

/// Does the work that it is given.
class Job : public HbcAProgress
{
public:
    explicit Job(std::function<void(Job&)> work)
        : m_work(std::move(work))
    {
    }
    ~Job() override { cancelAndWait(); }

protected:
    void _run() override { m_work(*this); }

private:
    std::function<void(Job&)> m_work;
};
