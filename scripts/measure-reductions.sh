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

# Times are of the processor: for recognition the shortest of three. Ratios are the middle ones of three.
seconds() {
  local TIMEFORMAT=%U
  { time "$@" >"$folder/output"; } 2>&1
}
fastest() { for _ in 1 2 3; do "$@"; done | sort -g | head -1; }
middle() { for _ in 1 2 3; do "$@"; done | sort -g | sed -n 2p; }
evaluate() { "$orv" evaluate --held-out --skip-unusable "$folder/model" "${voices[@]}" "$@"; }
timesAsFast() { evaluate --shortlist "$1" | sed -n 's/.*scores \(.*\) times as fast/\1/p'; }

# train OPTION...: a model, and a row of the first table.
train() {
  local training
  training=$(seconds "$orv" train --hold-out "$fold" --skip-unusable -o "$folder/model" "$@" "${voices[@]}")
  grep shortlists "$folder/output" >>"$folder/effects" || true
  echo "| \`$*\` | $(evaluate | sed -n 's/.* recordings recognised, \(.*\)/\1/p') | $(stat -c %s "$folder/model") |" \
    "$training s | $(fastest seconds evaluate) s |"
}

echo "Held out: $fold."
echo
echo "| \`orv train\` | accuracy | bytes of the model | training | recognition |"
echo "|---|---|---|---|---|"
train --components 32
train --components 64 --cluster 32
train --components 64 --transform pca
train --components 64 --transform pca --dims 24
train --components 64 --transform lda
train --components 64 --transform lda --dims 24
train --components 64 --shortlist 4
train --components 64 --shortlist 8
train --components 64
echo
sed 's/^/    /' "$folder/effects"
echo
echo "| \`orv evaluate\` of the last | accuracy | change | scores, times as fast |"
echo "|---|---|---|---|"
for best in 2 4 8 16; do
  echo "| \`--shortlist $best\` |" \
    "$(evaluate --shortlist $best | sed -n 's/^with shortlists.*: \(.* %\) recognised (\(.*\)), .*/\1 | \2/p')" \
    "| $(middle timesAsFast $best) |"
done
