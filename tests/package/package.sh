#!/usr/bin/env bash
# package.sh SUBJECT: one test of the shared objects or of the installed tree. The environment, set by CTest, says
# where they are; exit status 77 means skipped.
set -eu -o pipefail

core=$BUILD/lib/liborvcore.so.6.1
main=$BUILD/lib/liborvsrmx.so.6.1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
sanitizer=${SANITIZE:+-fsanitize=$SANITIZE}

skip() { echo "skipped: $1"; exit 77; }

# same WHAT EXPECTED ACTUAL: two lists, one item a line, in any order.
same() {
  diff <(sort -u <<<"$2") <(sort -u <<<"$3") >"$work/diff" ||
    { echo "$1: expected (<) and found (>) differ"; cat "$work/diff"; exit 1; }
}

# The names that a header declares, after the preprocessor has taken the comments away.
declared() { "$CC" -E -P -I"$SOURCE/include" -x c - | grep -oE '\borv[A-Za-z0-9_]*[[:space:]]*\(' | tr -d '( \t'; }
exported() { "$NM" -D --defined-only "$1" | awk '{print $3}'; }
needed() { "$READELF" -dW "$1" | sed -n 's/.*(NEEDED).*\[\(.*\)\].*/\1/p'; }
soname() { "$READELF" -dW "$1" | sed -n 's/.*(SONAME).*\[\(.*\)\].*/\1/p'; }

exports() {
  local all
  all=$(cd "$SOURCE/include" && for header in orvsr/*.h; do echo "#include \"$header\""; done)
  same "names in orvcore.h and liborvcore" "$(declared <<<'#include "orvcore.h"')" "$(exported "$core")"
  same "names in orvsr/*.h and liborvsrmx" "$(declared <<<"$all")" "$(exported "$main")"
  same "numbers of functions" "$(printf '%s\n' '643 named orvs...' '1 beside them')" \
    "$(exported "$main" | awk '/^orvs[A-Z]/ {n++} END {print n " named orvs..."; print NR - n " beside them"}')"
  same "names in orvsr.h and in all headers" "$(declared <<<"$all")" "$(declared <<<'#include "orvsr/orvsr.h"')"
}

needs() {
  same "sonames" "$(printf '%s\n' liborvcore.so.6.1 liborvsrmx.so.6.1)" "$(soname "$core"; soname "$main")"
  same "imports from liborvcore" "$(printf '%s\n' orvMalloc orvFree)" \
    "$(comm -12 <("$NM" -D --undefined-only "$main" | awk '{print $2}' | sort) <(exported "$core" | sort))"
  # A sanitizer adds its own run-time library, and the C++ run-time library with it.
  [ -z "$SANITIZE" ] || skip "the list of needed libraries is that of a build without sanitizers"
  same "libraries that liborvsrmx needs" "$(printf '%s\n' liborvcore.so.6.1 libm.so.6 libc.so.6)" "$(needed "$main")"
  same "libraries that liborvcore needs" libc.so.6 "$(needed "$core")"
}

# Every library of this system has one byte and one pointer of its start-up code; nothing may stand beside them, and
# nothing may run when the library is loaded but that code.
writable() {
  [ -z "$SANITIZE" ] || skip "sanitizers keep tables of their own in writable data"
  local sections
  for library in "$core" "$main"; do
    sections=$("$READELF" -SW "$library" | sed 's/^ *\[ *[0-9]*\] *//' |
      awk '$1 ~ /^\.(data|bss|tdata|tbss|init_array|fini_array|ctors|dtors)$/ {print $1, $5}')
    same "sizes of writable sections of $library" \
      "$(printf '%s\n' '.data 000008' '.bss 000008' '.init_array 000008' '.fini_array 000008')" "$sections"
    same "writable objects of $library" "$(printf '%s\n' completed.0 __dso_handle __TMC_END__)" \
      "$("$READELF" -sW "$library" | awk -v at="$("$READELF" -SW "$library" | sed 's/[][]//g' |
        awk '$2 == ".data" || $2 == ".bss" {printf " %s ", $1}')" \
        'NF == 8 && $4 != "SECTION" && index(at, " " $7 " ") {print $8}')"
  done
}

install() {
  rm -rf "$PREFIX"
  "$CMAKE" --install "$BUILD" --component orvsr --prefix "$PREFIX" >/dev/null
  local lib=$PREFIX/$LIBDIR
  for name in orvcore orvsrmx; do
    [ "$(soname "$lib/lib$name.so.6.1")" = "lib$name.so.6.1" ]
    [ "$(readlink "$lib/lib$name.so")" = "lib$name.so.6.1" ]
  done
  same "installed headers" "$(cd "$SOURCE/include" && find . -type f)" "$(cd "$PREFIX/$INCLUDEDIR" && find . -type f)"
  if grep -rlF -e "$BUILD" -e "$SOURCE/" -e "$PREFIX" "$lib/cmake" "$lib/pkgconfig"; then
    echo "the files above name a directory of this machine"; exit 1
  fi
}

# Each header by itself, as any C or C++ host may compile it.
headers() {
  cd "$PREFIX/$INCLUDEDIR"
  for header in *.h orvsr/*.h; do
    echo "#include <$header>" | "$CC" -std=c99 -pedantic -Wall -Wextra -Werror -I. -x c -fsyntax-only -
    echo "#include <$header>" | "$CXX" -std=c++11 -pedantic -Wall -Wextra -Werror -I. -x c++ -fsyntax-only -
  done
}

find_package() {
  "$CMAKE" -S "$SOURCE/tests/package/consumer" -B "$work/build" -DCMAKE_PREFIX_PATH="$PREFIX" \
    -DCMAKE_C_COMPILER="$CC" -DCMAKE_CXX_COMPILER="$CXX" \
    -DCMAKE_C_FLAGS="$sanitizer" -DCMAKE_CXX_FLAGS="$sanitizer" >/dev/null
  "$CMAKE" --build "$work/build" >/dev/null
  "$work/build/use_c"
  "$work/build/use_cpp"
}

pkg_config() {
  local flags
  flags=$(PKG_CONFIG_PATH=$PREFIX/$LIBDIR/pkgconfig "$PKG_CONFIG" --cflags --libs orvsr orvcore)
  cd "$SOURCE/tests/package/consumer"
  # shellcheck disable=SC2086
  "$CC" -std=c99 -pedantic -Wall -Wextra -Werror $sanitizer use.c $flags -o "$work/use_c"
  # shellcheck disable=SC2086
  "$CXX" -std=c++11 -pedantic -Wall -Wextra -Werror $sanitizer use.cpp $flags -o "$work/use_cpp"
  export LD_LIBRARY_PATH=$PREFIX/$LIBDIR
  "$work/use_c"
  "$work/use_cpp"
  # The program that the README shows, and the output that it promises.
  sed -n '/^```c$/,/^```$/{//!p}' "$SOURCE/README.md" >"$work/readme.c"
  # shellcheck disable=SC2086
  "$CC" -std=c99 -pedantic -Wall -Wextra -Werror $sanitizer "$work/readme.c" $flags -o "$work/readme"
  same "output of the program in the README" "$(sed -n 's|.*/\* \(.*\) \*/$|\1|p' "$work/readme.c")" "$("$work/readme")"
}

"$1"
