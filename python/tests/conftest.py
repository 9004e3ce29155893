import json

import vantracore


def document(kind, data, dimensions=None, order=None):
    """A full-fidelity document of one value, written by hand so that reading is tested on its own."""
    value = {"_wellknowntype_": kind, "_data_": data}
    if dimensions is not None:
        value["_dimensions_"] = dimensions
    if order is not None:
        value["_dataorder_"] = order
    return json.dumps(value)
