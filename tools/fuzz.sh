#!/bin/bash
# fuzz.sh SECONDS: runs each fuzzer that long: the decoders of a session's files from the kept seeds,
# and the export of films from media made here. A finding is left as a file in build/fuzz and belongs
# into Tests/Fuzz/seeds once mended.
set -euo pipefail
cd "$(dirname "$0")/.."
cmake -S . -B build/fuzz -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo -DZENTO_FUZZ=ON \
    -DCMAKE_CXX_COMPILER=clang++-19 -DSANITIZE=address,undefined >/dev/null
cmake --build build/fuzz --target decoder_fuzz film_fuzz -j "$(nproc)" -- --quiet
seeds=$PWD/Tests/Fuzz/seeds
mkdir -p build/fuzz/corpus build/fuzz/film-corpus build/fuzz/media
cd build/fuzz

# medium ROLE NAME FFMPEG-ARGUMENTS...: a file of that kind, its role as a byte in front.
medium() {
    local role=$1 name=$2
    shift 2
    ffmpeg -y -loglevel error "$@" "media/$name"
    { printf "\\x$role"; cat "media/$name"; } >"film-corpus/$name"
}
picture=(-f lavfi -i testsrc2=size=64x48:rate=24:duration=0.4)
tone=(-f lavfi -i sine=frequency=440:duration=0.4)
medium 00 prores.mov "${picture[@]}" -c:v prores_ks
medium 00 h264.mp4 "${picture[@]}" "${tone[@]}" -c:v libx264 -c:a aac
medium 01 mjpeg.avi "${picture[@]}" -c:v mjpeg -pix_fmt yuvj422p
medium 01 odd.mkv -f lavfi -i testsrc2=size=31x47:rate=10:duration=0.4 -c:v ffv1 -pix_fmt yuv444p
for format in wav mp3 flac ogg m4a; do
    medium 02 "tone.$format" "${tone[@]}"
done
medium 02 many.wav "${tone[@]}" -ac 8 -ar 192000
medium 03 picture.png "${picture[@]}" -frames:v 1
medium 03 picture.jpg "${picture[@]}" -frames:v 1
{ printf '\x04'; tail -c +2 "$seeds/plan"; } >film-corpus/plan

./decoder_fuzz -max_total_time="$1" -max_len=4096 -print_final_stats=1 corpus "$seeds"
./film_fuzz -max_total_time="$1" -max_len=65536 -timeout=60 -rss_limit_mb=4096 -print_final_stats=1 film-corpus
