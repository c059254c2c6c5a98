#!/bin/sh
# Installs the library into a prefix, moves the prefix, and builds and runs the programs of
# examples/embed/ against it in a directory of their own: with CMake, with pkg-config, and from the
# static library. Then the example in the first comment of the header, and a project in C alone.
# With flags of sanitizers every program is built with them, as the library was, and must run clean.
#
# Usage: embed_test.sh CMAKE BUILD-DIRECTORY SOURCE-DIRECTORY [SANITIZER-FLAG...]
# Exit status 1 when anything is wrong, with a line for each finding.
set -u
LC_ALL=C
export LC_ALL

cmake=$1
build=$2
source=$3
shift 3
sanitizers=$*
expected=$source/tests/embed/expected
day=$source/examples/room/obs/stuck_on.obs
tmp=$(mktemp -d) || exit 1
trap 'rm -rf "$tmp"' EXIT

failed=0
complain() {
  echo "embed_test: $*" >&2
  failed=1
}

# Runs a command, and shows what it said when it fails.
quietly() {
  "$@" >"$tmp/said" 2>&1 && return
  complain "failed: $*"
  cat "$tmp/said" >&2
}

# The program says what it is expected to, and nothing else: run EXPECTED PROGRAM [ARGUMENT]
run() {
  answer=$expected/$1
  shift
  "$@" >"$tmp/out" 2>"$tmp/err" || complain "$* ended with status $?"
  [ ! -s "$tmp/err" ] || complain "$*: $(cat "$tmp/err")"
  diff "$answer" "$tmp/out" >&2 || complain "$*: other output than expected"
}

# ---- Installed, and moved ----

quietly "$cmake" --install "$build" --component library --prefix "$tmp/first"
mkdir "$tmp/moved" && mv "$tmp/first" "$tmp/moved/prefix"
prefix=$tmp/moved/prefix
if grep -rlF -e "$tmp/first" -e "$source" -e "$build" "$prefix" --include='*.cmake' --include='*.pc'; then
  complain "a package file tells where it was made"
fi

