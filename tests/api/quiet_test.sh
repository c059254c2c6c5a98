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

# By section: what is constant but for its relocation is in .data.rel.ro.
for archive; do
  kept=$(objdump -t -C "$archive" 2>/dev/null |
    awk '$4 ~ /^\.(data|bss|tbss|tdata)(\.|$)/ && $4 !~ /^\.data\.rel\.ro/ && $5 != "0000000000000000" {
           $1 = $2 = ""; print }' |
    grep -v 'DW\.ref\.\|__asan\|__odr_asan\|\.LC\|__tsan' || true)
  if [ -n "$kept" ]; then
    printf '%s holds what may change:\n%s\n' "$archive" "$kept"
    status=1
  fi
done
exit $status
