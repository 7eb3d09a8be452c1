"""Records with random values, and values that are hard to keep."""

import math
import os
import random
import struct

import velwhiteboard

RECORD_CLASSES = [each for each in vars(velwhiteboard).values()
                  if isinstance(each, type) and hasattr(each, "PROPERTIES")]

REALS = [0.0, -0.0, 1.0, -1.5, 0.1, 5e-324, 1.7976931348623157e308, 2.0**53 + 2, 1e22, 1.2345678901234567]
NOT_FINITE = [math.nan, math.inf, -math.inf, struct.unpack("<d", bytes.fromhex("010000000000f87f"))[0]]
SIGNED = [0, 1, -1, 2**63 - 1, -2**63, 2**53 + 1, -7]
UNSIGNED = [0, 1, 2**64 - 1, 2**63, 2**53 + 1]
TEXTS = ["", "a", "Zürich \U0001f600", "line\nfeed\ttab", "\0", "<&>\"'", "\ufffe", "12", "true"]


def seeded():
    """A generator of random numbers; a failure prints its seed, VELWB_TEST_SEED repeats it."""
    seed = int(os.environ.get("VELWB_TEST_SEED", random.SystemRandom().randrange(2**32)))
    print(f"VELWB_TEST_SEED={seed}")
    return random.Random(seed)


class RandomValues:
    """Values for properties; with `exotic` also those that the dictionary form does not carry."""

    def __init__(self, source, exotic=False):
        self.source = source
        self.exotic = exotic

    def real(self):
        if self.exotic and self.source.random() < 0.3:
            return self.source.choice(NOT_FINITE)
        return self.source.choice([self.source.choice(REALS), self.source.uniform(-1e3, 1e3)])

    def signed(self):
        return self.source.choice([self.source.choice(SIGNED), self.source.randrange(-2**63, 2**63)])

    def unsigned(self):
        return self.source.choice([self.source.choice(UNSIGNED), self.source.randrange(2**64)])

    def boolean(self):
        return self.source.random() < 0.5

    def text(self):
        if self.exotic and self.source.random() < 0.2:
            return b"\xff\xc3(".decode("utf-8", "surrogateescape")
        return self.source.choice([None, *TEXTS])

    def path(self):
        return self.source.choice([None, [[self.real() for _ in range(self.source.randrange(5))]
                                          for _ in range(self.source.randrange(6))]])

    def free(self):
        return self.source.choice([None, [self.value(3) for _ in range(self.source.randrange(4))]])

    def value(self, depth):
        kinds = [lambda: None, self.boolean, self.signed, self.unsigned, self.real,
                 lambda: self.source.choice(TEXTS)]
        if depth:
            kinds += [lambda: [self.value(depth - 1) for _ in range(self.source.randrange(3))],
                      lambda: {self.source.choice(TEXTS): self.value(depth - 1)
                               for _ in range(self.source.randrange(3))}]
        return self.source.choice(kinds)()

    def items(self, record_class):
        element = (velwhiteboard.VelImageResource if record_class is velwhiteboard.VelWhiteBoardResource
                   else velwhiteboard.VelWbVecMediaItem)
        return self.source.choice([None, [self.record(element) for _ in range(self.source.randrange(3))]])

    def record(self, record_class):
        """A record each of whose properties has a random value."""
        record = record_class()
        for name, kind in record_class.PROPERTIES.items():
            value = self.items(record_class) if kind == "items" else getattr(self, kind)()
            setattr(record, name, value)
        return record


def bits(value, one_nan=False):
    """A value in which floats are their bits, and types count: True is not 1, and 1 is not 1.0.

    With `one_nan` every NaN is the same.
    """
    if isinstance(value, float):
        return "float", struct.pack("<d", math.nan if one_nan and math.isnan(value) else value)
    if isinstance(value, list):
        return [bits(element, one_nan) for element in value]
    if isinstance(value, dict):
        return {key: bits(element, one_nan) for key, element in value.items()}
    if isinstance(value, velwhiteboard.Record):
        return type(value), {name: bits(getattr(value, name), one_nan) for name in value.PROPERTIES}
    return type(value), value
