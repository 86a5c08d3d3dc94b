#include "quadrel/io/shown_bytes.h"

namespace quadrel_io {

std::string ShownBytes(std::string_view bytes, std::size_t limit) {
  const bool cut = bytes.size() > limit;
  if (cut) bytes = bytes.substr(0, limit - 3);
  std::string shown;
  shown.reserve(bytes.size() + 3);
  for (const char c : bytes) {
    const auto byte = static_cast<unsigned char>(c);
    if (byte == '\\') {
      shown += "\\\\";
    } else if (byte >= 0x20 && byte < 0x7f) {
      shown += c;
    } else {
      static const char kHex[] = "0123456789abcdef";
      shown += "\\x";
      shown += kHex[byte >> 4];
      shown += kHex[byte & 15];
    }
  }
  if (cut) shown += "...";
  return shown;
}

}  // namespace quadrel_io
