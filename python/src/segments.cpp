// Fits of one shape to every segment of a labelled point cloud, on several
// threads, through the front end's table of shapes: a segment that is too
// small or degenerate gets its status and reason instead of numbers, and the
// call goes on. The rows are grouped by a counting pass (or a sort, for keys
// that spread far), never by a sort of the whole cloud in Python.
#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <optional>
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

// The rows of every segment: segment s holds rows[start[s]] up to
// rows[start[s + 1]], in input order unless reordered.
struct Groups {
  std::vector<std::int64_t> rows;
  std::vector<std::int64_t> start;
  std::vector<std::int64_t> keys;  // the key of each segment, when grouped by key
};

// Buffers kept from one call to the next on the same thread, up to a bound:
// in a worker that fits partition after partition, fresh pages for every
// call cost more than the grouping itself.
struct Scratch {
  std::vector<std::int64_t> rows;
  std::vector<double> axes[3];
  static constexpr std::size_t kKeep = std::size_t{1} << 21;  // rows
};

// Groups rows by code in [0, segments) with one counting pass, each segment's
// rows in input order; rows lends its storage.
Groups GroupByCode(const std::int64_t *code, std::int64_t n, std::int64_t first,
                   std::size_t segments, std::vector<std::int64_t> rows) {
  Groups groups;
  groups.rows = std::move(rows);
  groups.start.assign(segments + 1, 0);
  for (std::int64_t i = 0; i < n; ++i)
    ++groups.start[code[i] - first + 1];
  for (std::size_t s = 0; s < segments; ++s)
    groups.start[s + 1] += groups.start[s];
  std::vector<std::int64_t> next(groups.start.begin(), groups.start.end() - 1);
  groups.rows.resize(static_cast<std::size_t>(n));
  for (std::int64_t i = 0; i < n; ++i)
    groups.rows[next[code[i] - first]++] = i;
  return groups;
}

// Groups rows by integer key, the segments in ascending key order and the
// rows of each in input order: by counting when the keys span few values, by
// sorting otherwise.
Groups GroupByKey(const std::int64_t *key, std::int64_t n, std::vector<std::int64_t> rows) {
  if (n == 0) return Groups{{}, {0}, {}};
  const auto [low, high] = std::minmax_element(key, key + n);
  const std::uint64_t span = static_cast<std::uint64_t>(*high) - static_cast<std::uint64_t>(*low);
  if (span < static_cast<std::uint64_t>(n) * 4 + 1024) {
    Groups groups = GroupByCode(key, n, *low, static_cast<std::size_t>(span) + 1, std::move(rows));
    // Keep the keys that occur.
    std::size_t kept = 0;
    for (std::size_t v = 0; v + 1 < groups.start.size(); ++v) {
      if (groups.start[v + 1] == groups.start[v]) continue;
      groups.keys.push_back(*low + static_cast<std::int64_t>(v));
      groups.start[kept++] = groups.start[v];
    }
    groups.start[kept] = n;
    groups.start.resize(kept + 1);
    return groups;
  }
  Groups groups;
  groups.rows = std::move(rows);
  groups.rows.resize(static_cast<std::size_t>(n));
  for (std::int64_t i = 0; i < n; ++i)
    groups.rows[i] = i;
  std::stable_sort(groups.rows.begin(), groups.rows.end(),
                   [key](std::int64_t a, std::int64_t b) { return key[a] < key[b]; });
  for (std::int64_t i = 0; i < n; ++i) {
    if (i > 0 && key[groups.rows[i]] == key[groups.rows[i - 1]]) continue;
    groups.keys.push_back(key[groups.rows[i]]);
    groups.start.push_back(i);
  }
  groups.start.push_back(n);
  return groups;
}

// Puts the rows of every segment in ascending order of their order values.
void OrderWithin(Groups &groups, const std::int64_t *order) {
  const auto before = [order](std::int64_t a, std::int64_t b) { return order[a] < order[b]; };
  for (std::size_t s = 0; s + 1 < groups.start.size(); ++s) {
    const auto first = groups.rows.begin() + groups.start[s];
    const auto last = groups.rows.begin() + groups.start[s + 1];
    if (!std::is_sorted(first, last, before)) std::stable_sort(first, last, before);
  }
}

// The coordinates of every row in the order of the groups, gathered in one
// pass: a tight loop keeps many reads of scattered rows in flight, where a
// gather per segment waits on each.
struct Gathered {
  std::vector<double> axes[3];
};

Gathered Gather(const Source &points, const std::vector<std::int64_t> &rows, Scratch &scratch) {
  Gathered out;
  for (int r = 0; r < 3; ++r) {
    out.axes[r] = std::move(scratch.axes[r]);
    out.axes[r].resize(rows.size());
  }
  const std::ptrdiff_t c = points.colStride;
  for (std::size_t a = 0; a < rows.size(); ++a) {
    const double *point = points.data + rows[a] * points.rowStride;
    out.axes[0][a] = point[0];
    out.axes[1][a] = point[c];
    out.axes[2][a] = point[2 * c];
  }
  return out;
}

