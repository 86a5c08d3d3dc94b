// The quicksort behind CMatrix::Sort: an in-place sort of a key array that
// mirrors every exchange in a companion array of the same element width.
//
// The engine works on raw bytes, like qsort: arrays are given by their first
// byte, elements by their width. It never allocates and never recurses; pending
// ranges wait on an explicit stack of 30 entries. It is not stable: the order of
// equal keys is the one that its fixed steps give, and callers rely on it.
#ifndef QUADREL_MATRIX_SORT_ENGINE_H
#define QUADREL_MATRIX_SORT_ENGINE_H

#include <cstddef>

// Three-way comparison of two elements: negative, zero or positive.
using SortCompare = int (*)(const void *a, const void *b);

// Sorts count elements of width bytes at keys ascending under compare, and
// applies each exchange to the elements of companion at the same positions.
// Ranges of up to 8 elements go to ShortSortWithIndex; longer ones are split
// around their middle element. Nothing happens for count below 2 or width 0.
void SortWithIndex(void *keys, void *companion, std::size_t count, std::size_t width,
                   SortCompare compare);

// Selection sort of the inclusive range keysLow .. keysHigh from the top: the
// first of the largest elements goes to the end, the range shrinks by one, and
// so on. companionLow .. companionHigh undergoes the same exchanges.
void ShortSortWithIndex(char *keysLow, char *keysHigh, char *companionLow, char *companionHigh,
                        std::size_t width, SortCompare compare);

// Exchanges the width bytes at a and b; nothing happens when a and b are one
// address.
void SwapItems(char *a, char *b, std::size_t width);

// Compares the doubles at a and b exactly: -1 if a's is less, 1 if greater, 0 if
// equal (0.0 equals -0.0). NaN, which no number orders, is put after every
// number and equal to another NaN, so that a column with NaN keys sorts its
// numbers ascending and gathers the NaN keys at its end.
int CompareDouble(const void *a, const void *b);

#endif  // QUADREL_MATRIX_SORT_ENGINE_H
