#include "quadrel/io/raw_cloud.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstring>
#include <utility>

#include "quadrel/io/read_error.h"

namespace quadrel_io {

namespace {

// Moves the values at the kept positions to the front and cuts the rest.
template <typename T>
void Compact(std::vector<T> &values, const std::vector<std::int64_t> &origins) {
  for (std::size_t k = 0; k < origins.size(); ++k)
    values[k] = values[static_cast<std::size_t>(origins[k] - 1)];
  values.resize(origins.size());
}

}  // namespace

double *RawCloud::AddColumn(std::string name) {
  std::vector<double> values;
  ReserveLarge(values, records);
  values.resize(records);
  extras.push_back({std::move(name), std::move(values), false, {}});
  return extras.back().values.data();
}

void RawCloud::StoreFields(const char *at, std::size_t stride,
                           const std::vector<RecordField> &fields, bool bigEndian,
                           const std::shared_ptr<const void> &owner) {
  if (fields.empty()) return;
  if (owner != nullptr) {
    kept = std::shared_ptr<const char>(owner, at);
    for (const RecordField &field : fields) {
      AddStoredColumn(field.name,
                      {field.offset, stride, field.type, bigEndian, field.shift, field.mask});
    }
    return;
  }
  // One span of bytes from the first field to the end of the last, copied
  // record by record.
  std::size_t first = stride, last = 0;
  for (const RecordField &field : fields) {
    first = std::min(first, field.offset);
    last = std::max(last, field.offset + ScalarSize(field.type));
  }
  const std::size_t width = last - first;
  auto bytes = std::make_shared<std::vector<char>>();
  ReserveLarge(*bytes, width * records);
  bytes->resize(width * records);
  char *to = bytes->data();
  at += first;
  for (std::size_t k = 0; k < records; ++k, at += stride, to += width)
    std::memcpy(to, at, width);
  kept = std::shared_ptr<const char>(bytes, bytes->data());
  for (const RecordField &field : fields) {
    AddStoredColumn(field.name,
                    {field.offset - first, width, field.type, bigEndian, field.shift, field.mask});
  }
}

PointSet FinishCloud(RawCloud cloud, const std::string &name, const std::string &format) {
  const std::size_t records = cloud.records;
  const double *x = cloud.axis(0);
  const double *y = cloud.axis(1);
  const double *z = cloud.axis(2);
  // The records to leave out are counted first: in most files there are
  // none, and the points then need no list of their origins.
  std::size_t finite = 0;
  for (std::size_t k = 0; k < records; ++k)
    finite += std::isfinite(x[k]) && std::isfinite(y[k]) && std::isfinite(z[k]) ? 1 : 0;
  if (records > 0 && finite == 0) {
    throw ReadError(name, 0,
                    name + " holds no point with finite x, y and z: all " +
                        std::to_string(records) +
                        " records are points without a return (NaN or infinite)");
  }
  if (finite > static_cast<std::size_t>(INT_MAX / 3)) {
    throw ReadError(name, 0,
                    name + " holds " + std::to_string(finite) + " points; at most " +
                        std::to_string(INT_MAX / 3) + " fit in one matrix");
  }
  std::vector<std::int64_t> origins;
  if (finite != records) {
    ReserveLarge(origins, finite);
    for (std::size_t k = 0; k < records; ++k) {
      if (std::isfinite(x[k]) && std::isfinite(y[k]) && std::isfinite(z[k]))
        origins.push_back(static_cast<std::int64_t>(k) + 1);
    }
    // Axis by axis to the front of the block: every value moves down or
    // stays, so one pass in rising order overwrites nothing still needed.
    for (std::size_t r = 0; r < 3; ++r)
      for (std::size_t k = 0; k < finite; ++k)
        cloud.xyz[r * finite + k] =
            cloud.xyz[r * records + static_cast<std::size_t>(origins[k] - 1)];
    cloud.xyz.resize(3 * finite);
    for (RawColumn &column : cloud.extras)
      if (!column.stored) Compact(column.values, origins);
  }
  PointSet set = finite == records ? PointSet(name, std::move(cloud.xyz))
                                   : PointSet(name, std::move(cloud.xyz), std::move(origins),
                                              OriginKind::kRecord);
  set.setFormat(format);
  set.setSkipped(static_cast<std::int64_t>(records) - set.count());
  if (cloud.width > 0) set.setGrid(cloud.width, cloud.height);
  for (RawColumn &column : cloud.extras) {
    if (!column.stored) {
      set.AddColumn(std::move(column.name), std::move(column.values));
      continue;
    }
    // Read from the kept bytes when asked for; the kept bytes go when the
    // last such column has been read.
    set.AddColumn(std::move(column.name), [kept = cloud.kept, field = column.field,
                                           records](const std::vector<std::int64_t> &origins) {
      std::vector<double> values;
      ReserveLarge(values, records);
      values.resize(records);
      if (records > 0) {
        ReadColumn(kept.get(), field.stride, field.offset, records, field.type, field.bigEndian,
                   values.data());
      }
      if (field.mask != 0) {
        for (double &value : values)
          value = static_cast<double>((static_cast<unsigned>(value) >> field.shift) & field.mask);
      }
      if (!origins.empty() && origins.size() != records) Compact(values, origins);
      return values;
    });
  }
  return set;
}

}  // namespace quadrel_io
