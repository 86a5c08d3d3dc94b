// The metrology fits in the front ends: the criterion a shape fit follows, the
// Gaussian and minimum-zone variants of line, plane, circle and sphere, and
// the cylinder and cone entries of the table of shapes.
#ifndef QUADREL_FRONTEND_METROLOGY_SHAPES_H
#define QUADREL_FRONTEND_METROLOGY_SHAPES_H

#include <string>
#include <string_view>

#include "quadrel/frontend/shape_fit.h"

namespace quadrel_frontend {

// algebraic: the library's own fits (the default); gaussian: least-squares
// orthogonal distances, with uncertainties; minimum-zone: the narrowest zone
// that holds every point (straightness, flatness, roundness, sphericity).
enum class Criterion { kAlgebraic, kGaussian, kMinimumZone };

// Reads "algebraic", "gaussian" or "minimum-zone"; false for anything else.
bool ParseCriterion(std::string_view text, Criterion &criterion);

// The entry that fits shape by the criterion: shape itself for the algebraic
// criterion (and for cylinder and cone, which are Gaussian anyway), a variant
// entry of the same name otherwise, or nullptr when the shape has no such
// variant.
const ShapeEntry *WithCriterion(const ShapeEntry &shape, Criterion criterion);

// The calls of the cylinder and cone entries of the table of shapes.
void CylinderCall(const quadrel_io::PointSet &points, ShapeFit &fit);
void ConeCall(const quadrel_io::PointSet &points, ShapeFit &fit);

}  // namespace quadrel_frontend

#endif  // QUADREL_FRONTEND_METROLOGY_SHAPES_H
