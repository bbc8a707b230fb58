#!/usr/bin/env bash
# Prints the tables of docs/hosts.md: what --transform, --cluster and --shortlist do to accuracy, size and speed on
# the recorded prompts that run-demo.sh takes. Needs the program, built for release; takes some minutes.
#
#     scripts/measure-reductions.sh [PROGRAM [K/N]]     the fold that is held out, by default 3/5
set -eu
cd "$(dirname "$0")/.."
orv=${1:-build/release/bin/orv}
fold=${2:-3/5}
sounds=/usr/share/asterisk/sounds
voices=("$sounds"/{en_US_f_Allison,es_MX_f_Allison,fr_CA_f_June,it_IT_m_Carlo,ru_RU_f_IvrvoiceRU})
folder=$(mktemp -d)
trap 'rm -r "$folder"' EXIT

# train OPTION...: a model, and a row of the first table. Times are of the processor.
train() {
  local TIMEFORMAT=%U seconds
  seconds=$({ time "$orv" train --hold-out "$fold" --skip-unusable -o "$folder/model" "$@" "${voices[@]}" >"$folder/log"; } 2>&1)
  local size accuracy speed
  size=$(stat -c %s "$folder/model")
  "$orv" evaluate --held-out --skip-unusable "$folder/model" "${voices[@]}" >"$folder/result"
  accuracy=$(sed -n 's/.* recordings recognised, \(.*\)/\1/p' "$folder/result")
  speed=$(sed -n 's/.* s, \([0-9]*\) times faster.*/\1/p' "$folder/result")
  echo "| \`$*\` | $accuracy | $size | $seconds s | $speed |"
}

echo "Held out: $fold."
echo
echo "| \`orv train\` | accuracy | bytes of the model | training | times real time |"
echo "|---|---|---|---|---|"
train --components 32
train --components 64 --cluster 32
train --components 64 --transform pca
train --components 64 --transform pca --dims 24
train --components 64 --transform lda
train --components 64 --transform lda --dims 24
train --components 64 --shortlist 4
grep shortlists "$folder/log" >"$folder/effects"
train --components 64 --shortlist 8
grep shortlists "$folder/log" >>"$folder/effects"
train --components 64
echo
sed 's/^/    /' "$folder/effects"
echo
echo "| \`orv evaluate\` of the last | accuracy | change | scores, times as fast |"
echo "|---|---|---|---|"
for best in 2 4 8 16; do
  "$orv" evaluate --held-out --skip-unusable --shortlist $best "$folder/model" "${voices[@]}" |
    sed -n "s/^with shortlists of .*: \(.* %\) recognised (\(.*\)), scores \(.*\) times as fast/| \`--shortlist $best\` | \1 | \2 | \3 |/p"
done
