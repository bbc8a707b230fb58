#!/usr/bin/env bash
# install-packages.sh SET...: installs the Debian packages of the named sets that are not there yet.
# Asks for nothing and does nothing when all are present; needs root or sudo only when one is missing.
set -eu

packages() {
  case $1 in
    build) echo "build-essential ccache cmake ninja-build pkg-config" ;;
    hosts) echo "libsndfile1-dev libkissfft-dev libcli11-dev nlohmann-json3-dev libxtensor-dev zlib1g-dev gnuplot-nox fonts-dejavu-core" ;;
    tests) echo "libgtest-dev binutils liblapack-dev" ;;
    bench) echo "libbenchmark-dev libfftw3-dev libkissfft-dev libeigen3-dev libopenblas-dev liblapack-dev libgsl-dev libfaiss-dev libsoxr-dev libsamplerate0-dev libspeexdsp-dev" ;;
    speech)
      for language in en es fr it ru; do echo "asterisk-core-sounds-$language-wav"; done ;;
    *) echo "install-packages.sh: no set of packages is called $1" >&2; exit 2 ;;
  esac
}

missing=()
for set in "$@"; do
  for package in $(packages "$set"); do
    [ "$(dpkg-query -W -f '${db:Status-Status}' "$package" 2>/dev/null)" = installed ] || missing+=("$package")
  done
done
[ ${#missing[@]} -gt 0 ] || exit 0

sudo=
if [ "$(id -u)" != 0 ]; then
  command -v sudo >/dev/null || { echo "needs root or sudo to install: ${missing[*]}" >&2; exit 1; }
  sudo=sudo
fi
echo "installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get -qq update
$sudo apt-get -qq install --no-install-recommends -y "${missing[@]}" >/dev/null
