#include "ZentoCore/BackgroundCatalog.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace zento::BackgroundCatalog {

namespace {

/// A group's place in the whole table.
struct Extent {
    std::size_t first = 0;
    std::size_t count = 0;
};

constexpr Extent kDuos{0, 12};
constexpr Extent kTrios{12, 8};
constexpr Extent kMeshes{20, 8};
constexpr Extent kRadials{28, 16};
constexpr Extent kPatterns{44, 10};
constexpr Extent kSolids{54, 8};

BackgroundPreset preset(std::string id, std::string name, StyleSpec::Background background)
{
    return {std::move(id), std::move(name), std::move(background)};
}

const std::vector<BackgroundPreset>& table()
{
    static const std::vector<BackgroundPreset> kPresets = {
        // duos
        preset("indigo-night", "Indigo Night", Background::LinearGradient{"#2A2E3D", "#0C0E14"}),
        preset("deep-ocean", "Deep Ocean", Background::LinearGradient{"#0F2947", "#050A14"}),
        preset("royal", "Royal", Background::LinearGradient{"#3B2F80", "#12082E"}),
        preset("sunset", "Sunset", Background::Gradient{{"#FF7E5F", "#FEB47B"}, 60}),
        preset("peach", "Peach", Background::Gradient{{"#FFD3A5", "#FD6585"}, 45}),
        preset("forest", "Forest", Background::LinearGradient{"#134E38", "#031B10"}),
        preset("aurora", "Aurora", Background::Gradient{{"#00C9FF", "#92FE9D"}, 30}),
        preset("candy", "Candy", Background::Gradient{{"#A18CD1", "#FBC2EB"}, 45}),
        preset("graphite", "Graphite", Background::LinearGradient{"#3A3D46", "#17181D"}),
        preset("midnight-teal", "Midnight Teal", Background::LinearGradient{"#0E3B43", "#03161A"}),
        preset("lavender", "Lavender", Background::Gradient{{"#B7C4F5", "#8360C3"}, 70}),
        preset("ember", "Ember", Background::Gradient{{"#8E2A2A", "#1A0505"}, 90}),
        // trios
        preset(
            "vaporwave", "Vaporwave", Background::Gradient{{"#FF71CE", "#7E6BF0", "#01CDFE"}, 45}),
        preset("tropic", "Tropic", Background::Gradient{{"#F9D423", "#FF4E50", "#B33770"}, 55}),
        preset("dawn", "Dawn", Background::Gradient{{"#30146E", "#B4367A", "#FDB99B"}, 80}),
        preset("nebula", "Nebula", Background::Gradient{{"#0F0C29", "#6A2B8B", "#24243E"}, 35}),
        preset("lagoon", "Lagoon", Background::Gradient{{"#02AAB0", "#00CDAC", "#0E4A5C"}, 65}),
        preset("flamingo", "Flamingo", Background::Gradient{{"#F77062", "#FE5196", "#B24592"}, 40}),
        preset("citrus", "Citrus", Background::Gradient{{"#FDC830", "#F37335", "#C02F1D"}, 50}),
        preset("berry", "Berry", Background::Gradient{{"#4A00E0", "#8E2DE2", "#D53369"}, 60}),
        // meshes
        preset(
            "mesh-purple",
            "Mesh Purple",
            Background::Blobs{"#17103A", {"#7C3AED", "#DB2777", "#312E81"}}),
        preset(
            "mesh-blue",
            "Mesh Blue",
            Background::Blobs{"#081226", {"#2563EB", "#06B6D4", "#1E3A8A"}}),
        preset(
            "mesh-sunset",
            "Mesh Sunset",
            Background::Blobs{"#2B1024", {"#F97316", "#E11D48", "#7C2D12"}}),
        preset(
            "mesh-mint",
            "Mesh Mint",
            Background::Blobs{"#04201B", {"#10B981", "#22D3EE", "#065F46"}}),
        preset(
            "mesh-mono",
            "Mesh Mono",
            Background::Blobs{"#101114", {"#3F3F46", "#71717A", "#27272A"}}),
        preset(
            "mesh-rose",
            "Mesh Rose",
            Background::Blobs{"#2A0E1C", {"#F43F5E", "#FB7185", "#881337"}}),
        preset(
            "mesh-gold",
            "Mesh Gold",
            Background::Blobs{"#211603", {"#F59E0B", "#FBBF24", "#92400E"}}),
        preset(
            "mesh-teal",
            "Mesh Teal",
            Background::Blobs{"#042F2E", {"#14B8A6", "#0EA5E9", "#134E4A"}}),
        // radials
        preset("halo", "Halo", Background::Radial{"#4C46A8", "#0B0A1E"}),
        preset("ember-glow", "Ember Glow", Background::Radial{"#B4413A", "#1C0806"}),
        preset("lagoon", "Lagoon", Background::Radial{"#0E7C86", "#03181C"}),
        preset("limelight", "Limelight", Background::Radial{"#5C8A2E", "#0D1806"}),
        preset("rose-gold", "Rose Gold", Background::Gradient{{"#B76E79", "#EACDA3"}, 40}),
        preset("arctic", "Arctic", Background::Gradient{{"#DFE9F3", "#93A5CF"}, 60}),
        preset(
            "grape-soda",
            "Grape Soda",
            Background::Gradient{{"#6A3093", "#A044FF", "#F4C4F3"}, 25}),
        preset("citrus", "Citrus", Background::Gradient{{"#F7971E", "#FFD200"}, 55}),
        preset(
            "north-sea", "North Sea", Background::Gradient{{"#0B2B40", "#175E73", "#2E958F"}, 20}),
        preset("mulberry", "Mulberry", Background::Gradient{{"#4A1042", "#93267A", "#D45BB0"}, 30}),
        preset("terminal", "Terminal", Background::Gradient{{"#03170C", "#0A3B1E"}, 90}),
        preset("latte", "Latte", Background::Gradient{{"#EFE4D4", "#CBB499"}, 70}),
        preset("storm", "Storm", Background::Blobs{"#171A22", {"#2E3A55", "#3E2E55", "#22303C"}}),
        preset(
            "flamingo",
            "Flamingo",
            Background::Blobs{"#2A0F1E", {"#C74E77", "#8C2D5C", "#E88AA6"}}),
        preset("reef", "Reef", Background::Blobs{"#04222B", {"#0E6E7E", "#12A18A", "#0A4C63"}}),
        preset("solar", "Solar", Background::Blobs{"#231204", {"#C97B1E", "#E8B33C", "#8C4A10"}}),
        // patterns
        preset(
            "pat-dots-ink", "Ink Dots", Background::Pattern{"dots", "#4A5068", "#101219", 0.045}),
        preset(
            "pat-grid-blue", "Blueprint", Background::Pattern{"grid", "#2B4C7E", "#0B1B36", 0.07}),
        preset(
            "pat-diag-slate",
            "Pinstripe",
            Background::Pattern{"diagonal", "#242838", "#15171F", 0.05}),
        preset(
            "pat-waves-teal", "Ripple", Background::Pattern{"waves", "#1E6C74", "#0A2A2E", 0.11}),
        preset("pat-hex-plum", "Honeycomb", Background::Pattern{"hex", "#4A2E5C", "#1B1224", 0.1}),
        preset(
            "pat-rings-ember", "Ripples", Background::Pattern{"rings", "#7A3B2E", "#2A1410", 0.08}),
        preset(
            "pat-checker-cream",
            "Picnic",
            Background::Pattern{"checker", "#EAE3D6", "#F4EFE6", 0.09}),
        preset(
            "pat-cross-graphite",
            "Crosshatch",
            Background::Pattern{"cross", "#3C4049", "#1C1E24", 0.06}),
        preset(
            "pat-halftone-indigo",
            "Halftone",
            Background::Pattern{"halftone", "#5A4FCF", "#0E0F1E", 0.05}),
        preset(
            "pat-dots-paper",
            "Paper Dots",
            Background::Pattern{"dots", "#C9C2B3", "#F4EFE6", 0.04}),
        // solids
        preset("black", "Black", Background::Color{"#000000"}),
        preset("near-black", "Near Black", Background::Color{"#111318"}),
        preset("charcoal", "Charcoal", Background::Color{"#26282E"}),
        preset("deep-blue", "Deep Blue", Background::Color{"#0B1B36"}),
        preset("plum", "Plum", Background::Color{"#2B1B33"}),
        preset("cream", "Cream", Background::Color{"#F4EFE6"}),
        preset("off-white", "Off White", Background::Color{"#F2F3F5"}),
        preset("white", "White", Background::Color{"#FFFFFF"}),
    };
    return kPresets;
}

std::span<const BackgroundPreset> part(Extent extent)
{
    return all().subspan(extent.first, extent.count);
}

} // namespace

std::span<const BackgroundPreset> duos()
{
    return part(kDuos);
}

std::span<const BackgroundPreset> trios()
{
    return part(kTrios);
}

std::span<const BackgroundPreset> meshes()
{
    return part(kMeshes);
}

std::span<const BackgroundPreset> radials()
{
    return part(kRadials);
}

std::span<const BackgroundPreset> patterns()
{
    return part(kPatterns);
}

std::span<const BackgroundPreset> solids()
{
    return part(kSolids);
}

std::span<const BackgroundPreset> all()
{
    return table();
}

const BackgroundPreset* preset(std::string_view id)
{
    const auto found = std::ranges::find(all(), id, &BackgroundPreset::id);
    return found == all().end() ? nullptr : &*found;
}

} // namespace zento::BackgroundCatalog
