#include "quadrel/metrology/circumscribed_inscribed.h"

#include "quadrel/metrology/internal/zone_search.h"

MetrologyStatus MinimumCircumscribedCircle(const CMatrix &points, CMatrix &centre, CMatrix &normal,
                                           double &radius, ZoneInfo &info) {
  return CentreZone(points, true, ZoneKind::kCircumscribed, centre, &normal, radius, info);
}

MetrologyStatus MaximumInscribedCircle(const CMatrix &points, CMatrix &centre, CMatrix &normal,
                                       double &radius, ZoneInfo &info) {
  return CentreZone(points, true, ZoneKind::kInscribed, centre, &normal, radius, info);
}

MetrologyStatus MinimumCircumscribedSphere(const CMatrix &points, CMatrix &centre, double &radius,
                                           ZoneInfo &info) {
  return CentreZone(points, false, ZoneKind::kCircumscribed, centre, nullptr, radius, info);
}

MetrologyStatus MaximumInscribedSphere(const CMatrix &points, CMatrix &centre, double &radius,
                                       ZoneInfo &info) {
  return CentreZone(points, false, ZoneKind::kInscribed, centre, nullptr, radius, info);
}
