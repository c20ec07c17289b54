#!/usr/bin/env bash
# The symbols that a shared library exports are its interface: our names (by prefix, with their
# tables and type information), and nothing else. Weak symbols are left out: these are instances of
# other people's templates, which the standard library marks as visible.
#
#   scripts/check-exports.sh LIBRARY...
set -euo pipefail

ours='^((vtable|VTT|typeinfo|typeinfo name|guard variable|construction vtable) for |(non-virtual|virtual|covariant return) thunk to )?'
ours+='(([Hh][bg]|[Kk]u|Grdecl|Ecl|ecl_|Archive(Zstd|Gzip))[A-Za-z0-9_]*(<.*>)?|operator(==|!=|<=?|>=?|<<|>>|[-+*/|&^])|qHash|qt_metacall)(::|\(|\[|<|$|-in-)'
failed=0
for library in "$@"; do
    strangers=$(nm -DC --defined-only "$library" | grep -E '^[0-9a-f]+ [TDBRSG] ' |
        cut -d' ' -f3- | grep -vxE '__bss_start|_edata|_end|_init|_fini' | grep -vE "$ours" || true)
    if [ -n "$strangers" ]; then
        failed=1
        printf '%s exports what is not ours:\n%s\n' "$library" "$strangers" >&2
    fi
    echo "$(basename "$library"): $(nm -DC --defined-only "$library" | grep -cE ' [TDBRSG] ') strong symbols"
done
exit $failed
