#include "svg_canvas.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace quadrel_fit {

namespace {

std::string Px(double value) {
  char text[32];
  std::snprintf(text, sizeof text, "%.2f", value);
  return text;
}

// A tick value with no more digits than the step needs.
std::string TickText(double value, double step) {
  if (std::fabs(value) < step * 1e-9) value = 0.0;
  char text[32];
  std::snprintf(text, sizeof text, "%.4g", value);
  return text;
}

}  // namespace

std::string EscapeXml(const std::string &text) {
  std::string escaped;
  for (char c : text) {
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += "&quot;";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

std::vector<double> NiceTicks(double low, double high, int wanted) {
  std::vector<double> ticks;
  const double span = high - low;
  if (!(span > 0.0) || !std::isfinite(span)) return ticks;
  const double rough = span / wanted;
  const double power = std::pow(10.0, std::floor(std::log10(rough)));
  double step = power;
  for (double factor : {1.0, 2.0, 5.0, 10.0}) {
    step = factor * power;
    if (step >= rough) break;
  }
  for (double k = std::ceil(low / step); k * step <= high + step * 1e-9; k += 1.0) {
    ticks.push_back(k * step);
  }
  return ticks;
}

SvgCanvas::SvgCanvas(int width, int height) : width_(width), height_(height) {}

void SvgCanvas::SetRange(double xMin, double xMax, double yMin, double yMax, bool equalAspect) {
  auto widen = [](double &low, double &high) {
    if (!(high > low)) {
      const double pad = low != 0.0 ? std::fabs(low) * 0.1 : 1.0;
      low -= pad;
      high += pad;
    }
  };
  widen(xMin, xMax);
  widen(yMin, yMax);
  if (equalAspect) {
    const double plotWidth = PlotRight() - PlotLeft();
    const double plotHeight = PlotBottom() - PlotTop();
    const double scale = std::max((xMax - xMin) / plotWidth, (yMax - yMin) / plotHeight);
    const double xMid = (xMin + xMax) / 2.0;
    const double yMid = (yMin + yMax) / 2.0;
    xMin = xMid - scale * plotWidth / 2.0;
    xMax = xMid + scale * plotWidth / 2.0;
    yMin = yMid - scale * plotHeight / 2.0;
    yMax = yMid + scale * plotHeight / 2.0;
  }
  xMin_ = xMin;
  xMax_ = xMax;
  yMin_ = yMin;
  yMax_ = yMax;
}

double SvgCanvas::PixelX(double x) const {
  return PlotLeft() + (x - xMin_) / (xMax_ - xMin_) * (PlotRight() - PlotLeft());
}

double SvgCanvas::PixelY(double y) const {
  return PlotBottom() - (y - yMin_) / (yMax_ - yMin_) * (PlotBottom() - PlotTop());
}

void SvgCanvas::DrawAxes(const std::string &title, const std::string &xLabel,
                         const std::string &yLabel, const std::string &subtitle) {
  const std::string tickStyle = R"(stroke="#444" stroke-width="1")";
  const std::string gridStyle = R"(stroke="#e4e4e4" stroke-width="1")";
  const std::string textStyle = R"(font-size="12" fill="#222")";
  auto addTicks = [&](bool horizontal) {
    const double low = horizontal ? xMin_ : yMin_;
    const double high = horizontal ? xMax_ : yMax_;
    const std::vector<double> ticks = NiceTicks(low, high, horizontal ? 8 : 6);
    const double step = ticks.size() > 1 ? ticks[1] - ticks[0] : 1.0;
    for (double t : ticks) {
      if (horizontal) {
        const double px = PixelX(t);
        body_ << "<line x1=\"" << Px(px) << "\" y1=\"" << PlotTop() << "\" x2=\"" << Px(px)
              << "\" y2=\"" << PlotBottom() << "\" " << gridStyle << "/>\n";
        body_ << "<line x1=\"" << Px(px) << "\" y1=\"" << PlotBottom() << "\" x2=\"" << Px(px)
              << "\" y2=\"" << PlotBottom() + 5 << "\" " << tickStyle << "/>\n";
        Label(px, PlotBottom() + 18, TickText(t, step), textStyle + R"( text-anchor="middle")");
      } else {
        const double py = PixelY(t);
        body_ << "<line x1=\"" << PlotLeft() << "\" y1=\"" << Px(py) << "\" x2=\"" << PlotRight()
              << "\" y2=\"" << Px(py) << "\" " << gridStyle << "/>\n";
        body_ << "<line x1=\"" << PlotLeft() - 5 << "\" y1=\"" << Px(py) << "\" x2=\"" << PlotLeft()
              << "\" y2=\"" << Px(py) << "\" " << tickStyle << "/>\n";
        Label(PlotLeft() - 8, py + 4, TickText(t, step), textStyle + R"( text-anchor="end")");
      }
    }
  };
  // The grid goes first so that it lies under everything drawn later.
  std::string earlier = body_.str();
  body_.str("");
  addTicks(true);
  addTicks(false);
  body_ << "<rect x=\"" << PlotLeft() << "\" y=\"" << PlotTop() << "\" width=\""
        << PlotRight() - PlotLeft() << "\" height=\"" << PlotBottom() - PlotTop()
        << R"(" fill="none" stroke="#444" stroke-width="1"/>)" << '\n';
  Label(width_ / 2.0, 24, title, R"(font-size="16" font-weight="bold" text-anchor="middle")");
  if (!subtitle.empty()) {
    Label(width_ / 2.0, 42, subtitle, R"(font-size="12" fill="#444" text-anchor="middle")");
  }
  Label((PlotLeft() + PlotRight()) / 2.0, height_ - 18, xLabel,
        R"(font-size="13" text-anchor="middle")");
  const double yMid = (PlotTop() + PlotBottom()) / 2.0;
  body_ << "<text x=\"22\" y=\"" << Px(yMid) << R"(" font-size="13" text-anchor="middle" )"
        << "transform=\"rotate(-90 22 " << Px(yMid) << ")\">" << EscapeXml(yLabel) << "</text>\n";
  body_ << earlier;
}

void SvgCanvas::Dot(double x, double y, double radiusPixels, const std::string &style) {
  body_ << "<circle cx=\"" << Px(PixelX(x)) << "\" cy=\"" << Px(PixelY(y)) << "\" r=\""
        << Px(radiusPixels) << "\" " << style << "/>\n";
}

void SvgCanvas::Segment(double x0, double y0, double x1, double y1, const std::string &style) {
  body_ << "<line x1=\"" << Px(PixelX(x0)) << "\" y1=\"" << Px(PixelY(y0)) << "\" x2=\""
        << Px(PixelX(x1)) << "\" y2=\"" << Px(PixelY(y1)) << "\" " << style << "/>\n";
}

void SvgCanvas::Path(const std::vector<std::pair<double, double>> &points, bool closed,
                     const std::string &style) {
  if (points.empty()) return;
  body_ << "<path d=\"";
  for (size_t k = 0; k < points.size(); ++k) {
    body_ << (k == 0 ? "M" : " L") << Px(PixelX(points[k].first)) << ' '
          << Px(PixelY(points[k].second));
  }
  if (closed) body_ << " Z";
  body_ << "\" " << style << "/>\n";
}

void SvgCanvas::Box(double x0, double y0, double x1, double y1, const std::string &style) {
  const double left = std::min(PixelX(x0), PixelX(x1));
  const double top = std::min(PixelY(y0), PixelY(y1));
  const double width = std::fabs(PixelX(x1) - PixelX(x0));
  const double height = std::fabs(PixelY(y1) - PixelY(y0));
  body_ << "<rect x=\"" << Px(left) << "\" y=\"" << Px(top) << "\" width=\"" << Px(width)
        << "\" height=\"" << Px(height) << "\" " << style << "/>\n";
}

void SvgCanvas::Cross(double x, double y, double sizePixels, const std::string &style) {
  const double px = PixelX(x);
  const double py = PixelY(y);
  body_ << "<path d=\"M" << Px(px - sizePixels) << ' ' << Px(py - sizePixels) << " L"
        << Px(px + sizePixels) << ' ' << Px(py + sizePixels) << " M" << Px(px - sizePixels) << ' '
        << Px(py + sizePixels) << " L" << Px(px + sizePixels) << ' ' << Px(py - sizePixels) << "\" "
        << style << "/>\n";
}

void SvgCanvas::Label(double px, double py, const std::string &text, const std::string &style) {
  body_ << "<text x=\"" << Px(px) << "\" y=\"" << Px(py) << "\" " << style << ">" << EscapeXml(text)
        << "</text>\n";
}

void SvgCanvas::Raw(const std::string &element) {
  body_ << element << '\n';
}

std::string SvgCanvas::Document() const {
  std::ostringstream document;
  document << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
           << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << width_ << "\" height=\""
           << height_ << "\" viewBox=\"0 0 " << width_ << ' ' << height_
           << "\" font-family=\"sans-serif\">\n"
           << "<rect width=\"100%\" height=\"100%\" fill=\"white\"/>\n"
           << body_.str() << "</svg>\n";
  return document.str();
}

}  // namespace quadrel_fit
