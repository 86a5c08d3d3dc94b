#include "quadrel/io/lzf.h"

#include <cstring>

namespace quadrel_io {

long long LzfDecompress(const unsigned char *input, std::size_t inputSize, unsigned char *output,
                        std::size_t outputSize) {
  std::size_t in = 0;
  std::size_t out = 0;
  while (in < inputSize) {
    const unsigned control = input[in++];
    if (control < 32) {
      // A run of control + 1 literal bytes.
      const std::size_t length = control + 1;
      if (inputSize - in < length || outputSize - out < length) return -1;
      std::memcpy(output + out, input + in, length);
      in += length;
      out += length;
      continue;
    }
    // A back reference: length in the top three bits (7 means a further
    // length byte follows), distance in the low five bits and the next byte.
    std::size_t length = control >> 5;
    if (length == 7) {
      if (in >= inputSize) return -1;
      length += input[in++];
    }
    length += 2;
    if (in >= inputSize) return -1;
    const std::size_t distance = ((static_cast<std::size_t>(control & 31) << 8) | input[in++]) + 1;
    if (distance > out || outputSize - out < length) return -1;
    // A source that overlaps the bytes being written repeats its first
    // `distance` bytes, so it is copied byte by byte.
    const unsigned char *from = output + out - distance;
    if (distance >= length) {
      std::memcpy(output + out, from, length);
    } else {
      for (std::size_t k = 0; k < length; ++k)
        output[out + k] = from[k];
    }
    out += length;
  }
  return static_cast<long long>(out);
}

}  // namespace quadrel_io
