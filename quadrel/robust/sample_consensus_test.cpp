// Sample consensus on generated clouds: every shape found among outliers, as
// accurate as a least-squares fit of the true inliers, the same bits for any
// number of threads, and a status for every kind of bad input.
#include "quadrel/robust/sample_consensus.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "quadrel/robust/internal/consensus_models.h"
#include "quadrel/robust/internal/consensus_search.h"
#include "quadrel/robust/internal/counter_random.h"
#include "quadrel/testing/bit_hash.h"

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr double kNoise = 0.01;
constexpr double kThreshold = 0.03;

const ConsensusShape kShapes[] = {ConsensusShape::kLine, ConsensusShape::kPlane,
                                  ConsensusShape::kCircle, ConsensusShape::kSphere,
                                  ConsensusShape::kCylinder};

const char *Name(ConsensusShape shape) {
  static const char *const names[] = {"line", "plane", "circle", "sphere", "cylinder"};
  return names[static_cast<int>(shape)];
}

// A cloud with a known model: inliers on the shape with Gaussian noise in every
// coordinate, then outliers uniform in the cube [-1.5, 1.5]^3 around it.
struct Cloud {
  std::vector<double> x, y, z;
  std::vector<bool> inlier;
  Hypothesis truth;
  double e1[3] = {}, e2[3] = {};  // across the direction of the truth
  void Add(double px, double py, double pz, bool in) {
    x.push_back(px);
    y.push_back(py);
    z.push_back(pz);
    inlier.push_back(in);
  }
  CMatrix Points() const {
    const int n = static_cast<int>(x.size());
    const double *rows[3] = {x.data(), y.data(), z.data()};
    return CMatrix(rows, 3, n);
  }
  PointColumns Columns() const {
    return {x.data(), y.data(), z.data(), static_cast<std::int64_t>(x.size())};
  }
};

// Random unit vector u and two unit vectors e1, e2 across it.
void Frame(std::mt19937_64 &rng, double *u, double *e1, double *e2) {
  const auto unit = [](double *v) {
    const double l = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
    for (int k = 0; k < 3; ++k)
      v[k] /= l;
  };
  const auto across = [u](const double *a, double *out) {  // u x a
    for (int k = 0; k < 3; ++k)
      out[k] = u[(k + 1) % 3] * a[(k + 2) % 3] - u[(k + 2) % 3] * a[(k + 1) % 3];
  };
  std::normal_distribution<double> g;
  for (int k = 0; k < 3; ++k)
    u[k] = g(rng);
  unit(u);
  const double a[3] = {std::fabs(u[0]) < 0.9 ? 1.0 : 0.0, std::fabs(u[0]) < 0.9 ? 0.0 : 1.0, 0.0};
  across(a, e1);
  unit(e1);
  across(e1, e2);
}

// A point of the true shape for parameters a, b in [-1, 1] (noise-free).
void OnShape(ConsensusShape shape, const Cloud &c, double a, double b, double *out) {
  const Hypothesis &h = c.truth;
  const double t = 3.141592653589793 * a, ca = std::cos(t), sa = std::sin(t);
  const double s = std::sqrt(1.0 - b * b);
  for (int k = 0; k < 3; ++k) {
    const double around = ca * c.e1[k] + sa * c.e2[k];
    const double at[] = {h.p[k] + a * h.u[k], h.p[k] + a * c.e1[k] + b * c.e2[k],
                         h.p[k] + h.r * around,
                         h.p[k] + h.r * (s * ca * c.e1[k] + s * sa * c.e2[k] + b * h.u[k]),
                         h.p[k] + b * h.u[k] + h.r * around};
    out[k] = at[static_cast<int>(shape)];
  }
}

