#include "ZentoCore/Text.h"
#include "ZentoImaging/Canvas.h"
#include "ZentoImaging/CanvasState.hpp"

#include <hb-ot.h>
#include <pango/pangocairo.h>

#include <cmath>

namespace zento {

namespace {

using FontMap = std::unique_ptr<PangoFontMap, CallOnDelete<g_object_unref>>;
using TextContext = std::unique_ptr<PangoContext, CallOnDelete<g_object_unref>>;
using TextLayout = std::unique_ptr<PangoLayout, CallOnDelete<g_object_unref>>;
using Description =
    std::unique_ptr<PangoFontDescription, CallOnDelete<pango_font_description_free>>;
using Attributes = std::unique_ptr<PangoAttrList, CallOnDelete<pango_attr_list_unref>>;
using FontOptions = std::unique_ptr<cairo_font_options_t, CallOnDelete<cairo_font_options_destroy>>;

const char* family(FontRole role)
{
    switch (role) {
    case FontRole::System:
        return "Inter,sans-serif";
    case FontRole::Monospaced:
        return "JetBrains Mono,monospace";
    case FontRole::Serif:
        return "Noto Serif,serif";
    case FontRole::Rounded:
        return "Quicksand,sans-serif";
    }
    return "sans-serif";
}

// The user's desktop settings for hinting, subpixels and resolution stay out: a film's text looks
// the same on every machine, and its metrics are those of the outlines.
TextContext makeContext(PangoFontMap* fonts)
{
    TextContext context(pango_font_map_create_context(fonts));
    const FontOptions options(cairo_font_options_create());
    cairo_font_options_set_hint_style(options.get(), CAIRO_HINT_STYLE_NONE);
    cairo_font_options_set_hint_metrics(options.get(), CAIRO_HINT_METRICS_OFF);
    cairo_font_options_set_antialias(options.get(), CAIRO_ANTIALIAS_GRAY);
    pango_cairo_context_set_font_options(context.get(), options.get());
    pango_cairo_context_set_resolution(context.get(), 72);
    pango_context_set_round_glyph_positions(context.get(), FALSE);
    pango_context_set_language(context.get(), pango_language_from_string("en"));
    pango_context_set_base_dir(context.get(), PANGO_DIRECTION_LTR);
    return context;
}

/// A font map belongs to one thread: Pango's are not safe to share.
PangoContext* threadContext()
{
    thread_local FontMap fonts(pango_cairo_font_map_new());
    thread_local TextContext context = makeContext(fonts.get());
    return context.get();
}

TextLayout layOut(std::string_view text, const Font& font)
{
    TextLayout layout(pango_layout_new(threadContext()));
    const Description description(pango_font_description_new());
    pango_font_description_set_family_static(description.get(), family(font.role));
    pango_font_description_set_weight(description.get(), static_cast<PangoWeight>(font.weight));
    pango_font_description_set_absolute_size(description.get(), font.size * PANGO_SCALE);
    pango_layout_set_font_description(layout.get(), description.get());
    pango_layout_set_single_paragraph_mode(layout.get(), TRUE);
    if (font.kerning != 0) {
        const Attributes attributes(pango_attr_list_new());
        pango_attr_list_insert(
            attributes.get(),
            pango_attr_letter_spacing_new(
                static_cast<int>(std::lround(font.kerning * PANGO_SCALE))));
        pango_layout_set_attributes(layout.get(), attributes.get());
    }
    const std::string line = onOneLine(text); // Pango would draw a line break as a sign
    pango_layout_set_text(layout.get(), line.data(), static_cast<int>(line.size()));
    return layout;
}

/// Emoji come as pictures, not as outlines.
bool isPictureFont(PangoFont* font)
{
    hb_face_t* face = hb_font_get_face(pango_font_get_hb_font(font));
    return hb_ot_color_has_png(face) != 0 || hb_ot_color_has_layers(face) != 0;
}

enum class Glyphs { Outlines, Pictures };

/// Runs of the wanted kind: outlines are added to the path, pictures are drawn.
void visitRuns(cairo_t* context, PangoLayout* layout, Vec2 origin, Glyphs kind)
{
    double x = origin.x;
    const PangoLayoutLine* line = pango_layout_get_line_readonly(layout, 0);
    for (const GSList* item = line->runs; item != nullptr; item = item->next) {
        auto* run = static_cast<PangoLayoutRun*>(item->data);
        PangoFont* font = run->item->analysis.font;
        const double advance = pango_units_to_double(pango_glyph_string_get_width(run->glyphs));
        const bool isPicture = isPictureFont(font);
        cairo_move_to(context, x, origin.y);
        if (kind == Glyphs::Outlines && !isPicture) {
            pango_cairo_glyph_string_path(context, font, run->glyphs);
        } else if (kind == Glyphs::Pictures && isPicture) {
            pango_cairo_show_glyph_string(context, font, run->glyphs);
        }
        x += advance;
    }
}

} // namespace

std::vector<std::string> missingTypefaces()
{
    const FontMap fonts(pango_cairo_font_map_new());
    std::vector<std::string> missing;
    for (const FontRole role :
         {FontRole::System, FontRole::Monospaced, FontRole::Serif, FontRole::Rounded}) {
        const std::string all = family(role);
        const std::string wanted = all.substr(0, all.find(','));
        PangoFontFamily* const found = pango_font_map_get_family(fonts.get(), wanted.c_str());
        if (found == nullptr || wanted != pango_font_family_get_name(found))
            missing.push_back(wanted);
    }
    return missing;
}

TextMetrics measureText(std::string_view text, const Font& font)
{
    const TextLayout layout = layOut(text, font);
    PangoRectangle logical{};
    pango_layout_get_extents(layout.get(), nullptr, &logical);
    const int baseline = pango_layout_get_baseline(layout.get());
    return {
        pango_units_to_double(logical.width),
        pango_units_to_double(baseline - logical.y),
        pango_units_to_double(logical.y + logical.height - baseline)};
}

// Text is filled as outlines: Cairo's glyph cache would move each glyph to a whole pixel.
void Canvas::drawText(std::string_view text, const Font& font, Vec2 origin, const Paint& paint)
{
    cairo_t* context = m_state->context.get();
    const TextLayout layout = layOut(text, font);
    setSource(context, paint);
    cairo_set_operator(context, CAIRO_OPERATOR_OVER);
    cairo_set_fill_rule(context, CAIRO_FILL_RULE_WINDING);
    cairo_new_path(context);
    visitRuns(context, layout.get(), origin, Glyphs::Outlines);
    cairo_fill(context);
    visitRuns(context, layout.get(), origin, Glyphs::Pictures);
    cairo_new_path(context);
}

void Canvas::strokeText(
    std::string_view text, const Font& font, Vec2 origin, const Stroke& stroke, const Paint& paint)
{
    cairo_t* context = m_state->context.get();
    const TextLayout layout = layOut(text, font);
    setStroke(context, stroke);
    setSource(context, paint);
    cairo_set_operator(context, CAIRO_OPERATOR_OVER);
    cairo_new_path(context);
    visitRuns(context, layout.get(), origin, Glyphs::Outlines);
    cairo_stroke(context);
}

} // namespace zento
