#!/bin/sh
# Lets the library select samples of a project, then a cluster: both must count the same.
#
#   run_select_on_cluster.sh SELECT_SAMPLES PYTHON
set -eu
for module in numpy zstandard dask.array distributed; do
    "$2" -c "import $module" 2>/dev/null || { echo "The package $module is not installed"; exit 0; }
done
count=$("$1" 100000)
exec "$2" "$(dirname "$0")/select_on_cluster.py" study campaign "rich ore" \
    --partition 30000 --expect "$count"
