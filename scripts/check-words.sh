#!/usr/bin/env bash
# Unfinished work is not marked in the sources: it is finished, or it is an issue.
set -euo pipefail
cd "$(dirname "$0")/.."

marks='TODO|FIXME|XXX'
if git grep -nIwE "$marks" -- . ':!scripts/check-words.sh' ':!fuzz/corpus'; then
    echo "check-words: the lines above hold a mark of unfinished work" >&2
    exit 1
fi
if git log --format='%h %s%n%b' | grep -nwE "$marks"; then
    echo "check-words: the commit messages above hold a mark of unfinished work" >&2
    exit 1
fi
echo "check-words: clean"
