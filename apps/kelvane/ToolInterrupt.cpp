#include "ToolInterrupt.h"

#include "ToolProgress.h"

#include <basic/calc/HbcAProgress.h>
#include <basic/calc/HbcCancelled.h>

#include <csignal>

namespace
{
constexpr unsigned long POLL_MILLISECONDS = 20;

volatile std::sig_atomic_t requested = 0;

void onSignal(int number)
{
    requested = number;
}
} // namespace

void ToolInterrupt::install()
{
    struct sigaction action = {};
    action.sa_handler = &onSignal;
    // The first signal of a kind is ours, the next has its default effect: it ends the process.
    action.sa_flags = SA_RESETHAND | SA_RESTART;
    sigemptyset(&action.sa_mask);
    for (const int number : {SIGINT, SIGTERM, SIGHUP})
        sigaction(number, &action, nullptr);
    // A file that grows beyond what the system allows is then an error of writing it, which is told
    // and cleaned up after like any other.
    std::signal(SIGXFSZ, SIG_IGN);
}

int ToolInterrupt::getSignal()
{
    return requested;
}

void ToolInterrupt::check()
{
    if (requested != 0)
        throw HbcCancelled();
}

void ToolInterrupt::run(HbcAProgress& job, ToolProgress& progress, bool showsMessages)
{
    job.start();
    while (!job.wait(POLL_MILLISECONDS)) {
        if (requested != 0)
            job.requestCancel();
        progress.show(job.getCounter(), job.getTotal(),
                      showsMessages ? job.getMessage() : QString());
    }
    job.rethrowError();
}
