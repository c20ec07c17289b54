"""Counts the samples that pass stored filters, on a cluster: here two workers of this machine.

    select_on_cluster.py PROJECT DATASET FILTER [FILTER ...] [--partition SAMPLES] [--expect COUNT]

The workers read their partitions from the project; this process only says where the columns are
and what is asked. With a cluster of many machines the same holds: give `Client` the scheduler's
address, and the project a place that all machines see.
"""

import argparse
import sys
import tempfile

import dask
from distributed import Client, LocalCluster

from kelvane import KelvaneError, Project, cluster

# A machine may be slow, but it must not hang: whatever does not answer in this time has failed.
SECONDS = 120


def count_on_two_workers(selections: list) -> list:
    with tempfile.TemporaryDirectory() as scratch:
        dask.config.set({"temporary-directory": scratch,
                         "distributed.comm.timeouts.connect": f"{SECONDS}s"})
        # Of the loopback interface only: by default the web pages of the cluster are for everybody.
        with LocalCluster(n_workers=2, threads_per_worker=1, host="127.0.0.1",
                          dashboard_address="127.0.0.1:0", worker_dashboard_address="127.0.0.1:0",
                          local_directory=scratch) as machines:
            with Client(machines, timeout=SECONDS) as client:
                client.wait_for_workers(2, timeout=SECONDS)
                futures = client.compute([selected.sum() for selected in selections])
                return [int(future.result(timeout=SECONDS)) for future in futures]


def main() -> int:
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("project")
    parser.add_argument("dataset")
    parser.add_argument("filters", nargs="+", metavar="FILTER")
    parser.add_argument("--partition", type=int, default=cluster.PARTITION,
                        help="samples that a task takes")
    parser.add_argument("--expect", type=int, help="fail unless each filter passes so many")
    arguments = parser.parse_args()

    project = Project(arguments.project)
    columns = cluster.LazyColumns(project.dataset(arguments.dataset), arguments.partition)
    selections = [columns.select(project.filter(name)) for name in arguments.filters]
    counts = count_on_two_workers(selections)
    for name, count in zip(arguments.filters, counts):
        print(f"{count}\t{name}")
    if arguments.expect is not None and any(count != arguments.expect for count in counts):
        print(f"{arguments.expect} samples were expected.", file=sys.stderr)
        return 1
    return 0


if __name__ == "__main__":  # the workers import this file, too
    try:
        sys.exit(main())
    except KelvaneError as error:
        sys.exit(str(error))
