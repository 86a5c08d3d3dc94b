"""Random shapes, dtypes and values fed to every function: a result or a
ValueError/TypeError, never a crash or a hang; random points give every
segment and every metrology evaluation a status."""

import inspect

import numpy as np
import pytest

hypothesis = pytest.importorskip("hypothesis")
from hypothesis import HealthCheck, given, settings  # noqa: E402
from hypothesis import strategies as st  # noqa: E402
from hypothesis.extra import numpy as hnp  # noqa: E402

import quadrel as q  # noqa: E402

DTYPES = st.sampled_from([np.float64, np.float32, np.int32, np.uint8, np.bool_, np.complex128, object])
ELEMENTS = st.floats(allow_nan=True, allow_infinity=True, width=64) | st.integers(-5, 5)


@st.composite
def arrays(draw):
    """An array of 0 to 3 dimensions, each of up to 7 elements (a matrix of up
    to 7 x 7: det stays fast), any of the dtypes, C or Fortran order."""
    shape = draw(hnp.array_shapes(min_dims=0, max_dims=3, min_side=0, max_side=7))
    dtype = draw(DTYPES)
    values = draw(hnp.arrays(np.float64, shape, elements=ELEMENTS))
    if dtype is object:
        return values.astype(object)
    with np.errstate(all="ignore"):
        array = values.astype(dtype)
    return np.asfortranarray(array) if draw(st.booleans()) else array


ARGUMENT = arrays() | ELEMENTS | st.none() | st.text(max_size=3)

# Every public function with the number of its positional arguments; the
# reader of files, the segment table (below), extract and shape_fields aside.
FUNCTIONS = {
    name: sum(p.kind == p.POSITIONAL_OR_KEYWORD for p in inspect.signature(getattr(q, name)).parameters.values())
    for name in q.__all__
    if name[0].islower() and name not in ("extract", "fit_segments", "read_points", "shape_fields")
}
METROLOGY = [name for name in q._metrology.__all__ if name[0].islower()]


@pytest.mark.parametrize("name", sorted(FUNCTIONS))
def test_random_arguments_give_results_or_clean_errors(name):
    func = getattr(q, name)

    @settings(max_examples=20, deadline=None, suppress_health_check=list(HealthCheck))
    @given(st.lists(ARGUMENT, min_size=FUNCTIONS[name], max_size=FUNCTIONS[name]), st.integers(0, 9))
    def check(args, degree):
        if name == "polyfit":
            args[2] = degree
        try:
            func(*args)
        except (ValueError, TypeError) as error:
            assert str(error).startswith(name + ":"), str(error)

    check()


@settings(max_examples=15, deadline=None)
@given(
    hnp.arrays(np.float64, st.tuples(st.integers(0, 40), st.just(3)), elements=ELEMENTS),
    st.integers(1, 4),
)
def test_random_segments_never_raise_for_data(points, segments):
    labels = np.arange(len(points)) % segments
    for shape in q.SEGMENT_SHAPES:
        result = q.fit_segments(points, labels, shape, threads=2)
        assert len(result) == len(np.unique(labels))
        ok = result["status"] == q.SegmentStatus.OK
        # The rms squares the residuals: beyond about 1e154 it is inf, never NaN.
        assert (result["rms"][ok] >= 0).all() and np.isnan(result["rms"][~ok]).all()


@settings(max_examples=15, deadline=None)
@given(hnp.arrays(np.float64, st.tuples(st.integers(7, 30), st.just(3)), elements=ELEMENTS))
def test_random_points_give_a_metrology_status_never_a_crash_or_a_hang(points):
    finite = np.isfinite(points).all()
    for name in METROLOGY:
        result = getattr(q, name)(points)
        assert (result.status == q.MetrologyStatus.NON_FINITE) == (not finite), name
        if result.ok:  # rms and width may overflow to inf for coordinates near 1e308
            assert (result.rms if hasattr(result, "rms") else result.width) >= 0, name