Cloud MakeCloud(ConsensusShape shape, int n, double outlierFraction, std::uint64_t seed) {
  std::mt19937_64 rng(seed * 7919 + static_cast<std::uint64_t>(shape));
  std::uniform_real_distribution<double> unit(-1.0, 1.0);
  std::normal_distribution<double> noise(0.0, kNoise);
  Cloud c;
  Frame(rng, c.truth.u, c.e1, c.e2);
  for (int k = 0; k < 3; ++k)
    c.truth.p[k] = 0.2 * unit(rng);
  c.truth.r = 0.5 + 0.3 * (unit(rng) + 1.0);
  const int outliers = static_cast<int>(outlierFraction * n);
  for (int i = 0; i < n - outliers; ++i) {
    double q[3] = {0.0, 0.0, 0.0};
    OnShape(shape, c, unit(rng), unit(rng), q);
    c.Add(q[0] + noise(rng), q[1] + noise(rng), q[2] + noise(rng), true);
  }
  for (int i = 0; i < outliers; ++i)
    c.Add(1.5 * unit(rng), 1.5 * unit(rng), 1.5 * unit(rng), false);
  return c;
}

Hypothesis FromModel(const ConsensusModel &m) {
  Hypothesis h;
  for (int k = 0; k < 3; ++k) {
    h.p[k] = m.point(k, 0);
    if (m.direction.GetRows() == 3) h.u[k] = m.direction(k, 0);
  }
  h.r = m.radius;
  return h;
}

// The error of a model: the rms distance from it of noise-free points spread
// over the true shape. It measures position, orientation and radius at once.
double ModelError(ConsensusShape shape, const Cloud &c, const Hypothesis &model) {
  double sum = 0.0;
  int count = 0;
  for (double a = -0.9; a < 1.0; a += 0.2) {
    for (double b = -0.9; b < 1.0; b += 0.2) {
      double q[3] = {0.0, 0.0, 0.0};
      OnShape(shape, c, a, b, q);
      sum += SquaredDistance(shape, model, q[0], q[1], q[2]);
      ++count;
    }
  }
  return std::sqrt(sum / count);
}

// FNV-1a over the bits of a result: status, iterations, inliers, model, rms;
// each integer goes in as eight bytes.
std::uint64_t ResultHash(const ConsensusResult &r) {
  BitHash h;
  const auto word = [&h](std::int64_t value) {
    double bits;
    std::memcpy(&bits, &value, sizeof bits);
    h.Add(bits);
  };
  word(static_cast<std::int64_t>(r.status));
  word(r.iterations);
  for (std::int64_t i : r.inliers)
    word(i);
  for (int k = 0; k < 3; ++k) {
    h.Add(r.model.point(k, 0));
    if (r.model.direction.GetRows() == 3) h.Add(r.model.direction(k, 0));
  }
  h.Add(r.model.radius);
  h.Add(r.rms);
  return h.Value();
}

TEST(SampleConsensus, FindsEveryShapeAmongOutliersAsWellAsLeastSquaresOfTheTrueInliers) {
  for (ConsensusShape shape : kShapes) {
    for (double outliers : {0.1, 0.4, 0.7}) {
      // Each cylinder hypothesis is an iterative fit: fewer seeds where it
      // takes thousands of them.
      const int seeds = shape == ConsensusShape::kCylinder && outliers > 0.5 ? 20 : 100;
      double ours = 0.0, reference = 0.0;
      for (int seed = 0; seed < seeds; ++seed) {
        const Cloud c = MakeCloud(shape, 500, outliers, static_cast<std::uint64_t>(seed));
        ConsensusOptions o;
        o.inlierThreshold = kThreshold;
        o.seed = static_cast<std::uint64_t>(seed);
        const ConsensusResult r = FindConsensus(shape, c.Points(), o);
        ASSERT_EQ(r.status, ConsensusStatus::kFound)
            << Name(shape) << " " << outliers << " " << seed;
        std::vector<std::int64_t> trueInliers;
        for (std::size_t i = 0; i < c.inlier.size(); ++i)
          if (c.inlier[i]) trueInliers.push_back(static_cast<std::int64_t>(i));
        Hypothesis fit = c.truth;
        ASSERT_TRUE(RefitInliers(shape, c.Columns(), trueInliers, fit));
        const double error = ModelError(shape, c, FromModel(r.model));
        const double best = ModelError(shape, c, fit);
        // Found: the model lies within the noise of the truth, and holds most
        // of the true inliers.
        ASSERT_LT(error, kNoise) << Name(shape) << " " << outliers << " " << seed;
        ASSERT_GT(r.inlierCount, 0.9 * static_cast<double>(trueInliers.size()));
        EXPECT_LE(r.rms, kThreshold);
        ours += error * error;
        reference += best * best;
      }
      EXPECT_LE(std::sqrt(ours / seeds), 1.5 * std::sqrt(reference / seeds))
          << Name(shape) << " with " << outliers << " outliers";
    }
  }
}

