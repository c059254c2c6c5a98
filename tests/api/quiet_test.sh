#!/bin/sh
# The library is quiet, and keeps nothing of its own: no source below the programs names a standard
# stream, prints or ends the process, and no archive holds storage that one run could change for
# another.
#   quiet_test.sh SOURCE-DIRECTORY ARCHIVE...
set -eu
source=$1
shift

status=0
told=$(grep -rnE 'std::cout|std::cerr|\bstderr\b|printf|[^_.>[:alnum:]](_?exit|_Exit|abort|quick_exit) *\(' \
  "$source/src" "$source/include" --include='*.h' --include='*.cpp' |
  grep -vE "^$source/src/(console|tavro|support/unlinked)/" || true)
if [ -n "$told" ]; then
  printf 'These lines print or end the process:\n%s\n' "$told"
  status=1
fi

# By section, which objdump writes one field earlier for storage of a thread: that has no kind. What
# is constant but for its relocation is in .data.rel.ro. Storage of a thread is no run's either, but
# for the text that tavro_last_error promises to each thread.
exception='c_interface.cpp.o .tbss (anonymous namespace)::lastError'
for archive; do
  kept=$(objdump -t -C "$archive" 2>/dev/null |
    awk '/file format/ { member = $1; sub(/:$/, "", member); next }
         { place = $3 ~ /^\./ ? 3 : 4 }
         $place ~ /^\.(data|bss|tbss|tdata)(\.|$)/ && $place !~ /^\.data\.rel\.ro/ &&
           $(place + 1) !~ /^0*$/ {
           told = member " " $place
           for (i = place + 2; i <= NF; ++i) told = told " " $i
           print told }' |
    grep -v 'DW\.ref\.\|__asan\|__odr_asan\|\.LC\|__tsan' || true)
  changing=$(printf '%s\n' "$kept" | grep -vxF "$exception" || true)
  if [ -n "$changing" ]; then
    printf '%s holds what may change:\n%s\n' "$archive" "$changing"
    status=1
  fi
  if [ "$changing" = "$kept" ]; then
    printf '%s: not seen: %s\n' "$archive" "$exception"
    status=1
  fi
done
exit $status
