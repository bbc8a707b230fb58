#!/usr/bin/env bash
# noisy-prompts.sh [BUILD]: how well voices are recognised in noise with the plain front end and with aurora, which are
# trained on clean prompts alone. BUILD is the folder that orv and orv_noisy_prompts were built in (build/release).
# Prints the share of held-out prompts recognised, in per cent, for each noise and ratio.
set -eu
cd "$(dirname "$0")/.."
build=${1:-build/release}
sounds=/usr/share/asterisk/sounds
voices=("$sounds"/{en_US_f_Allison,es_MX_f_Allison,fr_CA_f_June,it_IT_m_Carlo,ru_RU_f_IvrvoiceRU})
ratios=(20 15 10 5 0)
scripts/install-packages.sh build hosts speech
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

declare -A options=([plain]="" [aurora]="--front-end aurora" [dropped]="--front-end aurora --drop-pauses")
names=(plain aurora dropped)
for name in "${names[@]}"; do
  # shellcheck disable=SC2086 # several words
  "$build/bin/orv" train ${options[$name]} --hold-out 5/5 --skip-unusable -o "$work/$name" "${voices[@]}" >/dev/null
done

# recognised NAME FOLDER: the share of the prompts, counting those that were found to hold no speech as missed.
recognised() {
  "$build/bin/orv" evaluate --skip-unusable --json "$work/$1" "$2"/* |
    awk -F '[:,]' -v prompts="$(find "$2" -name '*.wav' | wc -l)" \
      '/"correct"/ && !done { done = 1; printf "%.2f", 100 * $2 / prompts }'
}

declare -A sums
for kind in none white babble car; do
  columns=("${ratios[@]}")
  [ "$kind" != none ] || columns=(0)
  declare -A lines=()
  for ratio in "${columns[@]}"; do
    "$build/bin/orv_noisy_prompts" "$kind" "$ratio" 5/5 "$work/prompts" "${voices[@]}"
    for name in "${names[@]}"; do
      share=$(recognised "$name" "$work/prompts")
      lines[$name]+=$(printf '%8s' "$share")
      [ "$kind" = none ] || sums[$name]="${sums[$name]:-0} + 100 - $share"
    done
    rm -r "$work/prompts"
  done
  echo
  if [ "$kind" = none ]; then echo "clean"; else printf '%-9s%s\n' "$kind" "$(printf '%5s dB' "${columns[@]}")"; fi
  for name in "${names[@]}"; do printf '%-9s%s\n' "$name" "${lines[$name]}"; done
done

echo
echo "errors averaged over all noises from 20 to 0 dB"
for name in "${names[@]}"; do
  awk -v name="$name" "BEGIN { e = (${sums[$name]}) / 15; plain = (${sums[plain]}) / 15
    printf \"%-9s%8.2f %%, %.1f %% fewer than plain\\n\", name, e, 100 * (1 - e / plain) }"
done
