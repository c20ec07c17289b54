#pragma once

class HbcAProgress;
class ToolProgress;

/// Ctrl-C (and a request to end, or a lost terminal): the first one asks the running command to
/// clean up and end, a second one ends the tool at once.
namespace ToolInterrupt
{
void install();

/// The number of the signal that asks us to end, or 0.
int getSignal();

/// Raises HbcCancelled when there is one.
void check();

/// Runs a job in its own thread to its end and shows its progress, with its messages where these
/// say more than the bar does; a signal cancels it. What ends the job is thrown.
void run(HbcAProgress& job, ToolProgress& progress, bool showsMessages = false);
} // namespace ToolInterrupt
