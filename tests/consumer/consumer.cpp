// Uses the installed library through its umbrella header.
#include <cstdio>

#include <quadrel/quadrel.h>

int main() {
  const double values[] = {1, 2, 3, 4};
  CMatrix a(values, 2, 2);
  CMatrix b(a);
  b(1, 1) = 5;
  const bool ok = a(1, 1) == 4 && b(1, 1) == 5 && b.GetLength() == 2;
  std::printf("%s\n", ok ? "consumer ok" : "consumer wrong");
  return ok ? 0 : 1;
}
