#!/usr/bin/env bash
# Takes the README's pictures of the window anew: the built program, on a made-up home folder.
set -euo pipefail

cd "$(dirname "${BASH_SOURCE[0]}")/.."
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

PELLAK_IMMAGINI=$folder ctest --test-dir build/release -R '^immagini$' --output-on-failure
for picture in panoramica-chiaro duplicati-chiaro conferma-chiaro mappa-scuro; do
  install -D -m 644 "$folder/$picture-1100.png" "docs/immagini/${picture%-*}.png"
done
