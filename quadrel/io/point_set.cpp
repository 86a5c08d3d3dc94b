#include "quadrel/io/point_set.h"

#include <utility>

namespace quadrel_io {

PointSet::PointSet(std::string name, std::vector<double> x, std::vector<double> y,
                   std::vector<double> z, std::vector<std::int64_t> origins, OriginKind originKind)
    : name_(std::move(name)), origins_(std::move(origins)), originKind_(originKind) {
  values_.reserve(x.size() * 3);
  values_.insert(values_.end(), x.begin(), x.end());
  values_.insert(values_.end(), y.begin(), y.end());
  values_.insert(values_.end(), z.begin(), z.end());
}

PointSet::PointSet(std::string name, std::vector<double> xyz, std::vector<std::int64_t> origins,
                   OriginKind originKind)
    : name_(std::move(name)),
      values_(std::move(xyz)),
      origins_(std::move(origins)),
      originKind_(originKind) {}

bool PointSet::AddColumn(std::string name, std::vector<double> values) {
  if (values.size() != origins_.size() || FindColumn(name) != nullptr) return false;
  columns_.push_back({std::move(name), std::move(values)});
  return true;
}

const ExtraColumn *PointSet::FindColumn(std::string_view name) const {
  for (const ExtraColumn &column : columns_) {
    if (column.name == name) return &column;
  }
  return nullptr;
}

}  // namespace quadrel_io