TEST(SampleConsensus, DrawsAndIterationCountsAreFixedNumbers) {
  // SplitMix64's first output for seed 0, whatever the platform.
  EXPECT_EQ(MixBits(0), 0xe220a8397b1dcdafULL);
  CounterRandom draw(7, 0);
  for (int round = 0; round < 100; ++round) {
    std::int64_t sample[5];
    draw.Distinct(6, 5, sample);
    for (int a = 0; a < 5; ++a) {
      EXPECT_TRUE(sample[a] >= 0 && sample[a] < 6);
      for (int b = 0; b < a; ++b)
        EXPECT_NE(sample[a], sample[b]);
    }
  }
  // log(0.001) / log(1 - 0.5^3) = 51.7.
  EXPECT_EQ(IterationsNeeded(0.5, 3, 0.999, 100000), 52);
  EXPECT_EQ(IterationsNeeded(1.0, 4, 0.999, 100), 1);
  EXPECT_EQ(IterationsNeeded(1e-9, 4, 0.999, 100), 100);
}

TEST(SampleConsensus, RefusesBadInputAndDegenerateCloudsWithAStatus) {
  const Cloud c = MakeCloud(ConsensusShape::kPlane, 50, 0.1, 1);
  const CMatrix points = c.Points();
  const ConsensusStatus bad = ConsensusStatus::kBadArgument;
  ConsensusOptions good;
  good.inlierThreshold = kThreshold;
  // Threshold, confidence, iterations and threads, one of them out of range.
  const struct {
    double threshold, confidence;
    std::int64_t iterations;
    int threads;
  } spoilt[] = {{0.0, 0.5, 9, 0},  {-1.0, 0.5, 9, 0}, {kNaN, 0.5, 9, 0},
                {kInf, 0.5, 9, 0}, {0.1, 0.0, 9, 0},  {0.1, 1.0, 9, 0},
                {0.1, kNaN, 9, 0}, {0.1, 0.5, 0, 0},  {0.1, 0.5, 9, -1}};
  ConsensusOptions o = good;
  for (const auto &s : spoilt) {
    o.inlierThreshold = s.threshold;
    o.confidence = s.confidence;
    o.maxIterations = s.iterations;
    o.threads = s.threads;
    const ConsensusResult r = FindConsensus(ConsensusShape::kPlane, points, o);
    EXPECT_EQ(r.status, bad) << s.threshold << " " << s.confidence << " " << s.iterations;
    EXPECT_TRUE(std::isnan(r.model.point(0, 0)) && r.inliers.empty());
  }
  for (const auto &[least, most] :
       {std::pair{-1.0, 1.0}, {kInf, kInf}, {kNaN, 1.0}, {2.0, 1.0}, {0.0, kNaN}}) {
    o = good;
    o.minRadius = least;
    o.maxRadius = most;
    EXPECT_EQ(FindConsensus(ConsensusShape::kSphere, points, o).status, bad) << least << most;
  }
  EXPECT_EQ(FindConsensus(ConsensusShape::kPlane, CMatrix(0.0, 2, 10), good).status, bad);
  EXPECT_EQ(FindConsensus(static_cast<ConsensusShape>(9), points, good).status, bad);
  CMatrix holed = points;
  holed(1, 7) = kNaN;
  EXPECT_EQ(FindConsensus(ConsensusShape::kPlane, holed, good).status, bad);
  EXPECT_EQ(ExtractConsensus(ConsensusShape::kPlane, holed, good, 2).status, bad);
  EXPECT_EQ(ExtractConsensus(ConsensusShape::kPlane, points, good, 0).status, bad);
  EXPECT_EQ(FindConsensus(ConsensusShape::kSphere, CMatrix(0.0, 3, 3), good).status,
            ConsensusStatus::kTooFewPoints);
  const ConsensusExtraction few =
      ExtractConsensus(ConsensusShape::kLine, CMatrix(0.0, 3, 1), good, 3);
  EXPECT_EQ(few.status, ConsensusStatus::kTooFewPoints);
  EXPECT_EQ(few.labels, std::vector<std::int64_t>{-1});
  // A model is found but holds fewer inliers than asked for.
  o = good;
  o.minInliers = 1000;
  const ConsensusResult thin = FindConsensus(ConsensusShape::kPlane, points, o);
  EXPECT_EQ(thin.status, ConsensusStatus::kTooFewInliers);
  EXPECT_GE(thin.inlierCount, 40);
  EXPECT_FALSE(std::isnan(thin.model.point(0, 0)));
  // Clouds whose every sample is degenerate stop the search.
  o = good;
  const CMatrix same(0.25, 3, 200);
  for (ConsensusShape shape : kShapes) {
    const ConsensusResult r = FindConsensus(shape, same, o);
    EXPECT_EQ(r.status, ConsensusStatus::kDegenerateSamples) << Name(shape);
    EXPECT_GE(r.iterations, 1);
    EXPECT_LE(r.iterations, 1000) << Name(shape);
  }
  // Collinear points for a plane and a circle, coplanar ones for a sphere;
  // the cap on iterations holds as well.
  Cloud line, flat;
  for (int i = 0; i < 300; ++i) {
    const double t = 0.01 * i - 1.0, s = std::sin(0.37 * i);
    line.Add(1.0 + 0.3 * t, -2.0 + 0.7 * t, 0.5 - 0.2 * t, true);
    flat.Add(t + 0.5 * s, s, 0.3 * t - 0.2 * s, true);
  }
  for (ConsensusShape shape : {ConsensusShape::kPlane, ConsensusShape::kCircle})
    EXPECT_EQ(FindConsensus(shape, line.Points(), o).status, ConsensusStatus::kDegenerateSamples);
  o.maxIterations = 17;
  const ConsensusResult r = FindConsensus(ConsensusShape::kSphere, flat.Points(), o);
  EXPECT_EQ(r.status, ConsensusStatus::kDegenerateSamples);
  EXPECT_EQ(r.iterations, 17);
}

