// Clamping of a double into a closed range, for the angle of two vectors.
#ifndef QUADREL_GEOMETRY_CLAMP_H
#define QUADREL_GEOMETRY_CLAMP_H

// low if value is below low or is not a number; else high if value is above
// high; else value itself. low must not exceed high.
double Clamp(const double &value, const double &low, const double &high);

#endif  // QUADREL_GEOMETRY_CLAMP_H
