#!/usr/bin/env python3
"""What the examples do with other data than the penguins."""
import unittest

import kova_engine


class OtherData(kova_engine.Engine):
    """An engine whose dictionary has these names; it knows nothing but them."""

    def __init__(self, *names):  # Without the library.
        self.names = names

    def value(self, function, *arguments):
        return len(self.names) if function == "GetVariableCount" else self.names[arguments[0]]


class SummaryTest(unittest.TestCase):
    def test_the_variables_are_found_in_any_order(self):
        engine = OtherData("body_mass_g", "year", "island", "species")
        self.assertEqual(engine.positions("species", "island", "body_mass_g"),
                         {"body_mass_g": 0, "year": 1, "island": 2, "species": 3})

    def test_other_data_are_refused_before_anything_is_put_out(self):
        with self.assertRaises(kova_engine.EngineError) as caught:
            OtherData("island", "age").positions("species", "island", "body_mass_g")
        self.assertEqual(str(caught.exception), "the data have no variable species, body_mass_g; "
                         "give kovadx run --data examples/penguins")


if __name__ == "__main__":
    unittest.main()
