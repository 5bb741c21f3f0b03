#include "tool/plot/Canvas.h"

#include <cairo-pdf.h>
#include <cairo-svg.h>
#include <cmath>

namespace kvsig::tool {
namespace {

constexpr double pointsPerMm = 72.0 / 25.4;
constexpr double pixelsPerMm = 150.0 / 25.4;

cairo_status_t writeTo(void* output, const unsigned char* data, unsigned int length) {
    const char* bytes = static_cast<const char*>(static_cast<const void*>(data));
    return static_cast<Output*>(output)->write({bytes, length}) ? CAIRO_STATUS_SUCCESS
                                                                : CAIRO_STATUS_WRITE_ERROR;
}

cairo_surface_t* newSurface(const std::string& kind, double width, double height, Output& output) {
    if (kind == "png")
        return cairo_image_surface_create(CAIRO_FORMAT_RGB24,
                                          static_cast<int>(std::lround(width * pixelsPerMm)),
                                          static_cast<int>(std::lround(height * pixelsPerMm)));
    const auto create =
        kind == "svg" ? cairo_svg_surface_create_for_stream : cairo_pdf_surface_create_for_stream;
    return create(writeTo, &output, width * pointsPerMm, height * pointsPerMm);
}

void setColour(cairo_t* context, Colour colour) {
    cairo_set_source_rgb(context, colour.red, colour.green, colour.blue);
}

} // namespace

Canvas::Canvas(const std::string& kind, double width, double height, Output& output)
    : m_kind(kind),
      m_surface(newSurface(kind, width, height, output)),
      m_context(cairo_create(m_surface.get())),
      m_output(&output) {
    const double scale = kind == "png" ? pixelsPerMm : pointsPerMm;
    cairo_scale(m_context.get(), scale, scale);
    setColour(m_context.get(), {1.0, 1.0, 1.0});
    cairo_paint(m_context.get());
    cairo_select_font_face(m_context.get(), "sans-serif", CAIRO_FONT_SLANT_NORMAL,
                           CAIRO_FONT_WEIGHT_NORMAL);
    cairo_set_line_join(m_context.get(), CAIRO_LINE_JOIN_ROUND);
}

void Canvas::line(double x1, double y1, double x2, double y2, double width, Colour colour) {
    cairo_t* context = m_context.get();
    setColour(context, colour);
    cairo_set_line_width(context, width);
    cairo_move_to(context, x1, y1);
    cairo_line_to(context, x2, y2);
    cairo_stroke(context);
}

void Canvas::text(double x, double y, const std::string& utf8, double size, Align align,
                  Colour colour, double most) {
    cairo_t* context = m_context.get();
    cairo_text_extents_t extents;
    cairo_set_font_size(context, size);
    cairo_text_extents(context, utf8.c_str(), &extents);
    if (most > 0.0 && extents.x_advance > most) {
        cairo_set_font_size(context, size * most / extents.x_advance);
        cairo_text_extents(context, utf8.c_str(), &extents);
    }
    const double shift = align == Align::left ? 0.0 : align == Align::right ? 1.0 : 0.5;
    setColour(context, colour);
    cairo_move_to(context, x - shift * extents.x_advance, y);
    cairo_show_text(context, utf8.c_str());
}

bool Canvas::finish() {
    bool written = cairo_status(m_context.get()) == CAIRO_STATUS_SUCCESS;
    if (m_kind == "png")
        written = written && cairo_surface_write_to_png_stream(m_surface.get(), writeTo,
                                                               m_output) == CAIRO_STATUS_SUCCESS;
    cairo_surface_finish(m_surface.get());
    return written && cairo_surface_status(m_surface.get()) == CAIRO_STATUS_SUCCESS;
}

} // namespace kvsig::tool
