#pragma once

#include <string>
#include <variant>
#include <vector>

namespace zento {

/// What lies behind the recording. Colours are strings of a number sign and six hexadecimal digits.
namespace Background {

struct LinearGradient { // top to bottom
    std::string top;
    std::string bottom;
    bool operator==(const LinearGradient&) const = default;
};

struct Color {
    std::string color;
    bool operator==(const Color&) const = default;
};

struct Image { // aspect-filled
    std::string path;
    bool operator==(const Image&) const = default;
};

struct Gradient { // evenly spaced colours along a line
    std::vector<std::string> colors;
    double angle = 0; // degrees, 0 left to right, clockwise
    bool operator==(const Gradient&) const = default;
};

struct Radial {
    std::string inner;
    std::string outer;
    bool operator==(const Radial&) const = default;
};

struct Blobs { // soft spots of colour
    std::string base;
    std::vector<std::string> colors;
    bool operator==(const Blobs&) const = default;
};

struct Pattern {
    std::string kind;
    std::string ink;
    std::string paper;
    double scale = 0; // cell size as a fraction of the canvas height
    bool operator==(const Pattern&) const = default;
};

} // namespace Background

/// The look of a frame. Lengths without a stated unit are output pixels.
struct StyleSpec {
    using Background = std::variant<
        zento::Background::LinearGradient,
        zento::Background::Color,
        zento::Background::Image,
        zento::Background::Gradient,
        zento::Background::Radial,
        zento::Background::Blobs,
        zento::Background::Pattern>;

    Background background = zento::Background::LinearGradient{"#20242E", "#0B0D12"};
    double padding = 0.06; // margin around the recording, fraction of the canvas height
    double cornerRadius = 24;
    double shadowOpacity = 0.45; // [0, 1]
    double shadowRadius = 60;
    double shadowOffsetY = 24; // downwards
    double cursorScale = 2;
    bool cursorAutoHide = true;
    bool motionBlur = false;
    bool fillsCanvas = false;           // crop to fill, no margin
    std::string cursorStyle = "system"; // "system", "arrow", "hand", "circle", "hidden"

    bool operator==(const StyleSpec&) const = default;
};

} // namespace zento
