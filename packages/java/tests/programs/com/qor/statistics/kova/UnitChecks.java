package com.qor.statistics.kova;

import java.nio.ByteBuffer;
import java.nio.ByteOrder;
import java.util.Arrays;
import java.util.List;
import java.util.Objects;

/** Checks what needs no engine: how values come out of blocks of cases. Prints what is wrong, then the count. */
public final class UnitChecks {
  private static final long NO_VALUE = 0xFFEFFFFFFFFFFFFFL;
  private static final int CASE = 24;

  private static int checked;

  private UnitChecks() {}

  private static void check(String what, Object expected, Object found) {
    ++checked;
    if (!Objects.equals(expected, found)) {
      System.out.println(what + ": expected " + expected + ", found " + found);
    }
  }

  private static long bits(double value) { return Double.doubleToRawLongBits(value); }

  private static long unit(String text) {
    return ByteBuffer.wrap(Arrays.copyOf(text.getBytes(), 8)).order(ByteOrder.nativeOrder()).getLong();
  }

  private static void numbers() {
    long[] layout = {0, 0, 2, bits(9), bits(0.0), bits(7)};
    NumberRule rule = new NumberRule(layout, UserMissing.AS_MISSING);
    check("no value", true, Double.isNaN(rule.valueOf(NO_VALUE)));
    check("a missing value", true, Double.isNaN(rule.valueOf(bits(9))));
    check("one missing value too many", 7.0, rule.valueOf(bits(7)));
    check("the negative zero", bits(-0.0), bits(rule.valueOf(bits(-0.0))));
    check("a value that is wanted", 9.0, new NumberRule(layout, UserMissing.AS_VALUE).valueOf(bits(9)));
  }

  private static void ranges() {
    long[] layout = {0, 0, -3, bits(1), bits(2), bits(9)};
    NumberRule rule = new NumberRule(layout, UserMissing.AS_MISSING);
    check("the range's begin", true, Double.isNaN(rule.valueOf(bits(1))));
    check("the range's end", true, Double.isNaN(rule.valueOf(bits(2))));
    check("beside the range", true, Double.isNaN(rule.valueOf(bits(9))));
    check("behind the range", 2.5, rule.valueOf(bits(2.5)));
    layout[2] = -2;
    check("a range alone", 9.0, new NumberRule(layout, UserMissing.AS_MISSING).valueOf(bits(9)));
  }

  private static void missingValues() {
    MissingValues missing = MissingValues.ofNumbers(-3, new double[] {1, 2, 9});
    check("its range", "true 1.0 2.0", missing.hasRange() + " " + missing.low() + " " + missing.high());
    check("its number", "[9.0]", Arrays.toString(missing.numbers()));
    check("what is missing", "true true false",
        missing.isMissing(1.5) + " " + missing.isMissing(9) + " " + missing.isMissing(2.5));
    MissingValues single = MissingValues.ofNumbers(1, new double[] {0, 5, 5});
    check("a single one", "[0.0]", Arrays.toString(single.numbers()));
    check("its low", true, Double.isNaN(single.low()));
    check("what else is missing", "true false false",
        single.isMissing(0.0) + " " + single.isMissing(-0.0) + " " + single.isMissing(5));
    MissingValues texts = MissingValues.ofTexts(1, List.of("none"));
    check("a missing text", "true false", texts.isMissing("none") + " " + texts.isMissing(0));
  }

  /** A block of cases with a number and a text of 12 bytes. */
  private static ByteBuffer block(Object... values) {
    ByteBuffer block = ByteBuffer.allocateDirect(values.length / 2 * CASE).order(ByteOrder.nativeOrder());
    for (int i = 0; i < values.length; i += 2) {
      block.putDouble((Double) values[i]);
      byte[] text = Arrays.copyOf(values[i + 1].toString().getBytes(), 16);
      for (int at = values[i + 1].toString().length(); at < text.length; ++at) {
        text[at] = ' ';
      }
      block.put(text);
    }
    block.flip();
    return block;
  }

  private static void columns() {
    Column masses = Column.of("mass", new long[] {0, 0, 0, 0, 0, 0}, UserMissing.AS_MISSING, 1);
    Column names = Column.of("name", new long[] {12, 8, 1, unit("none    "), 0, 0}, UserMissing.AS_MISSING, 9);
    for (ByteBuffer block : List.of(block(1.0, "a", 2.0, "none"), block(3.0, "none such", 4.0, "a\0b", 5.0, ""))) {
      masses.take(block, CASE);
      names.take(block, CASE);
    }
    masses.close();
    names.close();
    check("numbers of two blocks", "[1.0, 2.0, 3.0, 4.0, 5.0]", Arrays.toString(masses.numbers()));
    check("texts of two blocks", "[a, null, none such, a, ]", Arrays.toString(names.texts()));
    Column kept = Column.of("name", new long[] {12, 8, 1, unit("none    "), 0, 0}, UserMissing.AS_VALUE, 0);
    kept.take(block(1.0, "none", 2.0, "none"), CASE);
    kept.close();
    check("a missing text that is wanted", "[none, none]", Arrays.toString(kept.texts()));
  }

  private static void names() {
    check("lower case", "size_x äÄ", Dictionary.keyOf("SIZE_x äÄ"));
    check("a level of an engine's own", MeasurementLevel.UNKNOWN, MeasurementLevel.ofCode(17));
    check("the highest level", MeasurementLevel.SCALE, MeasurementLevel.ofCode(3));
    check("an unknown code", "f: 98999 an error of the engine's own.",
        new KovaException("f", 98999, "", "").getMessage());
    check("bytes that are no UTF-8", "a\ufffd", Texts.text(new byte[] {'a', (byte) 0xff}));
    check("nothing", "", Texts.text(null));
  }

  public static void main(String[] arguments) {
    numbers();
    ranges();
    missingValues();
    columns();
    names();
    System.out.println(checked + " checks");
  }
}
