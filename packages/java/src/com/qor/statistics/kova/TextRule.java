package com.qor.statistics.kova;

import java.nio.ByteBuffer;
import java.util.Arrays;

/** What a string variable's units of a case mean. It keeps the last text, since equal ones often follow each other. */
final class TextRule {
  private static final int UNIT = 8;
  private static final byte BLANK = ' ';

  private final int width;
  private final long[] missing;
  private byte[] present;
  private byte[] earlier;
  private String earlierText;

  /** From a variable's layout; see {@link Native#getCaseVariable}. */
  TextRule(long[] layout, UserMissing userMissing) {
    width = (int) layout[0];
    int units = (width + UNIT - 1) / UNIT;
    present = new byte[units * UNIT];
    earlier = new byte[units * UNIT];
    int kind = userMissing == UserMissing.AS_MISSING ? (int) layout[2] : 0;
    missing = Arrays.copyOfRange(layout, 3, 3 + MissingValues.countOf(kind));
  }

  String valueOf(ByteBuffer block, int at) {
    block.position(at);
    block.get(present);
    if (earlierText != null && Arrays.equals(present, earlier)) {
      return earlierText;
    }
    if (isMissing(block.getLong(at))) {
      return null;
    }
    earlierText = Texts.value(present, width);
    byte[] unused = earlier;
    earlier = present;
    present = unused;
    return earlierText;
  }

  private boolean isMissing(long firstUnit) {
    for (long value : missing) {
      if (firstUnit == value && isBlankBehindFirstUnit()) {
        return true;
      }
    }
    return false;
  }

  private boolean isBlankBehindFirstUnit() {
    for (int i = UNIT; i < present.length; ++i) {
      if (present[i] != BLANK) {
        return false;
      }
    }
    return true;
  }
}
