import os
import sys

import hypothesis
import pytest

# Import from the build tree even where another quelide is installed.
sys.path.insert(0, os.environ.get("QUELIDE_PYTHON", os.path.join(os.path.dirname(__file__), "../../build-release/Python")))
sys.path.insert(0, os.path.dirname(__file__))

# The same examples every time; QUELIDE_EXAMPLES=1000 looks at as many other ones. A machine that compiles at the same time is
# slow: nothing here is about time.
examples = int(os.environ.get("QUELIDE_EXAMPLES", 0))
hypothesis.settings.register_profile("quelide", deadline=None, max_examples=examples or 40, derandomize=not examples,
                                     database=None, print_blob=True,
                                     suppress_health_check=list(hypothesis.HealthCheck))
hypothesis.settings.load_profile("quelide")


@pytest.fixture
def rng():
    import numpy

    return numpy.random.default_rng(7)
