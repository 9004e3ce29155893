import os
import subprocess
import sys

ROOT = os.path.join(os.path.dirname(__file__), "..", "..")


def test_the_example_runs_on_the_bundled_measurement():
    script = os.path.join(ROOT, "examples", "python", "measurement.py")
    out = subprocess.run([sys.executable, script, os.path.join(ROOT, "examples", "measurement.json")],
                         check=True, capture_output=True, text=True).stdout
    assert "load current, two bursts: int32 (2, 3) in mA" in out
    assert "board temperature in K: [314.4  314.65 314.9  315.15]" in out
    assert out.endswith('"unit":"V"}\n')
