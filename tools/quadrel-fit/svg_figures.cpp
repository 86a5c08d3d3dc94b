#include "svg_figures.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <utility>
#include <vector>

#include "errors.h"
#include "quadrel/frontend/format.h"
#include "svg_canvas.h"

namespace quadrel_fit {

namespace {

constexpr int kWidth = 760;
constexpr int kHeight = 620;
// More points than this are thinned out evenly: the picture stays light and a
// reader still sees the shape of the cloud.
constexpr int kMostDots = 20000;
using quadrel_frontend::Cross;
using quadrel_frontend::Dot;
using quadrel_frontend::FormatNumber;
using quadrel_frontend::kPi;
using quadrel_frontend::Unit;
using quadrel_frontend::Vec3;

// Two unit vectors u, v in the plane of normal, with u along `along` when that
// has a part in the plane, else along the coordinate axis least like the normal.
std::pair<Vec3, Vec3> PlaneAxes(const Vec3 &normal, const Vec3 &along) {
  const Vec3 n = Unit(normal);
  Vec3 u = along;
  double inPlane = Dot(u, n);
  Vec3 projected = {u[0] - inPlane * n[0], u[1] - inPlane * n[1], u[2] - inPlane * n[2]};
  if (!(Dot(projected, projected) > 1e-24)) {
    int axis = 0;
    for (int i = 1; i < 3; ++i) {
      if (std::fabs(n[i]) < std::fabs(n[axis])) axis = i;
    }
    u = {0.0, 0.0, 0.0};
    u[axis] = 1.0;
    inPlane = Dot(u, n);
    projected = {u[0] - inPlane * n[0], u[1] - inPlane * n[1], u[2] - inPlane * n[2]};
  }
  u = Unit(projected);
  return {u, Cross(n, u)};
}

int Thinning(int count) {
  return count > kMostDots ? (count + kMostDots - 1) / kMostDots : 1;
}

std::string Every(int step, int count) {
  return "showing every " + std::to_string(step) + "th of " + std::to_string(count) + " points";
}

double Rms(const std::vector<double> &values) {
  double squares = 0.0;
  for (double v : values)
    squares += v * v;
  return std::sqrt(squares / static_cast<double>(values.size()));
}

}  // namespace

std::string CurveFigure(const quadrel_frontend::ShapeFit &result, const PointSet &table) {
  const bool ellipse = std::string(result.shape->name) == "ellipse";
  Vec3 focalAxis{};
  double semiMajor = 0.0;
  double semiMinor = 0.0;
  double focalHalfDistance = 0.0;
  if (ellipse) {
    const Vec3 focus1 = result.Vector("focus_1");
    const Vec3 focus2 = result.Vector("focus_2");
    focalAxis = {focus2[0] - focus1[0], focus2[1] - focus1[1], focus2[2] - focus1[2]};
    semiMajor = result.Scalar("semi_major");
    semiMinor = result.Scalar("semi_minor");
    focalHalfDistance = result.Scalar("centre_to_focus");
  } else {
    semiMajor = semiMinor = result.Scalar("radius");
  }
  const Vec3 centre = result.Vector("centre");
  const auto [u, v] = PlaneAxes(result.Vector("normal"), ellipse ? focalAxis : Vec3{1.0, 0.0, 0.0});
  const int n = table.count();
  const int step = Thinning(n);
  std::vector<std::pair<double, double>> dots;
  double xMin = -semiMajor, xMax = semiMajor, yMin = -semiMinor, yMax = semiMinor;
  for (int k = 0; k < n; k += step) {
    const Vec3 d = {table.at(0, k) - centre[0], table.at(1, k) - centre[1],
                    table.at(2, k) - centre[2]};
    const double x = Dot(d, u);
    const double y = Dot(d, v);
    dots.emplace_back(x, y);
    xMin = std::min(xMin, x);
    xMax = std::max(xMax, x);
    yMin = std::min(yMin, y);
    yMax = std::max(yMax, y);
  }
  const double pad = 0.08 * std::max(xMax - xMin, yMax - yMin);
  SvgCanvas canvas(kWidth, kHeight);
  canvas.SetRange(xMin - pad, xMax + pad, yMin - pad, yMax + pad, true);

  std::vector<std::pair<double, double>> curve;
  for (int k = 0; k < 360; ++k) {
    const double t = 2.0 * kPi * k / 360.0;
    curve.emplace_back(semiMajor * std::cos(t), semiMinor * std::sin(t));
  }
  canvas.Path(curve, true, R"(fill="none" stroke="#c0392b" stroke-width="2")");
  for (const auto &[x, y] : dots) {
    canvas.Dot(x, y, 3.0, R"(fill="#1f5fa8" fill-opacity="0.8")");
  }
  canvas.Cross(0.0, 0.0, 5.0, R"(stroke="#c0392b" stroke-width="1.5")");
  std::string title;
  std::string subtitle;
  if (ellipse) {
    canvas.Dot(-focalHalfDistance, 0.0, 4.0, R"(fill="none" stroke="#c0392b")");
    canvas.Dot(focalHalfDistance, 0.0, 4.0, R"(fill="none" stroke="#c0392b")");
    title = "ellipse fit of " + table.name();
    subtitle = "semi-axes " + FormatNumber(semiMajor) + " and " + FormatNumber(semiMinor) +
               ", foci ringed, rms residual " + FormatNumber(Rms(result.residuals));
  } else {
    title = "circle fit of " + table.name();
    subtitle = "radius " + FormatNumber(semiMajor) + ", centre (" + FormatNumber(centre[0]) + ", " +
               FormatNumber(centre[1]) + ", " + FormatNumber(centre[2]) + "), rms residual " +
               FormatNumber(Rms(result.residuals));
  }
  if (step > 1) subtitle += "; " + Every(step, n);
  canvas.DrawAxes(title,
                  ellipse ? "along the major axis, in the fitted plane"
                          : "first axis of the fitted plane, from the centre",
                  ellipse ? "along the minor axis" : "second axis of the fitted plane", subtitle);
  return canvas.Document();
}

std::string PlaneResidualFigure(const quadrel_frontend::ShapeFit &result, const PointSet &table) {
  const std::vector<double> &r = result.residuals;
  const int n = static_cast<int>(r.size());
  // With many points each bar spans the lowest to the highest residual of a run
  // of neighbouring points.
  constexpr int kMostBars = 1000;
  const int perBar = n > kMostBars ? (n + kMostBars - 1) / kMostBars : 1;
  double low = 0.0, high = 0.0;
  for (double value : r) {
    low = std::min(low, value);
    high = std::max(high, value);
  }
  const double pad = 0.06 * (high - low);
  SvgCanvas canvas(kWidth, kHeight - 120);
  canvas.SetRange(0.5, n + 0.5, low - pad, high + pad, false);
  for (int first = 0; first < n; first += perBar) {
    const int last = std::min(n, first + perBar);
    double barLow =
        perBar > 1 ? r[static_cast<size_t>(first)] : std::min(0.0, r[static_cast<size_t>(first)]);
    double barHigh =
        perBar > 1 ? r[static_cast<size_t>(first)] : std::max(0.0, r[static_cast<size_t>(first)]);
    for (int k = first; k < last; ++k) {
      barLow = std::min(barLow, r[static_cast<size_t>(k)]);
      barHigh = std::max(barHigh, r[static_cast<size_t>(k)]);
    }
    // A single residual is coloured by its side of the plane; a run of them
    // spans both sides as a rule and gets one neutral colour.
    const char *style = perBar > 1
                            ? R"(fill="#5b7fa6")"
                            : (barLow + barHigh >= 0.0 ? R"(fill="#1f5fa8")" : R"(fill="#e08a2c")");
    const double halfWidth = 0.4 * perBar;
    const double middle = (first + last + 1) / 2.0;
    canvas.Box(middle - halfWidth, barLow, middle + halfWidth, barHigh, style);
  }
  canvas.Segment(0.5, 0.0, n + 0.5, 0.0, R"(stroke="#222" stroke-width="1")");
  std::string subtitle =
      "signed distance of each point from the plane, blue above and orange "
      "below; rms " +
      FormatNumber(Rms(r));
  if (perBar > 1) {
    subtitle = "signed distance from the plane, each bar from the lowest to the highest of " +
               std::to_string(perBar) + " points; rms " + FormatNumber(Rms(r));
  }
  canvas.DrawAxes("plane fit of " + table.name(), "point (in file order)", "residual", subtitle);
  return canvas.Document();
}

std::string PeakFigure(const quadrel_frontend::PeakFit &result, const PointSet &samples) {
  const int n = samples.count();
  double xMin = result.peak[0], xMax = result.peak[0];
  double yMin = result.peak[1], yMax = result.peak[1];
  double qMin = samples.at(2, 0), qMax = samples.at(2, 0);
  for (int k = 0; k < n; ++k) {
    xMin = std::min(xMin, samples.at(0, k));
    xMax = std::max(xMax, samples.at(0, k));
    yMin = std::min(yMin, samples.at(1, k));
    yMax = std::max(yMax, samples.at(1, k));
    qMin = std::min(qMin, samples.at(2, k));
    qMax = std::max(qMax, samples.at(2, k));
  }
  const double pad = 0.08 * std::max(xMax - xMin, yMax - yMin);
  SvgCanvas canvas(kWidth, kHeight);
  canvas.SetRange(xMin - pad, xMax + pad, yMin - pad, yMax + pad, true);

  // Light for low quality, dark for high.
  const int light[3] = {222, 235, 247};
  const int dark[3] = {8, 48, 107};
  auto shade = [&](double q) {
    const double t = qMax > qMin ? (q - qMin) / (qMax - qMin) : 1.0;
    char colour[8];
    int c[3];
    for (int i = 0; i < 3; ++i)
      c[i] = static_cast<int>(std::lround(light[i] + t * (dark[i] - light[i])));
    std::snprintf(colour, sizeof colour, "#%02x%02x%02x", c[0], c[1], c[2]);
    return std::string(colour);
  };
  const int step = Thinning(n);
  const double radius = n <= 400 ? 6.0 : (n <= 4000 ? 4.0 : 2.5);
  for (int k = 0; k < n; k += step) {
    canvas.Dot(samples.at(0, k), samples.at(1, k), radius,
               "fill=\"" + shade(samples.at(2, k)) + R"(" stroke="#888" stroke-width="0.5")");
  }
  const int best = result.bestSample;
  canvas.Dot(samples.at(0, best), samples.at(1, best), radius + 4.0,
             R"(fill="none" stroke="#111" stroke-width="1.5")");
  canvas.Cross(result.peak[0], result.peak[1], 8.0, R"(stroke="#c0392b" stroke-width="3")");
  canvas.Label(canvas.PixelX(result.peak[0]) + 12, canvas.PixelY(result.peak[1]) - 10,
               "peak (" + FormatNumber(result.peak[0]) + ", " + FormatNumber(result.peak[1]) + ")",
               R"(font-size="13" fill="#c0392b" font-weight="bold")");

  // Legend of the shading, under the plot on the left.
  const int legendLeft = canvas.PlotLeft() + 90;
  const int legendTop = kHeight - 30;
  canvas.Raw(R"(<defs><linearGradient id="quality"><stop offset="0" stop-color=")" + shade(qMin) +
             R"("/><stop offset="1" stop-color=")" + shade(qMax) +
             R"("/></linearGradient></defs>)");
  canvas.Raw("<rect x=\"" + std::to_string(legendLeft) + "\" y=\"" + std::to_string(legendTop) +
             R"svg(" width="150" height="10" fill="url(#quality)" stroke="#888"/>)svg");
  canvas.Label(legendLeft - 6, legendTop + 10, "quality " + FormatNumber(qMin),
               R"(font-size="11" text-anchor="end")");
  canvas.Label(legendLeft + 156, legendTop + 10, FormatNumber(qMax), R"(font-size="11")");

  std::string subtitle = quadrel_frontend::PeakMethod(result.code) + " (code " +
                         std::to_string(result.code) + "); best sample ringed";
  if (step > 1) subtitle += "; " + Every(step, n);
  canvas.DrawAxes("quality peak of " + samples.name(), "x", "y", subtitle);
  return canvas.Document();
}

void WriteSvgFile(const std::string &path, const std::string &document) {
  std::FILE *file = std::fopen(path.c_str(), "wb");
  if (file == nullptr) throw OutputError("cannot write " + path + ": " + std::strerror(errno));
  const bool written = std::fwrite(document.data(), 1, document.size(), file) == document.size();
  const int error = errno;
  if (std::fclose(file) != 0 || !written) {
    throw OutputError("cannot write " + path + ": " + std::strerror(error));
  }
}

}  // namespace quadrel_fit
