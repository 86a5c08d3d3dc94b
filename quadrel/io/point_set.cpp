#include "quadrel/io/point_set.h"

#include <utility>

#include "quadrel/io/large_buffer.h"

namespace quadrel_io {

PointSet::PointSet(std::string name, std::vector<double> x, std::vector<double> y,
                   std::vector<double> z, std::vector<std::int64_t> origins, OriginKind originKind)
    : name_(std::move(name)),
      count_(origins.size()),
      origins_(std::move(origins)),
      originKind_(originKind) {
  ReserveLarge(values_, x.size() * 3);
  values_.insert(values_.end(), x.begin(), x.end());
  values_.insert(values_.end(), y.begin(), y.end());
  values_.insert(values_.end(), z.begin(), z.end());
}

PointSet::PointSet(std::string name, std::vector<double> xyz, std::vector<std::int64_t> origins,
                   OriginKind originKind)
    : name_(std::move(name)),
      values_(std::move(xyz)),
      count_(origins.size()),
      origins_(std::move(origins)),
      originKind_(originKind) {}

PointSet::PointSet(std::string name, std::vector<double> xyz)
    : name_(std::move(name)),
      values_(std::move(xyz)),
      count_(values_.size() / 3),
      inTurn_(true),
      originKind_(OriginKind::kRecord) {}

PointSet PointSet::Select(const std::vector<std::int64_t> &numbers, std::string name) const {
  const std::size_t m = numbers.size();
  std::vector<double> xyz(3 * m);
  std::vector<std::int64_t> origins(m);
  for (std::size_t a = 0; a < m; ++a) {
    const int k = static_cast<int>(numbers[a]);
    for (int r = 0; r < 3; ++r)
      xyz[static_cast<std::size_t>(r) * m + a] = at(r, k);
    origins[a] = originOf(k);
  }
  return PointSet(std::move(name), std::move(xyz), std::move(origins), originKind_);
}

const std::vector<std::int64_t> &PointSet::origins() const {
  if (inTurn_) {
    const std::lock_guard<std::mutex> hold(columnLock_.mutex);
    if (origins_.size() != count_) {
      ReserveLarge(origins_, count_);
      for (std::size_t k = 0; k < count_; ++k)
        origins_.push_back(static_cast<std::int64_t>(k) + 1);
    }
  }
  return origins_;
}

bool PointSet::AddColumn(std::string name, std::vector<double> values) {
  if (values.size() != count_ || ColumnIndex(name) < columns_.size()) return false;
  columns_.push_back({std::move(name), std::move(values)});
  makers_.emplace_back();
  return true;
}

bool PointSet::AddColumn(std::string name, ColumnMaker make) {
  if (!make || ColumnIndex(name) < columns_.size()) return false;
  columns_.push_back({std::move(name), {}});
  makers_.push_back(std::move(make));
  return true;
}

std::size_t PointSet::ColumnIndex(std::string_view name) const {
  std::size_t c = 0;
  while (c < columns_.size() && columns_[c].name != name)
    ++c;
  return c;
}

void PointSet::MakeColumn(std::size_t c) const {
  if (!makers_[c]) return;
  columns_[c].values = makers_[c](inTurn_ ? std::vector<std::int64_t>() : origins_);
  makers_[c] = nullptr;
}

const ExtraColumn *PointSet::FindColumn(std::string_view name) const {
  const std::size_t c = ColumnIndex(name);
  if (c == columns_.size()) return nullptr;
  const std::lock_guard<std::mutex> hold(columnLock_.mutex);
  MakeColumn(c);
  return &columns_[c];
}

const std::vector<ExtraColumn> &PointSet::columns() const {
  const std::lock_guard<std::mutex> hold(columnLock_.mutex);
  for (std::size_t c = 0; c < columns_.size(); ++c)
    MakeColumn(c);
  return columns_;
}

}  // namespace quadrel_io
