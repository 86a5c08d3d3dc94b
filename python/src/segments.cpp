// Fits of one shape to every segment of a labelled point cloud, on several
// threads, through the front end's table of shapes: a segment that is too
// small or degenerate gets its status and reason instead of numbers, and the
// call goes on.
#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <string>
#include <thread>
#include <vector>

#include <pybind11/stl.h>

#include "bindings.h"
#include "convert.h"
#include "quadrel/frontend/report.h"
#include "quadrel/frontend/shape_fit.h"
#include "quadrel/io/point_set.h"

namespace quadrel_python {

namespace {

// What one segment gives: the front end's outcome, its numbers in field
// order, and two summaries of its residuals.
struct SegmentResult {
  int status = 0;
  std::string reason;
  std::vector<double> values;
  double rms = NAN;
  double largest = NAN;
};

// The segment's points, in input order, as the front end takes them.
quadrel_io::PointSet SegmentPoints(const Source &points, const std::vector<std::int64_t> &rows,
                                   const std::string &name) {
  const std::size_t k = rows.size();
  std::vector<double> axes[3];
  for (auto &axis : axes)
    axis.resize(k);
  std::vector<std::int64_t> origins(k);
  for (std::size_t a = 0; a < k; ++a) {
    const double *point = points.data + rows[a] * points.rowStride;
    for (int r = 0; r < 3; ++r)
      axes[r][a] = point[r * points.colStride];
    origins[a] = rows[a] + 1;  // the row of the input, from 1
  }
  return quadrel_io::PointSet(name, std::move(axes[0]), std::move(axes[1]), std::move(axes[2]),
                              std::move(origins), quadrel_io::OriginKind::kRecord);
}

SegmentResult FitSegment(const quadrel_frontend::ShapeEntry &shape,
                         const quadrel_io::PointSet &set) {
  const quadrel_frontend::ShapeFit fit = quadrel_frontend::FitShape(shape, set);
  SegmentResult result;
  result.status = static_cast<int>(fit.outcome.status);
  result.reason = fit.outcome.reason;
  if (!fit.outcome.ok()) return result;
  for (const auto &field : fit.fields)
    result.values.insert(result.values.end(), field.values.begin(), field.values.end());
  // The summary that quadrel-fit reports, with the same bits.
  const quadrel_frontend::ResidualSummary summary =
      quadrel_frontend::SummarizeResiduals(fit.residuals);
  result.rms = summary.rms;
  result.largest = summary.maxAbs;
  return result;
}

// The column names of a successful fit: a vector field gives name_x, name_y,
// name_z, a scalar its name.
std::vector<std::string> ColumnNames(const quadrel_frontend::ShapeEntry &shape,
                                     const quadrel_io::PointSet &set) {
  std::vector<std::string> names;
  for (const auto &field : quadrel_frontend::FitShape(shape, set).fields) {
    if (field.values.size() == 1) {
      names.push_back(field.name);
    } else {
      for (const char *axis : {"_x", "_y", "_z"})
        names.push_back(field.name + axis);
    }
  }
  return names;
}

}  // namespace

void BindSegments(py::module_ &m) {
  m.def("segment_shapes", [] {
    std::vector<std::string> names;
    for (const auto &entry : quadrel_frontend::Shapes())
      names.emplace_back(entry.name);
    return names;
  });
  m.def(
      "fit_segments",
      [](const Array &points, const py::array_t<std::int64_t, 0> &codes,
         const std::vector<std::string> &names, const std::string &shapeName, int threads) {
        const quadrel_frontend::ShapeEntry *shape = quadrel_frontend::FindShape(shapeName);
        if (shape == nullptr) throw py::value_error("fit_segments: unknown shape " + shapeName);
        const Source source = Describe(points);
        if (codes.ndim() != 1 || codes.shape(0) != source.rows || source.cols != 3)
          throw py::value_error("fit_segments: one code per point of (n, 3) points expected");
        const std::int64_t *code = codes.data();
        const std::size_t segments = names.size();
        for (py::ssize_t i = 0; i < codes.shape(0); ++i)
          if (code[i] < 0 || static_cast<std::size_t>(code[i]) >= segments)
            throw py::value_error("fit_segments: segment code out of range");

        std::vector<SegmentResult> results(segments);
        std::vector<std::int64_t> counts(segments, 0);
        std::vector<std::string> columns;
        WithoutGil([&] {
          // The rows of each segment in input order, by one counting pass.
          std::vector<std::vector<std::int64_t>> rows(segments);
          for (py::ssize_t i = 0; i < codes.shape(0); ++i)
            ++counts[code[i]];
          for (std::size_t s = 0; s < segments; ++s)
            rows[s].reserve(counts[s]);
          for (py::ssize_t i = 0; i < codes.shape(0); ++i)
            rows[code[i]].push_back(i);

          std::atomic<std::size_t> next{0};
          auto work = [&] {
            for (std::size_t s = next++; s < segments; s = next++)
              results[s] = FitSegment(*shape, SegmentPoints(source, rows[s], names[s]));
          };
          std::vector<std::thread> pool;
          const int extra = std::max(0, std::min<int>(threads, static_cast<int>(segments)) - 1);
          for (int t = 0; t < extra; ++t)
            pool.emplace_back(work);
          work();
          for (auto &thread : pool)
            thread.join();

          for (std::size_t s = 0; s < segments; ++s)
            if (results[s].status == 0) {
              columns = ColumnNames(*shape, SegmentPoints(source, rows[s], names[s]));
              break;
            }
        });

        // Columnar results; a refused segment has NaN in every number.
        const std::size_t width = columns.size();
        py::array_t<double> values({segments, width});
        py::array_t<double> rms(segments), largest(segments);
        py::array_t<std::int64_t> count(segments);
        py::array_t<std::int8_t> status(segments);
        std::vector<std::string> reasons(segments);
        auto v = values.mutable_unchecked<2>();
        for (std::size_t s = 0; s < segments; ++s) {
          const SegmentResult &r = results[s];
          for (std::size_t c = 0; c < width; ++c)
            v(s, c) = r.status == 0 ? r.values[c] : NAN;
          rms.mutable_at(s) = r.rms;
          largest.mutable_at(s) = r.largest;
          count.mutable_at(s) = counts[s];
          status.mutable_at(s) = static_cast<std::int8_t>(r.status);
          reasons[s] = r.reason;
        }
        py::dict out;
        out["columns"] = columns;
        out["values"] = values;
        out["points"] = count;
        out["status"] = status;
        out["reason"] = reasons;
        out["rms"] = rms;
        out["max_residual"] = largest;
        return out;
      },
      py::arg("points"), py::arg("codes"), py::arg("names"), py::arg("shape"), py::arg("threads"));
}

}  // namespace quadrel_python
