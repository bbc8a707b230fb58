#!/usr/bin/env bash
# Installs what it needs, builds the program orv, trains a voice for each of five speakers on recorded telephone
# prompts, and tells how well the prompts that training did not see are recognised.
set -eu
cd "$(dirname "$0")"
sounds=/usr/share/asterisk/sounds
voices=("$sounds"/{en_US_f_Allison,es_MX_f_Allison,fr_CA_f_June,it_IT_m_Carlo,ru_RU_f_IvrvoiceRU})
# A folder of its own, as neither tests nor benchmarks are built here.
build=build/demo

scripts/install-packages.sh build hosts speech
echo "Building orv ..."
cmake --preset release -B "$build" -DBUILD_TESTING=OFF -DORV_BUILD_BENCH=OFF >/dev/null
if [ -t 1 ]; then # one line that tells how far it is
  cmake --build "$build" --target orv
else
  cmake --build "$build" --target orv >"$build/build.log" || { cat "$build/build.log"; exit 1; }
fi
orv=$build/bin/orv

echo "Training five voices on four fifths of their prompts (log: $build/training.log) ..."
"$orv" train --hold-out 5/5 --skip-unusable -o "$build/voices.model" "${voices[@]}" >"$build/training.log"
echo "Recognising the fifth that was held out:"
echo
"$orv" evaluate --held-out --skip-unusable "$build/voices.model" "${voices[@]}"
