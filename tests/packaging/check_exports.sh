#!/usr/bin/env bash
# The shared object is named and exports as a host expects: SONAME libVantraCore-0.so, and only the
# library's own namespace and C functions in the dynamic symbol table.
set -euo pipefail
lib="$1"
[ "$(basename "$lib")" = libVantraCore-0.so ] || { echo "unexpected file name $lib"; exit 1; }
soname=$(readelf -d "$lib" | sed -n 's/.*(SONAME).*\[\(.*\)\]/\1/p')
[ "$soname" = libVantraCore-0.so ] || { echo "SONAME is '$soname'"; exit 1; }

symbols=$(nm -D --defined-only -C "$lib" | cut -d' ' -f3-)
stray=$(printf '%s\n' "$symbols" | grep -vE '^((void |bool )?Tarvex::VantraCore::|(typeinfo|typeinfo name|vtable|VTT|guard variable) for Tarvex::VantraCore::|VxStringData_C_API_|VxVariantData_C_API_|_init$|_fini$)' | grep -v '^$' || true)
if [ -n "$stray" ]; then
  echo "symbols outside the exported surface:"; printf '  %s\n' "$stray"; exit 1
fi
# Implementation details stay hidden.
leaked=$(printf '%s\n' "$symbols" | grep -E 'guardTransport|failTransport|detail::' || true)
if [ -n "$leaked" ]; then
  echo "internal symbols exported:"; printf '  %s\n' "$leaked"; exit 1
fi
echo "exports ok: $(printf '%s\n' "$symbols" | grep -c .) symbols"