// The points of the segment that holds groups' rows [first, last), in that
// order, as the front end takes them.
quadrel_io::PointSet SegmentPoints(const Gathered &gathered, const Groups &groups,
                                   std::int64_t first, std::int64_t last, std::string name) {
  std::vector<double> axes[3];
  for (int r = 0; r < 3; ++r)
    axes[r].assign(gathered.axes[r].begin() + first, gathered.axes[r].begin() + last);
  std::vector<std::int64_t> origins(groups.rows.begin() + first, groups.rows.begin() + last);
  for (std::int64_t &origin : origins)
    ++origin;  // the row of the input, from 1
  return quadrel_io::PointSet(std::move(name), std::move(axes[0]), std::move(axes[1]),
                              std::move(axes[2]), std::move(origins),
                              quadrel_io::OriginKind::kRecord);
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
         const std::optional<std::vector<std::string>> &names, const std::string &shapeName,
         int threads, const std::optional<py::array_t<std::int64_t, 0>> &order) {
        const quadrel_frontend::ShapeEntry *shape = quadrel_frontend::FindShape(shapeName);
        if (shape == nullptr) throw py::value_error("fit_segments: unknown shape " + shapeName);
        const Source source = Describe(points);
        if (codes.ndim() != 1 || codes.shape(0) != source.rows || source.cols != 3)
          throw py::value_error("fit_segments: one code per point of (n, 3) points expected");
        const std::int64_t n = codes.shape(0);
        if (order && (order->ndim() != 1 || order->shape(0) != n))
          throw py::value_error("fit_segments: one order value per point expected");
        const std::int64_t *code = codes.data();
        const std::int64_t *rank = order ? order->data() : nullptr;
        if (names) {
          for (std::int64_t i = 0; i < n; ++i)
            if (code[i] < 0 || static_cast<std::size_t>(code[i]) >= names->size())
              throw py::value_error("fit_segments: segment code out of range");
        }

        Groups groups;
        std::vector<SegmentResult> results;
        std::vector<std::string> columns;
        WithoutGil([&] {
          static thread_local Scratch scratch;
          groups = names ? GroupByCode(code, n, 0, names->size(), std::move(scratch.rows))
                         : GroupByKey(code, n, std::move(scratch.rows));
          if (rank != nullptr) OrderWithin(groups, rank);
          const std::size_t segments = groups.start.size() - 1;
          // A segment's name appears in its reason only: integer keys are
          // named by their decimal digits.
          Gathered gathered = Gather(source, groups.rows, scratch);
          const auto points = [&](std::size_t s) {
            return SegmentPoints(gathered, groups, groups.start[s], groups.start[s + 1],
                                 names ? (*names)[s] : std::to_string(groups.keys[s]));
          };
          results.resize(segments);
          std::atomic<std::size_t> next{0};
          auto work = [&] {
            for (std::size_t s = next++; s < segments; s = next++)
              results[s] = FitSegment(*shape, points(s));
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
              columns = ColumnNames(*shape, points(s));
              break;
            }
          if (groups.rows.capacity() <= Scratch::kKeep) {
            scratch.rows = std::move(groups.rows);
            for (int r = 0; r < 3; ++r)
              scratch.axes[r] = std::move(gathered.axes[r]);
          }
        });

        // Columnar results; a refused segment has NaN in every number.
        const std::size_t segments = results.size();
        const std::size_t width = columns.size();
        py::array_t<double> values({segments, width});
        py::array_t<double> rms(segments), largest(segments);
        py::array_t<std::int64_t> count(segments);
        py::array_t<std::int8_t> status(segments);
        py::list reasons(segments);
        auto v = values.mutable_unchecked<2>();
        const py::str none;
        for (std::size_t s = 0; s < segments; ++s) {
          const SegmentResult &r = results[s];
          for (std::size_t c = 0; c < width; ++c)
            v(s, c) = r.status == 0 ? r.values[c] : NAN;
          rms.mutable_at(s) = r.rms;
          largest.mutable_at(s) = r.largest;
          count.mutable_at(s) = groups.start[s + 1] - groups.start[s];
          status.mutable_at(s) = static_cast<std::int8_t>(r.status);
          reasons[s] = r.reason.empty() ? none : py::str(r.reason);
        }
        py::dict out;
        out["columns"] = columns;
        out["values"] = values;
        out["points"] = count;
        out["status"] = status;
        out["reason"] = reasons;
        out["rms"] = rms;
        out["max_residual"] = largest;
        if (!names) out["keys"] = py::array_t<std::int64_t>(segments, groups.keys.data());
        return out;
      },
      py::arg("points"), py::arg("codes"), py::arg("names"), py::arg("shape"), py::arg("threads"),
      py::arg("order") = py::none());
}

}  // namespace quadrel_python