library=$(ls "$prefix"/lib*/libtavro.so 2>/dev/null || ls "$prefix"/lib/*/libtavro.so)
libraries=$(dirname "$library")
foreign=$(nm -D --defined-only -C "$library" | awk '{ $1 = $2 = ""; print }' |
  grep -vE '^ *(tavro_|tavro::|(typeinfo|typeinfo name|vtable) for tavro::)')
[ -z "$foreign" ] || complain "the shared library shows $foreign"
readelf -d "$library" | grep -q 'SONAME.*libtavro\.so\.[0-9]' || complain "no version in the soname"
if nm -C "$libraries/libtavro.a" | grep -qE 'U std::(cout|cerr|cin)$| U (exit|abort|signal|fopen)$'; then
  complain "the library prints, exits, opens files or installs handlers"
fi

# ---- With CMake ----

cp -R "$source/examples/embed" "$tmp/embed" && cd "$tmp/embed" || exit 1
quietly "$cmake" -S . -B build -DCMAKE_PREFIX_PATH="$prefix" -DCMAKE_BUILD_TYPE=Release \
  -DCMAKE_C_FLAGS="-Wall -Wextra -Werror $sanitizers" \
  -DCMAKE_CXX_FLAGS="-Wall -Wextra -Werror $sanitizers"
quietly "$cmake" --build build
run room build/room "$day"
run room_c build/room_c "$day"
run two_plants build/two_plants "$day"

# A project that knows no C++.
mkdir "$tmp/c" && cat >"$tmp/c/CMakeLists.txt" <<'END'
cmake_minimum_required(VERSION 3.16)
project(c_alone LANGUAGES C)
find_package(tavro REQUIRED)
add_executable(room_c ../embed/room.c)
target_link_libraries(room_c PRIVATE tavro::tavro)
END
quietly "$cmake" -S "$tmp/c" -B "$tmp/c/build" -DCMAKE_PREFIX_PATH="$prefix" \
  -DCMAKE_C_FLAGS="$sanitizers"
quietly "$cmake" --build "$tmp/c/build"
run room_c "$tmp/c/build/room_c" "$day"

# A later version is refused.
sed 's/tavro REQUIRED/tavro 0.2 REQUIRED/' "$tmp/c/CMakeLists.txt" >"$tmp/CMakeLists.txt"
if "$cmake" -S "$tmp" -B "$tmp/later" -DCMAKE_PREFIX_PATH="$prefix" >"$tmp/said" 2>&1; then
  complain "a version that is not there is found"
fi

# ---- With pkg-config ----

PKG_CONFIG_PATH=$libraries/pkgconfig
export PKG_CONFIG_PATH
flags=$(pkg-config --cflags --libs tavro) || complain "pkg-config does not find tavro"
flags="$flags $sanitizers"
# shellcheck disable=SC2086  # a list of flags
quietly "$CXX" -std=c++20 room.cpp $flags "-Wl,-rpath,$libraries" -o room
run room ./room "$day"
# shellcheck disable=SC2086
quietly "$CC" -std=c99 -pedantic -Wall -Wextra -Werror room.c $flags "-Wl,-rpath,$libraries" -o room_c
run room_c ./room_c "$day"
mv "$library" "$library.away"
# shellcheck disable=SC2046,SC2086
quietly "$CC" room.c $(pkg-config --static --cflags --libs tavro) $sanitizers -o room_static
mv "$library.away" "$library"
run room_c ./room_static "$day"

# ---- The sanitizers are awake ----

# A plant that is never given back is found, or the runs above would be clean for no reason.
if [ -n "$sanitizers" ]; then
  cat >leak.c <<'END'
#include <tavro/tavro.h>
int main(void) {
    tavro_plant* plant = 0;
    tavro_plant_builtin("therm", &plant);
    plant = 0;
    return 0;
}
END
  # shellcheck disable=SC2086
  quietly "$CC" leak.c $flags "-Wl,-rpath,$libraries" -o leak
  if ./leak 2>"$tmp/err" || ! grep -q 'LeakSanitizer: detected memory leaks' "$tmp/err"; then
    complain "a plant that leaks is not found: $(cat "$tmp/err")"
  fi
fi

# ---- What the documents show ----

awk '/^\/\/     / { seen = 1; print substr($0, 8); next } /^\/\/$/ && seen { print ""; next }
     seen { exit }' "$prefix/include/tavro/tavro.hpp" >header.cpp
grep -q 'int main()' header.cpp || complain "no program in the header's first comment"
# shellcheck disable=SC2086
quietly "$CXX" -std=c++20 -Wall -Wextra -Werror header.cpp $flags "-Wl,-rpath,$libraries" -o header
: >"$tmp/nothing"
./header >"$tmp/out" || complain "the header's program ended with status $?"
cmp -s "$tmp/nothing" "$tmp/out" || complain "the header's program sees a fault: $(cat "$tmp/out")"

# The guide shows room.cpp whole, and what it prints.
awk '/^```cpp$/ { inside = 1; next } /^```$/ { if (inside) exit } inside' \
  "$source/docs/library.md" >guide.cpp
diff guide.cpp room.cpp >&2 || complain "docs/library.md shows another program than room.cpp"
awk '/^```text$/ { inside = 1; next } /^```$/ { if (inside) exit } inside' \
  "$source/docs/library.md" >guide.txt
diff guide.txt "$expected/room" >&2 || complain "docs/library.md shows another output"

# What it shows beside is typed in around a run of the room.
{
  printf '#include <iostream>\n#include <tavro/tavro.hpp>\nint main() {\n'
  printf 'tavro::Plant const plant = tavro::Plant::builtin("therm");\n'
  awk '/^```c\+\+$/ { inside = 1; next } /^```$/ { inside = 0 } inside' "$source/docs/library.md"
  printf 'run.start({.measures = {0.95}});\n'
  awk '/^Commands are given/ { inside = 1 } inside' "$source/docs/library.md" | tr '\n' ' ' |
    sed 's/^[^`]*`\([^`]*\)`.*/\1;/'
  printf '}\n'
} >guide_more.cpp
grep -q 'room.cmdin=open' guide_more.cpp || complain "docs/library.md shows no command"
# shellcheck disable=SC2086
quietly "$CXX" -std=c++20 -Wall -Wextra -Werror guide_more.cpp $flags "-Wl,-rpath,$libraries" \
  -o guide_more
./guide_more 2>"$tmp/err" || complain "what docs/library.md shows ended with status $?"
grep -q -e '-- time = 0 ---' "$tmp/err" || complain "what docs/library.md shows tells nothing"

exit $failed
