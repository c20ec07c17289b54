"""A look at a project: `python3 -m kelvane PROJECT [DATASET [FILTER]]`."""

from __future__ import annotations

import argparse
import os
import sys

import numpy as np

from .dataset import Dataset, Project
from .errors import KelvaneError


def _show_project(project: Project) -> None:
    for title, names in (("datasets", project.dataset_names()),
                         ("filters", project.filter_names())):
        print(f"{title}: {', '.join(names) or 'none'}")


def _show_dataset(dataset: Dataset) -> None:
    print(f"{dataset.name}: {dataset.sample_count} samples, {int(dataset.mask.sum())} masked")
    for name, variable in dataset.variables.items():
        undefined = int(np.isnan(variable.read()).sum())
        print(f"{name}\t{variable.type}\t{dataset.sample_count - undefined} defined")


def main() -> int:
    parser = argparse.ArgumentParser(prog="python3 -m kelvane", description=(
        "Names the datasets and filters of a project, describes a dataset, or counts the samples "
        "that pass a filter."))
    parser.add_argument("project", help="the project's directory")
    parser.add_argument("dataset", nargs="?")
    parser.add_argument("filter", nargs="?", help="the name of a filter of the project")
    arguments = parser.parse_args()
    try:
        project = Project(arguments.project)
        if arguments.dataset is None:
            _show_project(project)
            return 0
        dataset = project.dataset(arguments.dataset)
        if arguments.filter is None:
            _show_dataset(dataset)
            return 0
        chosen = project.filter(arguments.filter)
        print(chosen.expression())
        print(f"{int(dataset.select(chosen).sum())} of {dataset.sample_count} samples")
        return 0
    except KelvaneError as error:
        print(error, file=sys.stderr)
        return 1


if __name__ == "__main__":
    try:
        status = main()
        sys.stdout.flush()
    except OSError as fault:  # of what is printed: a reader like `head` may go away early
        os.dup2(os.open(os.devnull, os.O_WRONLY), sys.stdout.fileno())
        if not isinstance(fault, BrokenPipeError):
            print(f"standard output: {fault.strerror}.", file=sys.stderr)
        status = 1
    sys.exit(status)
