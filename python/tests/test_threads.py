"""Fits on different arrays from several Python threads give the bits of the
same fits made one after another (the GIL is released while they compute)."""

from concurrent.futures import ThreadPoolExecutor

import quadrel
from conftest import bits, on_sphere


def test_parallel_fits_give_the_bits_of_serial_ones():
    clouds = [on_sphere(20_000, seed=s) for s in range(8)]
    work = [(quadrel.fit_sphere, c) for c in clouds] + [(quadrel.fit_plane, c) for c in clouds]
    work += [(quadrel.svd, c[:50].T @ c[:50]) for c in clouds]

    def run(job):
        func, data = job
        result = func(data)
        return bits(tuple(result) if isinstance(result, tuple) else tuple(result.to_dict().values()))

    serial = [run(job) for job in work]
    with ThreadPoolExecutor(max_workers=4) as pool:
        for _ in range(3):
            assert list(pool.map(run, work)) == serial
