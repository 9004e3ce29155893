"""Reads the bundled measurement, shows its channels as NumPy arrays, converts two of them, and writes
the supply channel in volts as plain JSON.

    PYTHONPATH=build/python /usr/bin/python3 examples/python/measurement.py examples/measurement.json
"""
import sys

import vantracore


def main(path):
    document = vantracore.load(path)
    print(document["device"]["model"], "acquired", document["acquired"],
          "every", document["sampleInterval"].astype("m8[ms]"))
    for channel in document["channels"]:
        samples = channel["samples"]
        print(f"  {channel['name']}: {samples.dtype} {samples.shape} in {channel['unit']}")

    supply, temperature, _ = document["channels"]
    print("board temperature in K:", vantracore.convert(temperature["samples"], temperature["unit"], "K"))
    volts = vantracore.convert(supply["samples"], supply["unit"], "V")
    print(vantracore.dumps({"name": supply["name"], "unit": "V", "samples": volts}, fidelity="low", numbers="15"))


if __name__ == "__main__":
    main(sys.argv[1] if len(sys.argv) > 1 else "examples/measurement.json")
