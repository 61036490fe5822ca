package com.qor.statistics.kova;

import java.util.Collections;
import java.util.List;

/**
 * The values of a variable that count as missing because its owner has said so. "No value at all" is none of them.
 * Immutable.
 *
 * <p>A numeric variable has up to three single values, or a range and at most one value beside it; a string variable
 * has up to three single texts.
 */
public final class MissingValues {
  static final int MOST = 3;
  static final int RANGE = -2;
  static final int RANGE_AND_VALUE = -3;

  private final int kind;
  private final double[] numbers;
  private final List<String> texts;

  private MissingValues(int kind, double[] numbers, List<String> texts) {
    this.kind = kind;
    this.numbers = numbers;
    this.texts = texts;
  }

  /** How many single values a kind without a range has. */
  static int countOf(int kind) { return Math.max(0, Math.min(kind, MOST)); }

  static MissingValues ofNumbers(int kind, double[] three) {
    return new MissingValues(kind, three, Collections.emptyList());
  }

  static MissingValues ofTexts(int kind, List<String> texts) {
    return new MissingValues(kind, new double[0], Collections.unmodifiableList(texts));
  }

  /**
   * Tells whether there is a range of missing numbers.
   *
   * @return true when numbers from {@link #low} to {@link #high} are missing, these two included
   */
  public boolean hasRange() { return kind == RANGE || kind == RANGE_AND_VALUE; }

  /**
   * Tells where the range begins.
   *
   * @return the lowest missing number of the range; NaN without a range
   */
  public double low() { return hasRange() ? numbers[0] : Double.NaN; }

  /**
   * Tells where the range ends.
   *
   * @return the highest missing number of the range; NaN without a range
   */
  public double high() { return hasRange() ? numbers[1] : Double.NaN; }

  /**
   * Lists the single missing numbers.
   *
   * @return up to three numbers, at most one beside a range; empty for a string variable
   */
  public double[] numbers() {
    if (kind == RANGE_AND_VALUE) {
      return new double[] {numbers[2]};
    }
    double[] single = new double[numbers.length == 0 ? 0 : countOf(kind)];
    System.arraycopy(numbers, 0, single, 0, single.length);
    return single;
  }

  /**
   * Lists the missing texts.
   *
   * @return up to three texts, which can not be changed; empty for a numeric variable
   */
  public List<String> texts() { return texts; }

  /**
   * Tells whether a number is one of the missing values. Single values are compared bit by bit, so that -0.0 is not
   * 0.0; the range as numbers.
   *
   * @param value the number
   * @return true when it is missing; always false for a string variable
   */
  public boolean isMissing(double value) {
    if (hasRange() && value >= numbers[0] && value <= numbers[1]) {
      return true;
    }
    for (double single : numbers()) {
      if (Double.doubleToRawLongBits(single) == Double.doubleToRawLongBits(value)) {
        return true;
      }
    }
    return false;
  }

  /**
   * Tells whether a text is one of the missing values.
   *
   * @param value the text, without the blanks at its end
   * @return true when it is missing; always false for a numeric variable
   */
  public boolean isMissing(String value) { return texts.contains(value); }
}
