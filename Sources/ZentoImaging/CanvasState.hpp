#pragma once

#include "ZentoImaging/Canvas.h"

#include <cairo/cairo.h>

#include <memory>
#include <type_traits>

namespace zento {

// Deleters of C handles, and what a Canvas keeps behind its header. Not a public header.

template <auto Function>
struct CallOnDelete {
    template <typename Handle>
    void operator()(Handle* handle) const
    {
        Function(handle);
    }
};

using CairoSurface = std::unique_ptr<cairo_surface_t, CallOnDelete<cairo_surface_destroy>>;
using CairoContext = std::unique_ptr<cairo_t, CallOnDelete<cairo_destroy>>;
using CairoPattern = std::unique_ptr<cairo_pattern_t, CallOnDelete<cairo_pattern_destroy>>;

struct Canvas::State {
    CairoSurface surface;
    CairoContext context;
};

/// Makes `paint` the source of the next drawing.
void setSource(cairo_t* context, const Paint& paint);
void setStroke(cairo_t* context, const Stroke& stroke);

} // namespace zento