// A floor of 2,000 points (z = 0 on [-1, 1]^2) and a ball of radius 0.25 with
// 800 points resting on it: with more floor than ball within the threshold, a
// sphere search takes a huge sphere along the floor unless its radius is
// bounded.
TEST(SampleConsensus, RadiusLimitsFindTheBallOnTheFloor) {
  std::mt19937_64 rng(11);
  std::uniform_real_distribution<double> u(-1.0, 1.0);
  std::normal_distribution<double> g(0.0, 0.002);
  Cloud c;
  for (int i = 0; i < 2000; ++i)
    c.Add(u(rng), u(rng), g(rng), false);
  for (int i = 0; i < 800; ++i) {
    double d[3] = {g(rng), g(rng), g(rng)};
    const double l = std::sqrt(d[0] * d[0] + d[1] * d[1] + d[2] * d[2]);
    c.Add(0.3 + 0.25 * d[0] / l, -0.2 + 0.25 * d[1] / l, 0.25 + 0.25 * d[2] / l, true);
  }
  ConsensusOptions o;
  o.inlierThreshold = 0.01;
  const ConsensusResult open = FindConsensus(ConsensusShape::kSphere, c.Points(), o);
  ASSERT_EQ(open.status, ConsensusStatus::kFound);
  EXPECT_GT(open.model.radius, 1.0);
  o.maxRadius = 1.0;
  const ConsensusResult ball = FindConsensus(ConsensusShape::kSphere, c.Points(), o);
  ASSERT_EQ(ball.status, ConsensusStatus::kFound);
  EXPECT_NEAR(ball.model.radius, 0.25, 1e-3);
  EXPECT_NEAR(ball.model.point(2, 0), 0.25, 1e-3);
  // No sphere through four points has a radius of exactly 0.6.
  o.minRadius = o.maxRadius = 0.6;
  EXPECT_EQ(FindConsensus(ConsensusShape::kSphere, c.Points(), o).status,
            ConsensusStatus::kNoModelInRange);
  // Lines and planes have no radius: the limits leave them alone.
  const ConsensusResult floor = FindConsensus(ConsensusShape::kPlane, c.Points(), o);
  EXPECT_EQ(floor.status, ConsensusStatus::kFound);
  EXPECT_GE(floor.inlierCount, 2000);
}

