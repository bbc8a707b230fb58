#!/usr/bin/env bash
# denoise-gain.sh [BUILD]: what orv denoise does to noisy and to clean prompts, on every twenty-fifth prompt of five voices.
# BUILD is the folder that orv_denoise_gain was built in (build/release).
set -eu
cd "$(dirname "$0")/.."
build=${1:-build/release}
sounds=/usr/share/asterisk/sounds
scripts/install-packages.sh build hosts speech
exec "$build/bin/orv_denoise_gain" 5/25 "$sounds"/{en_US_f_Allison,es_MX_f_Allison,fr_CA_f_June,it_IT_m_Carlo,ru_RU_f_IvrvoiceRU}
