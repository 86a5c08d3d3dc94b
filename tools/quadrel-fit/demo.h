// The demo: every fit on the built-in samples, with one table of the fitted
// parameters against the true ones.
#ifndef QUADREL_FIT_DEMO_H
#define QUADREL_FIT_DEMO_H

#include <ostream>
#include <string>

namespace quadrel_fit {

struct DemoOptions {
  double noise = 0.001;  // standard deviation added to every number
  unsigned seed = 1;
  bool json = false;
  std::string saveDirectory;  // when set, the samples are also written there
};

// Fits every sample and writes the table (or its JSON form) to out.
void RunDemo(const DemoOptions &options, std::ostream &out);

}  // namespace quadrel_fit

#endif  // QUADREL_FIT_DEMO_H
