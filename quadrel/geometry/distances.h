// Distances and intersections of points, lines and planes in space.
//
// A point is a 3 x 1 column. A line is a point on it and a direction of any
// non-zero length and either sign; a plane is a point on it and a normal of any
// non-zero length, whose sign sets the sign of distances: points on the side it
// points to are at a positive distance. Each ...Int function returns the same
// double as its ...Dist twin and adds the meeting point in its outputs.
//
// There are no tolerances. Parallelism is the exact equality of an Angle with a
// constant, so directions that differ in the last bit, or rounding inside Angle
// alone, make lines and planes count as not parallel: the normals (1, 1, 0) and
// (1, 1, 0) are about 2.1e-8 apart. Degenerate input (zero directions or
// normals, lines lying in a plane, coincident planes) is legal and yields what
// IEEE arithmetic gives, NaN included; nothing reports it.
//
// NaN and infinite elements follow the same arithmetic. A NaN point gives a NaN
// distance, an infinite one NaN or an infinity (0 * inf is NaN). A NaN
// direction or normal makes Angle pi, as a zero one does: LinePointDist gives
// 0.0, PlanePointDist NaN, the parallel tests fail and the ...Int functions then
// write NaN into their outputs, always 3 x 1.
#ifndef QUADREL_GEOMETRY_DISTANCES_H
#define QUADREL_GEOMETRY_DISTANCES_H

#include "quadrel/export.h"
#include "quadrel/matrix/matrix.h"

// Distance of point from the line, never negative, as sin(angle) * |point -
// linePoint|. Through the angle, a point within about 1e-8 rad of the line is at
// exactly 0, and a point on it can come out about 2e-8 of its distance off. A
// point at linePoint, or a zero direction, gives 0.0. point and linePoint are
// 3 x 1 columns or 1 x 3 rows of one shape; direction is either of the two.
QUADREL_API double LinePointDist(const CMatrix &linePoint, const CMatrix &direction,
                                 const CMatrix &point);

// Signed distance of point from the plane. All arguments are 3 x 1 columns. A
// zero normal gives NaN.
QUADREL_API double PlanePointDist(const CMatrix &planePoint, const CMatrix &normal,
                                  const CMatrix &point);

// If the line is parallel to the plane (their Angle is exactly the double
// nearest pi/2), the signed distance of linePoint from the plane; else 0.0.
// All arguments are 3 x 1 columns.
QUADREL_API double PlaneLineDist(const CMatrix &planePoint, const CMatrix &normal,
                                 const CMatrix &linePoint, const CMatrix &direction);

// If the normals have an Angle of exactly 0.0, the signed distance of point2
// from plane 1; else 0.0. Opposite normals count as not parallel and give 0.0.
// All arguments are 3 x 1 columns.
QUADREL_API double PlanePlaneDist(const CMatrix &point1, const CMatrix &normal1,
                                  const CMatrix &point2, const CMatrix &normal2);

// LinePointDist, and in foot the foot of the perpendicular from point to the
// line, in the shape of the arguments. All three arguments have one shape,
// 3 x 1 or 1 x 3. A zero direction gives a foot of NaN.
QUADREL_API double LinePointInt(const CMatrix &linePoint, const CMatrix &direction,
                                const CMatrix &point, CMatrix &foot);

// PlanePointDist, and in foot (3 x 1) the foot of the perpendicular from point
// to the plane. All arguments are 3 x 1 columns.
QUADREL_API double PlanePointInt(const CMatrix &planePoint, const CMatrix &normal,
                                 const CMatrix &point, CMatrix &foot);

// PlaneLineDist. When that is exactly 0, crossing (3 x 1) becomes the point
// where the line crosses the plane; otherwise (a parallel line off the plane)
// crossing is left untouched. A line lying in the plane gives a crossing of NaN.
// All arguments are 3 x 1 columns.
QUADREL_API double PlaneLineInt(const CMatrix &planePoint, const CMatrix &normal,
                                const CMatrix &linePoint, const CMatrix &direction,
                                CMatrix &crossing);

// PlanePlaneDist. When that is exactly 0, lineDirection (3 x 1) becomes the
// unit vector along Cross(normal1, normal2) and linePoint (3 x 1) the point of
// the meeting line in the coordinate plane through the origin where the
// direction's largest component is 0 (on a tie, the lower axis). Otherwise both
// outputs are left untouched. Parallel normals can still give 0.0 (coincident
// planes, opposite normals, equal normals whose Angle rounds above 0); their
// cross product is zero, lineDirection becomes NaN, and since no axis can be
// chosen linePoint becomes NaN as well. All arguments are 3 x 1 columns.
QUADREL_API double PlanePlaneInt(const CMatrix &point1, const CMatrix &normal1,
                                 const CMatrix &point2, const CMatrix &normal2, CMatrix &linePoint,
                                 CMatrix &lineDirection);

#endif  // QUADREL_GEOMETRY_DISTANCES_H
