"""The shape fits from Python: the layouts they take and the result objects
they give. What they find, bit for bit, is compared with the C++ calls in
test_same_bits.py."""

import json

import numpy as np
import pytest

import quadrel
from conftest import bits, on_sphere

@pytest.mark.parametrize("name", ["fit_circle", "fit_ellipse", "fit_line", "fit_paraboloid", "fit_plane", "fit_sphere"])
def test_every_layout_and_dtype_gives_the_same_bits(name):
    fit = getattr(quadrel, name)
    base = np.round(on_sphere(40, noise=0.05) * 8.0)  # whole numbers: exact in every dtype
    reference = fit(base)
    big = np.zeros((80, 7))
    big[::2, 1:6:2] = base
    layouts = [
        base.tolist(), np.asfortranarray(base), big[::2, 1:6:2], base.astype(np.float32),
        base.astype(np.int32), base.astype(np.int16), base.astype(">f8"),
        np.ascontiguousarray(base.T).T, base[:5].copy(),
    ]  # fmt: skip
    for layout in layouts[:-1]:
        got = fit(layout)
        assert bits(tuple(got.to_dict().values())) == bits(tuple(reference.to_dict().values()))
    # A small set (9 elements or fewer go another way into the library).
    few = np.asarray(layouts[-1])
    assert bits(fit(few).residuals) == bits(fit(np.asfortranarray(few)).residuals)


def test_results_are_immutable_readable_and_json_ready():
    points = on_sphere(200)
    s = quadrel.fit_sphere(points)
    with pytest.raises(AttributeError):
        s.radius = 1.0  # type: ignore[misc]
    with pytest.raises(ValueError):
        s.residuals[0] = 0.0
    text = repr(s)
    assert text.startswith("Sphere(centre=[") and "residuals=<array of shape (200,)>" in text
    back = json.loads(json.dumps(s.to_dict()))
    assert back["radius"] == s.radius and back["centre"] == s.centre.tolist()
    e = quadrel.fit_ellipse(points[:30] * [1.0, 1.0, 0.0])
    assert e.foci.shape == (2, 3) and e.to_dict()["foci"][1] == e.foci[1].tolist()
    np.testing.assert_array_equal(e.centre, (e.foci[0] + e.foci[1]) / 2.0)
