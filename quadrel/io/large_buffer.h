// Room for the large buffers of a reader: the file's bytes, the coordinates
// and columns of millions of points. On a system whose memory is handed out
// in small pages on first touch, such buffers cost far more in page faults
// than in the writing itself; they are backed by huge pages where the system
// offers them on request.
#ifndef QUADREL_IO_LARGE_BUFFER_H
#define QUADREL_IO_LARGE_BUFFER_H

#include <cstddef>

namespace quadrel_io {

// Asks that the whole huge pages within [data, data + bytes) be backed by
// huge pages when first touched. Only a hint: it does nothing for small
// ranges or where the system has no such request, and never fails.
void AdviseHugePages(void *data, std::size_t bytes);

// Reserves room for count elements in a vector or string that holds none
// yet, before it is written, and advises huge pages for that room. The
// contents are unchanged; the caller then resizes or appends as usual.
template <typename Buffer>
void ReserveLarge(Buffer &buffer, std::size_t count) {
  if (buffer.capacity() >= count) return;
  buffer.reserve(count);
  AdviseHugePages(buffer.data(), buffer.capacity() * sizeof(*buffer.data()));
}

}  // namespace quadrel_io

#endif  // QUADREL_IO_LARGE_BUFFER_H
