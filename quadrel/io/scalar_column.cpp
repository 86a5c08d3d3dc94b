#include "quadrel/io/scalar_column.h"

#include <cstdint>
#include <cstring>

namespace quadrel_io {

std::size_t ScalarSize(ScalarType type) {
  switch (type) {
    case ScalarType::kInt8:
    case ScalarType::kUint8:
      return 1;
    case ScalarType::kInt16:
    case ScalarType::kUint16:
      return 2;
    case ScalarType::kInt32:
    case ScalarType::kUint32:
    case ScalarType::kFloat32:
      return 4;
    case ScalarType::kInt64:
    case ScalarType::kUint64:
    case ScalarType::kFloat64:
      return 8;
  }
  return 1;
}

namespace {

template <typename Bits>
Bits Swapped(Bits bits) {
  if constexpr (sizeof(Bits) == 2) return static_cast<Bits>(__builtin_bswap16(bits));
  if constexpr (sizeof(Bits) == 4) return __builtin_bswap32(bits);
  if constexpr (sizeof(Bits) == 8) return __builtin_bswap64(bits);
  return bits;
}

// The loop itself, one instance per type and byte order, so that the body is
// a load, perhaps a byte swap, and a conversion. Values go through an
// unsigned integer of their size, which makes the loads legal at any
// alignment.
template <typename T, typename Bits, bool kSwap>
void Widen(const char *at, std::size_t stride, std::size_t count, double *out) {
  for (std::size_t k = 0; k < count; ++k, at += stride) {
    Bits bits;
    std::memcpy(&bits, at, sizeof bits);
    if constexpr (kSwap) bits = Swapped(bits);
    T value;
    std::memcpy(&value, &bits, sizeof value);
    out[k] = static_cast<double>(value);
  }
}

template <typename T, typename Bits>
void WidenInOrder(const char *at, std::size_t stride, std::size_t count, bool swap, double *out) {
  if (swap) {
    Widen<T, Bits, true>(at, stride, count, out);
  } else {
    Widen<T, Bits, false>(at, stride, count, out);
  }
}

}  // namespace

void ReadColumn(const char *records, std::size_t stride, std::size_t offset, std::size_t count,
                ScalarType type, bool bigEndian, double *out) {
  constexpr bool kHostBig = __BYTE_ORDER__ == __ORDER_BIG_ENDIAN__;
  const bool swap = bigEndian != kHostBig;
  const char *at = records + offset;
  switch (type) {
    case ScalarType::kInt8:
      return WidenInOrder<std::int8_t, std::uint8_t>(at, stride, count, false, out);
    case ScalarType::kUint8:
      return WidenInOrder<std::uint8_t, std::uint8_t>(at, stride, count, false, out);
    case ScalarType::kInt16:
      return WidenInOrder<std::int16_t, std::uint16_t>(at, stride, count, swap, out);
    case ScalarType::kUint16:
      return WidenInOrder<std::uint16_t, std::uint16_t>(at, stride, count, swap, out);
    case ScalarType::kInt32:
      return WidenInOrder<std::int32_t, std::uint32_t>(at, stride, count, swap, out);
    case ScalarType::kUint32:
      return WidenInOrder<std::uint32_t, std::uint32_t>(at, stride, count, swap, out);
    case ScalarType::kInt64:
      return WidenInOrder<std::int64_t, std::uint64_t>(at, stride, count, swap, out);
    case ScalarType::kUint64:
      return WidenInOrder<std::uint64_t, std::uint64_t>(at, stride, count, swap, out);
    case ScalarType::kFloat32:
      return WidenInOrder<float, std::uint32_t>(at, stride, count, swap, out);
    case ScalarType::kFloat64:
      return WidenInOrder<double, std::uint64_t>(at, stride, count, swap, out);
  }
}

}  // namespace quadrel_io
