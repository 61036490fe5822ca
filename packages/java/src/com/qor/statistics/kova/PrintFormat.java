package com.qor.statistics.kova;

/** How a variable's values are printed. Immutable. */
public final class PrintFormat {
  private final String text;
  private final int code;
  private final int width;
  private final int decimals;

  PrintFormat(String text, int[] numbers) {
    this.text = text;
    this.code = numbers[0];
    this.width = numbers[1];
    this.decimals = numbers[2];
  }

  /**
   * Tells the kind of the format.
   *
   * @return the engine's code of it; the reference engine has 1 for A (text), 2 for F (a plain number), 3 E, 4 COMMA,
   *     5 DOT, 6 PCT, 7 N, 8 DATE, 9 TIME, 10 DATETIME
   */
  public int code() { return code; }

  /**
   * Tells the room that a value takes.
   *
   * @return the width in characters
   */
  public int width() { return width; }

  /**
   * Tells how exactly numbers are shown.
   *
   * @return the number of decimals, 0 where there are none
   */
  public int decimals() { return decimals; }

  /**
   * Tells the format as people write it.
   *
   * @return the format as one text, such as F8.2
   */
  @Override
  public String toString() {
    return text;
  }
}
