#!/bin/bash
# spectrograms.sh FOLDER: the tracks that the program makes, and one picture of their spectra and
# levels over their minute, to be looked at.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
folder=${1:?usage: tools/spectrograms.sh FOLDER}
"$root/tools/build.sh" release music_bench
mkdir -p "$folder"
"$root/build/release/music_bench" "$folder"
inputs=()
graph=
stack=
i=0
for track in pulse glide sprint; do
    inputs+=(-i "$folder/$track.m4a")
    graph+="[$i:a]asplit[a$i][b$i];"
    graph+="[a$i]showspectrumpic=s=1200x256:mode=combined:scale=log:fscale=log:legend=0[s$i];"
    graph+="[b$i]showwavespic=s=1200x80:split_channels=0[w$i];"
    stack+="[s$i][w$i]"
    i=$((i + 1))
done
ffmpeg -v error -y "${inputs[@]}" -filter_complex "${graph}${stack}vstack=inputs=$((2 * i))" \
    -frames:v 1 "$folder/tracks.png"
echo "$folder/tracks.png"
