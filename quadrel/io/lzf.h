// LZF, the compression of binary_compressed PCD files.
#ifndef QUADREL_IO_LZF_H
#define QUADREL_IO_LZF_H

#include <cstddef>

namespace quadrel_io {

// Decompresses input[0..inputSize) into output[0..outputSize). Returns the
// number of bytes written, or a negative number when the input is not valid
// LZF: a back reference before the start of the output, a literal run or a
// reference cut off by the end of the input, or more output than outputSize.
// Never reads or writes outside the two ranges.
long long LzfDecompress(const unsigned char *input, std::size_t inputSize, unsigned char *output,
                        std::size_t outputSize);

}  // namespace quadrel_io

#endif  // QUADREL_IO_LZF_H
