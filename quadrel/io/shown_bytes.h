// Bytes of a file as a message may show them.
#ifndef QUADREL_IO_SHOWN_BYTES_H
#define QUADREL_IO_SHOWN_BYTES_H

#include <cstddef>
#include <string>
#include <string_view>

namespace quadrel_io {

// The bytes as printable ASCII: every byte outside ' '..'~' becomes "\xNN",
// and a backslash "\\". Longer input is cut to its first limit - 3 bytes and
// "..." follows, so a message never carries a whole binary block.
std::string ShownBytes(std::string_view bytes, std::size_t limit = 40);

}  // namespace quadrel_io

#endif  // QUADREL_IO_SHOWN_BYTES_H
