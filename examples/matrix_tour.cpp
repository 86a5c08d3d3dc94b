// A first look at CMatrix: build matrices, compute with them, print them.
#include <iostream>

#include <quadrel/quadrel.h>

int main() {
  const double values[] = {1, 2, 3, 4, 5, 6};
  CMatrix a(values, 2, 3);
  std::cout << "a has " << a.GetRows() << " rows and " << a.GetCols() << " columns\n";
  std::cout << "a(1, 2) = " << a(1, 2) << "\n";
  return 0;
}
