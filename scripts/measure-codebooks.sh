#!/usr/bin/env bash
# Prints the tables of docs/hosts.md on codebooks and templates, from the recorded prompts that run-demo.sh takes
# and, for a second voice in three languages, from packages that it fetches into a temporary folder. Needs sox and
# the program, built for release; takes some minutes.
#
#     scripts/measure-codebooks.sh [PROGRAM]
set -eu
cd "$(dirname "$0")/.."
orv=$(realpath "${1:-build/release/bin/orv}")
sounds=/usr/share/asterisk/sounds
voices=("$sounds"/{en_US_f_Allison,es_MX_f_Allison,fr_CA_f_June,it_IT_m_Carlo,ru_RU_f_IvrvoiceRU})
folder=$(mktemp -d)
trap 'rm -r "$folder"' EXIT

# Of the processor, with reading and features.
seconds() {
  local TIMEFORMAT=%U
  { time "$@" >"$folder/output"; } 2>&1
}

# train OPTION...: log-likelihoods of a frame after the first and the last pass of the last size, averaged over
# the voices.
train() {
  local training
  training=$(seconds "$orv" train --hold-out 5/5 --skip-unusable -o "$folder/model" "$@" "${voices[@]}")
  awk -F': ' '/log-likelihood/ {
      split($2, size, ","); last[$1] = $NF
      sub("log-likelihood ", "", last[$1]); passes++
      if (size[2] == " pass 1") first[$1] = last[$1]
    }
    END { for (v in last) { a += first[v]; b += last[v]; n++ } printf "%.3f | %.3f | %d", a / n, b / n, passes }
  ' "$folder/output" >"$folder/likelihoods"
  echo "| \`$*\` | $(cat "$folder/likelihoods") | $training s |" \
    "$("$orv" evaluate --held-out --skip-unusable "$folder/model" "${voices[@]}" |
      sed -n 's/.* recordings recognised, \(.*\)/\1/p') |"
}

echo "| \`orv train\` | pass 1 of the last size | last pass | passes, all voices | time | accuracy |"
echo "|---|---|---|---|---|---|"
for components in 16 64; do
  train --components $components
  train --components $components --init codebook
done
train --components 64 --init codebook --passes 40
echo

# match TEMPLATES UTTERANCES OPTION...: utterances recognised as what their files are called.
match() {
  local templates=$1 utterances=$2
  shift 2
  "$orv" match --skip-unusable --templates "$templates" "$@" "$utterances"/*.wav |
    awk -F'[:,]' '/^skipped/ { next }
      { name = $1; sub(".*/", "", name); sub("[.]wav$", "", name); n++; right += $2 == " " name }
      END { printf "%d of %d", right, n }'
}

# copies NAME EFFECT...: of all words in the folders "digits" of the five voices, one folder for each voice.
copies() {
  local voice file
  for voice in "${voices[@]}"; do
    mkdir -p "$folder/$1/${voice##*/}"
    for file in "$voice"/digits/*.wav; do
      sox -R "$file" "$folder/$1/${voice##*/}/${file##*/}" "${@:2}" 2>/dev/null
    done
  done
}
# noisy FROM NAME DECIBELS: white noise so many decibels below the words as a whole.
noisy() {
  local voice file level
  for voice in "${voices[@]}"; do
    mkdir -p "$folder/$2/${voice##*/}"
    for file in "$folder/$1/${voice##*/}"/*.wav; do
      level=$(sox "$file" -n stat 2>&1 | awk -v db="$3" '/RMS.*amplitude/ { print $3 * 10 ^ (-db / 20) * sqrt(3) }')
      sox -R "$file" -p synth whitenoise vol "$level" |
        sox -R -m -v 1 "$file" -v 1 - "$folder/$2/${voice##*/}/${file##*/}" 2>/dev/null
    done
  done
}
row() {
  local voice line="| $1 |"
  for voice in "${voices[@]}"; do
    line="$line $(match "$voice/digits" "$folder/$2/${voice##*/}" "${@:3}") |"
  done
  echo "$line"
}

echo "| copies | en | es | fr | it | ru |"
echo "|---|---|---|---|---|---|"
copies fast tempo -s 1.25
copies slow tempo -s 0.8
copies same vol 0.7
noisy same noise20 20
noisy same noise10 10
noisy slow slowNoise 20
row "1.25 times as fast" fast
row "0.8 times as fast" slow
row "noise 20 dB below" noise20
row "noise 20 dB below, \`--trim 15\`" noise20 --trim 15
row "noise 10 dB below" noise10
row "noise 10 dB below, \`--trim 5\`" noise10 --trim 5
row "0.8 times as fast, noise 20 dB below" slowNoise
echo

# The ten digits of two voices in one language.
(
  cd "$folder"
  apt-get -qq download asterisk-prompt-{es-co,fr-armelle,it-menardi-wav} 2>/dev/null
  for package in *.deb; do dpkg -x "$package" packages; done
)
digits() { # FROM TO
  mkdir -p "$2"
  for digit in 0 1 2 3 4 5 6 7 8 9; do
    if [ -e "$1/$digit.wav" ]; then cp "$1/$digit.wav" "$2"; else sox "$1/$digit.gsm" -e signed -b 16 "$2/$digit.wav"; fi
  done
}
digits "$sounds/es_MX_f_Allison/digits" "$folder/es1"
digits "$folder/packages$sounds/es/digits" "$folder/es2"
digits "$sounds/fr_CA_f_June/digits" "$folder/fr1"
digits "$folder/packages$sounds/fr/digits" "$folder/fr2"
digits "$sounds/it_IT_m_Carlo/digits" "$folder/it1"
digits "$folder/packages$sounds/it_IT_f_Menardi/digits" "$folder/it2"
crossed() {
  local language line="| ${*:-all by default} |"
  for language in es fr it; do
    line="$line $(match "$folder/${language}1" "$folder/${language}2" "$@") |"
    line="$line $(match "$folder/${language}2" "$folder/${language}1" "$@") |"
  done
  echo "$line"
}
echo "| digits of another voice | es | es, reversed | fr | fr, reversed | it | it, reversed |"
echo "|---|---|---|---|---|---|---|"
crossed
crossed --trim 0
crossed --band 20
crossed --slope 1.5
crossed --beam 100
