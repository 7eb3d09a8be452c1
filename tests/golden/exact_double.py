"""Double precision worked out with whole numbers only.

Every operation takes the exact result, a ratio of whole numbers, and rounds it once to the nearest
double, ties to even, as the IEEE standard asks. No floating-point arithmetic of this machine takes part,
so what is worked out here is independent of any compiler and processor.
"""
from fractions import Fraction

PRECISION = 53
LOWEST_SCALE = -1074   # the power of two of the last digit of the smallest numbers
HIGHEST_SCALE = 971    # and of the largest

FINITE, INFINITE, NO_NUMBER = range(3)


class Double:
    """A double: a sign and, when it is finite, digits * 2**scale."""

    __slots__ = ("kind", "negative", "digits", "scale")

    def __init__(self, kind, negative, digits=0, scale=0):
        self.kind, self.negative, self.digits, self.scale = kind, negative, digits, scale

    @staticmethod
    def of(value, negative_zero=False):
        """The double nearest to a whole number, a fraction or decimal text such as "1e-300"."""
        exact = Fraction(value)
        negative = exact < 0 or (exact == 0 and negative_zero)
        return rounded(negative, abs(exact.numerator), exact.denominator)

    def exact(self):
        """The value as a fraction; only for a finite one."""
        assert self.kind == FINITE
        digits = -self.digits if self.negative else self.digits
        return Fraction(digits << max(self.scale, 0), 1 << max(-self.scale, 0))

    def is_zero(self):
        return self.kind == FINITE and self.digits == 0

    def same(self, other):
        return self.hex() == other.hex()

    def __neg__(self):
        return Double(self.kind, not self.negative, self.digits, self.scale)

    def __add__(self, other):
        if NO_NUMBER in (self.kind, other.kind):
            return NAN
        if INFINITE in (self.kind, other.kind):
            if self.kind == other.kind and self.negative != other.negative:
                return NAN
            return self if self.kind == INFINITE else other
        scale = min(self.scale, other.scale)
        total = 0
        for part in (self, other):
            digits = part.digits << (part.scale - scale)
            total += -digits if part.negative else digits
        if total == 0:
            # Only two negative zeros add up to a negative zero.
            return Double(FINITE, self.negative and other.negative)
        return rounded(total < 0, abs(total), 1, scale)

    def __sub__(self, other):
        return self + -other

    def __mul__(self, other):
        negative = self.negative != other.negative
        if NO_NUMBER in (self.kind, other.kind):
            return NAN
        if INFINITE in (self.kind, other.kind):
            return NAN if self.is_zero() or other.is_zero() else Double(INFINITE, negative)
        return rounded(negative, self.digits * other.digits, 1, self.scale + other.scale)

    def __truediv__(self, other):
        negative = self.negative != other.negative
        if NO_NUMBER in (self.kind, other.kind) or self.kind == other.kind == INFINITE:
            return NAN
        if self.kind == INFINITE:
            return Double(INFINITE, negative)
        if other.kind == INFINITE:
            return Double(FINITE, negative)
        if other.is_zero():
            return NAN if self.is_zero() else Double(INFINITE, negative)
        return rounded(negative, self.digits, other.digits, self.scale - other.scale)

    def truncated(self):
        """The whole number toward zero, at most what 64 bits with a sign hold; 0 for no number."""
        lowest, highest = -(2**63), 2**63 - 1
        if self.kind == NO_NUMBER:
            return 0
        if self.kind == INFINITE:
            return lowest if self.negative else highest
        whole = self.digits << self.scale if self.scale >= 0 else self.digits >> -self.scale
        return max(lowest, -whole) if self.negative else min(highest, whole)

    def hex(self):
        """The exact value in the hexadecimal notation of C."""
        sign = "-" if self.negative else ""
        if self.kind == NO_NUMBER:
            return "nan"
        if self.kind == INFINITE:
            return sign + "inf"
        if self.digits == 0:
            return sign + "0x0p+0"
        lead, fraction = divmod(self.digits, 2 ** (PRECISION - 1))
        point = f".{fraction:013x}".rstrip("0").rstrip(".")
        return f"{sign}0x{lead}{point}p{self.scale + PRECISION - 1:+d}"


NAN = Double(NO_NUMBER, False)


def rounded(negative, numerator, denominator, scale=0):
    """The double nearest to numerator / denominator * 2**scale; ties go to the even one."""
    if numerator == 0:
        return Double(FINITE, negative)
    # One bit may be missing or one too many; the loop below settles it.
    wanted = scale + numerator.bit_length() - denominator.bit_length() - PRECISION
    wanted = max(wanted, LOWEST_SCALE)
    while True:
        shift = scale - wanted
        count, rest = divmod(numerator << max(shift, 0), denominator << max(-shift, 0))
        if count < 2**PRECISION:
            break
        wanted += 1
    doubled = 2 * rest
    divisor = denominator << max(-shift, 0)
    if doubled > divisor or (doubled == divisor and count % 2 == 1):
        count += 1
    if count == 2**PRECISION:
        count, wanted = count // 2, wanted + 1
    if wanted > HIGHEST_SCALE:
        return Double(INFINITE, negative)
    return Double(FINITE, negative, count, wanted)