TEST(ExtractConsensus, LabelsTwoPlanesAndLeavesTheRestUnlabelled) {
  // The plane z = 0, the plane x = 3, a sphere around (0, 0, 3) and outliers.
  std::mt19937_64 rng(5);
  std::uniform_real_distribution<double> unit(-1.0, 1.0);
  std::normal_distribution<double> noise(0.0, kNoise);
  Cloud c;
  std::vector<std::int64_t> truth;
  for (int i = 0; i < 600; ++i, truth.push_back(0))
    c.Add(unit(rng), unit(rng), noise(rng), true);
  for (int i = 0; i < 400; ++i, truth.push_back(1))
    c.Add(3.0 + noise(rng), unit(rng), unit(rng), true);
  for (int i = 0; i < 800; ++i, truth.push_back(-1)) {
    const double d[3] = {unit(rng), unit(rng), unit(rng)};
    const double l = std::sqrt(d[0] * d[0] + d[1] * d[1] + d[2] * d[2]);
    c.Add(0.5 * d[0] / l + noise(rng), 0.5 * d[1] / l + noise(rng), 3.0 + 0.5 * d[2] / l, true);
  }
  for (int i = 0; i < 200; ++i, truth.push_back(-1))
    c.Add(1.5 + 3.0 * unit(rng), 1.5 * unit(rng), 1.5 + 2.5 * unit(rng), false);
  ConsensusOptions o;
  o.inlierThreshold = kThreshold;
  o.minInliers = 100;
  const CMatrix points = c.Points();
  const ConsensusExtraction ex = ExtractConsensus(ConsensusShape::kPlane, points, o, 4);
  ASSERT_EQ(ex.status, ConsensusStatus::kFound);
  ASSERT_EQ(ex.models.size(), 2u);
  ASSERT_EQ(ex.labels.size(), c.x.size());
  EXPECT_EQ(ResultHash(ex.models[0]), ResultHash(FindConsensus(ConsensusShape::kPlane, points, o)));
  std::size_t agree = 0;
  for (std::size_t i = 0; i < truth.size(); ++i)
    agree += ex.labels[i] == truth[i] ? 1 : 0;
  EXPECT_GT(agree, truth.size() * 98 / 100);
  for (std::size_t m = 0; m < 2; ++m) {
    for (std::int64_t i : ex.models[m].inliers)
      EXPECT_EQ(ex.labels[static_cast<std::size_t>(i)], static_cast<std::int64_t>(m));
  }
  const ConsensusResult sphere = FindConsensus(ConsensusShape::kSphere, points, o);
  ASSERT_EQ(sphere.status, ConsensusStatus::kFound);
  EXPECT_NEAR(sphere.model.point(2, 0), 3.0, 0.01);
  EXPECT_NEAR(sphere.model.radius, 0.5, 0.01);
}

