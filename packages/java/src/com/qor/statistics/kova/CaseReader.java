package com.qor.statistics.kova;

import java.nio.ByteBuffer;
import java.nio.ByteOrder;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.HashMap;
import java.util.List;
import java.util.Map;

/**
 * One pass over the cases. A process has one case cursor, so passes take turns; the blocks of cases are read where they
 * lie in the library's memory, and nothing points to them when the pass has ended.
 */
final class CaseReader {
  private static final Object PASS = new Object();

  private final UserMissing userMissing;
  private final List<String> names = new ArrayList<>();
  private final int[] positions;

  /** No names stand for all variables. */
  CaseReader(UserMissing userMissing, String[] wanted) {
    this.userMissing = userMissing;
    int count = Native.getVariableCount();
    Map<String, Integer> where = new HashMap<>();
    for (int i = 0; i < count; ++i) {
      names.add(Texts.text(Native.getVariableName(i)));
      where.putIfAbsent(Dictionary.keyOf(names.get(i)), i);
    }
    positions = wanted.length == 0 ? allOf(count) : positionsOf(wanted, where);
  }

  private static int[] allOf(int count) {
    int[] all = new int[count];
    Arrays.setAll(all, i -> i);
    return all;
  }

  private static int[] positionsOf(String[] wanted, Map<String, Integer> where) {
    int[] found = new int[wanted.length];
    for (int i = 0; i < wanted.length; ++i) {
      Integer position = where.get(Dictionary.keyOf(wanted[i]));
      if (position == null) {
        throw KovaException.noSuchVariable("Engine.readCases", wanted[i]);
      }
      found[i] = position;
    }
    return found;
  }

  CaseData read() {
    synchronized (PASS) {
      Native.makeCaseCursor(Texts.bytes("r"));
      CaseData data = null;
      try {
        data = readPass(makeColumns());
      } catch (RuntimeException | Error e) {
        endAfter(e);
        throw e;
      }
      Native.removeCaseCursor();
      return data;
    }
  }

  /** The first failure is the one to be told. */
  private static void endAfter(Throwable failure) {
    try {
      Native.removeCaseCursor();
    } catch (KovaException second) {
      failure.addSuppressed(second);
    }
  }

  private List<Column> makeColumns() {
    int expected = Math.max(Native.getRowCount(), 0);
    List<Column> columns = new ArrayList<>();
    for (int position : positions) {
      columns.add(Column.of(names.get(position), Native.getCaseVariable(position), userMissing, expected));
    }
    return columns;
  }

  private CaseData readPass(List<Column> columns) {
    int caseSize = Native.getCaseSize();
    boolean[] isGroupEnd = new boolean[1];
    List<Integer> groupEnds = new ArrayList<>();
    int count = 0;
    do {
      int before = count;
      ByteBuffer block = Native.nextCaseBlock(isGroupEnd);
      while (block != null) {
        block.order(ByteOrder.nativeOrder());
        for (Column column : columns) {
          column.take(block, caseSize);
        }
        count += block.limit() / caseSize;
        block = Native.nextCaseBlock(isGroupEnd);
      }
      if (count > before) {
        groupEnds.add(count);
      }
    } while (isGroupEnd[0]);
    columns.forEach(Column::close);
    return new CaseData(count, columns, groupEnds.stream().mapToInt(Integer::intValue).toArray());
  }
}
