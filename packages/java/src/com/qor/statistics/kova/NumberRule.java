package com.qor.statistics.kova;

/** Which bits of a numeric variable's unit of a case stand for no value. */
final class NumberRule {
  private static final long NO_VALUE = 0xFFEFFFFFFFFFFFFFL;  // The most negative finite double.

  private final boolean hasRange;
  private final double low;
  private final double high;
  private final long[] singles;

  /** From a variable's layout; see {@link Native#getCaseVariable}. */
  NumberRule(long[] layout, UserMissing userMissing) {
    int kind = userMissing == UserMissing.AS_MISSING ? (int) layout[2] : 0;
    hasRange = kind == MissingValues.RANGE || kind == MissingValues.RANGE_AND_VALUE;
    low = Double.longBitsToDouble(layout[3]);
    high = Double.longBitsToDouble(layout[4]);
    singles = new long[kind == MissingValues.RANGE_AND_VALUE ? 1 : MissingValues.countOf(kind)];
    System.arraycopy(layout, kind == MissingValues.RANGE_AND_VALUE ? 5 : 3, singles, 0, singles.length);
  }

  double valueOf(long bits) {
    double value = Double.longBitsToDouble(bits);
    if (bits == NO_VALUE || hasRange && value >= low && value <= high) {
      return Double.NaN;
    }
    for (long single : singles) {
      if (bits == single) {
        return Double.NaN;
      }
    }
    return value;
  }
}
