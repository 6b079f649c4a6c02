#!/bin/bash
# The architecture, as far as includes can show it: which outside library belongs to which module,
# and which modules a module may see. The build cannot confine a header on the default include path.
cd "$(dirname "$0")/.." || exit 1
bad=0

# <header pattern> <the only folders below Sources/ that may include it>
while read -r pattern owner; do
    hits=$(grep -rnE "#include [<\"]($pattern)" Sources --include='*.h' --include='*.cpp' \
        | grep -vE "^Sources/($owner)/")
    [[ -n $hits ]] && { echo "only Sources/$owner may include <$pattern>:"; echo "$hits"; bad=1; }
done <<'RULES'
libav|libsw ZentoMedia
cairo|pango|gdk-pixbuf|hwy/|gif_lib|libimagequant ZentoImaging
X11/|xcb/|xkbcommon/ ZentoCapture/Backends|Zento/Desktop|Zento/Demo
pipewire/|spa/ ZentoCapture/Backends
atspi/ ZentoCapture/Backends|Zento/Demo
opencv2/imgproc ZentoIntelligence
opencv2/dnn|opencv2/core ZentoRender
gio/|glib ZentoCapture/Backends|Zento/Desktop|Zento/Demo
libinput|libudev|linux/ ZentoCapture/Backends
simdjson ZentoCore
curl/ ZentoNet
pocketsphinx|sphinxbase/|whisper.h ZentoIntelligence
fftw3 ZentoEngine
Q[A-Z]|Qt[A-Z] Zento
RULES

# <folder> <the module folders it may include from, itself aside>
while read -r folder allowed; do
    hits=$(grep -rnE '#include "[A-Z]' "Sources/$folder" --include='*.h' --include='*.cpp' \
        | grep -vE "#include \"($folder|$allowed)/")
    [[ -n $hits ]] && { echo "Sources/$folder may include from $allowed only:"; echo "$hits"; bad=1; }
done <<'EDGES'
ZentoCore ZentoCore
ZentoNet ZentoCore
ZentoMedia ZentoCore
ZentoImaging ZentoCore
ZentoEngine ZentoCore|ZentoMedia
ZentoRender ZentoCore|ZentoMedia|ZentoImaging
ZentoCapture ZentoCore|ZentoMedia|ZentoImaging
ZentoIntelligence ZentoCore|ZentoNet|ZentoMedia
Zento/Timeline ZentoCore
Zento/Model ZentoCore|ZentoNet|ZentoMedia|ZentoImaging|ZentoEngine|ZentoCapture|ZentoRender|ZentoIntelligence|Zento/Timeline|Zento/Music
Zento/Music ZentoCore|ZentoNet|ZentoMedia
Zento/Screenshot ZentoCore|ZentoImaging|ZentoCapture|ZentoRender|Zento/Model
Zento/Desktop ZentoCore|ZentoCapture|ZentoIntelligence|ZentoRender|Zento/Model
Zento/Demo ZentoCore|ZentoMedia|ZentoImaging
EDGES
exit $bad