// A cloud made with exactly rounded operations only (+, -, *, /, sqrt) from
// the library's own generator: no distribution of the standard library, whose
// algorithms differ between implementations.
Cloud PortableCloud(ConsensusShape shape, int n, std::uint64_t seed) {
  CounterRandom draw(seed, 99);
  const auto unit = [&draw] {  // uniform in [-1, 1)
    return static_cast<double>(draw.Next() >> 11) * 0x1p-52 - 1.0;
  };
  Cloud c;
  for (int i = 0; i < n; ++i) {
    const double a = unit(), b = unit(), e = unit();
    if (i % 2 == 1) {
      c.Add(1.5 * a, 1.5 * b, 1.5 * e, false);
    } else if (shape == ConsensusShape::kPlane) {
      c.Add(a, b, 0.3 * a - 0.2 * b + 0.1 + 0.005 * e, true);
    } else {
      const double g = unit(), l = std::sqrt(a * a + b * b + g * g);
      const double r = 0.7 + 0.005 * e;
      c.Add(0.1 + r * a / l, -0.2 + r * b / l, 0.3 + r * g / l, true);
    }
  }
  return c;
}

}  // namespace

// The same seed, the same samples and the same arithmetic: these values hold on
// 64-bit and 32-bit x86 Linux and on Windows alike, for any number of threads.
// The cloud is large enough for many scoring blocks and for the preview of
// hypotheses; skipping the final fit of all inliers leaves the inliers as they
// are.
TEST(SampleConsensus, GivesTheSameBitsOnEveryPlatformForAnyNumberOfThreads) {
  const struct {
    ConsensusShape shape;
    std::uint64_t hash;
  } cases[] = {{ConsensusShape::kPlane, 0x3542e8307820697dULL},
               {ConsensusShape::kSphere, 0x80e60df16d6b8527ULL}};
  for (const auto &c : cases) {
    const CMatrix points = PortableCloud(c.shape, 40000, 3).Points();
    ConsensusOptions o;
    o.inlierThreshold = 0.02;
    o.seed = 5;
    const ConsensusResult r = FindConsensus(c.shape, points, o);
    EXPECT_EQ(r.status, ConsensusStatus::kFound);
    EXPECT_EQ(ResultHash(r), c.hash) << Name(c.shape) << std::hex << " 0x" << ResultHash(r);
    for (int threads : {1, 2, 3}) {
      o.threads = threads;
      EXPECT_EQ(ResultHash(FindConsensus(c.shape, points, o)), c.hash) << threads;
    }
    o.fitAllInliers = false;
    const ConsensusResult local = FindConsensus(c.shape, points, o);
    EXPECT_EQ(local.status, r.status);
    EXPECT_EQ(local.inliers, r.inliers);
    EXPECT_EQ(local.iterations, r.iterations);
  }
  // A score adds the blocks' partial sums in block order, whichever thread
  // scored which block.
  const Cloud cloud = PortableCloud(ConsensusShape::kPlane, 5 * kScoreBlock + 77, 3);
  Hypothesis model;
  model.u[2] = 1.0;
  double inOrder = 0.0;
  for (std::int64_t begin = 0; begin < cloud.Columns().n; begin += kScoreBlock) {
    const std::int64_t end = std::min(begin + kScoreBlock, cloud.Columns().n);
    inOrder += ScoreRange(ConsensusShape::kPlane, model, cloud.Columns(), begin, end, 0.0004).sum;
  }
  for (int threads : {1, 3}) {
    BlockPool pool(threads);
    const double sum = ScoreCloud(ConsensusShape::kPlane, model, cloud.Columns(), 0.0004, pool).sum;
    EXPECT_EQ(std::memcmp(&sum, &inOrder, sizeof sum), 0) << threads;
  }
}
