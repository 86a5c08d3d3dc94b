// A small SVG writer for plots: a frame with axes, ticks and a title, and
// shapes placed in data coordinates.
#ifndef QUADREL_FIT_SVG_CANVAS_H
#define QUADREL_FIT_SVG_CANVAS_H

#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace quadrel_fit {

class SvgCanvas {
 public:
  // A picture of width x height pixels; the plot area leaves margins for the
  // title, the tick labels and the axis labels.
  SvgCanvas(int width, int height);

  // The data range shown. With equalAspect one unit has the same length on
  // both axes, and the narrower range is widened about its middle. A range of
  // zero width is widened to show its value.
  void SetRange(double xMin, double xMax, double yMin, double yMax, bool equalAspect);

  // Pixel coordinates of a data point.
  double PixelX(double x) const;
  double PixelY(double y) const;

  // The frame, a grid, ticks with their values, the axis labels, the title and
  // an optional line under it. Call it after SetRange; it may come before or
  // after the data, the grid always lies beneath.
  void DrawAxes(const std::string &title, const std::string &xLabel, const std::string &yLabel,
                const std::string &subtitle = "");

  // Shapes in data coordinates; style is an SVG attribute list such as
  // R"(fill="red")". A marker radius is in pixels.
  void Dot(double x, double y, double radiusPixels, const std::string &style);
  void Segment(double x0, double y0, double x1, double y1, const std::string &style);
  void Path(const std::vector<std::pair<double, double>> &points, bool closed,
            const std::string &style);
  void Box(double x0, double y0, double x1, double y1, const std::string &style);
  void Cross(double x, double y, double sizePixels, const std::string &style);
  // Text at pixel coordinates (not data coordinates).
  void Label(double px, double py, const std::string &text, const std::string &style);
  // Any SVG element, written as given.
  void Raw(const std::string &element);

  // The whole document.
  std::string Document() const;

  int PlotLeft() const { return left_; }
  int PlotRight() const { return width_ - right_; }
  int PlotTop() const { return top_; }
  int PlotBottom() const { return height_ - bottom_; }

 private:
  int width_;
  int height_;
  int left_ = 80;
  int right_ = 30;
  int top_ = 56;
  int bottom_ = 60;
  double xMin_ = 0, xMax_ = 1, yMin_ = 0, yMax_ = 1;
  std::ostringstream body_;
};

// Text with &, <, > and quotes escaped for SVG.
std::string EscapeXml(const std::string &text);

// Ticks for a range: round values (1, 2 or 5 times a power of ten apart) that
// lie in [low, high], about `wanted` of them.
std::vector<double> NiceTicks(double low, double high, int wanted);

}  // namespace quadrel_fit

#endif  // QUADREL_FIT_SVG_CANVAS_H
