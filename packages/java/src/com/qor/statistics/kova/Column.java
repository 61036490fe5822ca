package com.qor.statistics.kova;

import java.nio.ByteBuffer;
import java.util.Arrays;

/** The values of one variable, taken out of blocks of cases. One thread fills it. */
abstract class Column {
  private final String name;
  private int count;

  Column(String name) { this.name = name; }

  /** The column for a variable of that layout; see {@link Native#getCaseVariable}. */
  static Column of(String name, long[] layout, UserMissing userMissing, int expected) {
    return layout[0] == 0 ? new NumberColumn(name, layout, userMissing, expected)
                          : new TextColumn(name, layout, userMissing, expected);
  }

  final String name() { return name; }

  /** Takes the variable's values out of a block of whole cases. */
  final void take(ByteBuffer block, int caseSize) {
    int cases = block.limit() / caseSize;
    makeRoom(Math.addExact(count, cases));
    store(block, caseSize, cases, count);
    count += cases;
  }

  /** Gives up the room that was not needed. */
  final void close() { setRoom(count); }

  private void makeRoom(int needed) {
    if (needed > room()) {
      setRoom((int) Math.min(Integer.MAX_VALUE - 8L, Math.max(needed, room() + room() / 2L)));
    }
  }

  abstract int room();

  abstract void setRoom(int cases);

  abstract void store(ByteBuffer block, int caseSize, int cases, int first);

  double[] numbers() { return null; }

  String[] texts() { return null; }

  private static final class NumberColumn extends Column {
    private final int offset;
    private final NumberRule rule;
    private double[] values;

    NumberColumn(String name, long[] layout, UserMissing userMissing, int expected) {
      super(name);
      offset = (int) layout[1];
      rule = new NumberRule(layout, userMissing);
      values = new double[expected];
    }

    @Override
    int room() {
      return values.length;
    }

    @Override
    void setRoom(int cases) {
      values = cases == values.length ? values : Arrays.copyOf(values, cases);
    }

    @Override
    void store(ByteBuffer block, int caseSize, int cases, int first) {
      for (int i = 0, at = offset; i < cases; ++i, at += caseSize) {
        values[first + i] = rule.valueOf(block.getLong(at));
      }
    }

    @Override
    double[] numbers() {
      return values;
    }
  }

  private static final class TextColumn extends Column {
    private final int offset;
    private final TextRule rule;
    private String[] values;

    TextColumn(String name, long[] layout, UserMissing userMissing, int expected) {
      super(name);
      offset = (int) layout[1];
      rule = new TextRule(layout, userMissing);
      values = new String[expected];
    }

    @Override
    int room() {
      return values.length;
    }

    @Override
    void setRoom(int cases) {
      values = cases == values.length ? values : Arrays.copyOf(values, cases);
    }

    @Override
    void store(ByteBuffer block, int caseSize, int cases, int first) {
      for (int i = 0, at = offset; i < cases; ++i, at += caseSize) {
        values[first + i] = rule.valueOf(block, at);
      }
    }

    @Override
    String[] texts() {
      return values;
    }
  }
}
