#pragma once

#include "tool/Output.h"

#include <cairo.h>
#include <memory>
#include <string>

namespace kvsig::tool {

struct Colour {
    double red, green, blue;
};

enum class Align { left, centre, right };

/// A page to draw on, in millimetres, that becomes an SVG, PNG or PDF file.
class Canvas {
  public:
    /// `kind` is svg, png or pdf. The output must outlive the canvas.
    Canvas(const std::string& kind, double width, double height, Output& output);

    [[nodiscard]] cairo_t* context() const { return m_context.get(); }
    void line(double x1, double y1, double x2, double y2, double width, Colour colour);
    /// `y` is the text's baseline, `size` the font size in millimetres. A text wider than `most`
    /// is set smaller.
    void text(double x, double y, const std::string& utf8, double size, Align align, Colour colour,
              double most = 0.0);

    /// Brings the page to the output; false when drawing or writing failed.
    bool finish();

  private:
    struct Destroy {
        void operator()(cairo_surface_t* surface) const { cairo_surface_destroy(surface); }
        void operator()(cairo_t* context) const { cairo_destroy(context); }
    };

    std::string m_kind;
    std::unique_ptr<cairo_surface_t, Destroy> m_surface;
    std::unique_ptr<cairo_t, Destroy> m_context;
    Output* m_output;
};

} // namespace kvsig::tool
