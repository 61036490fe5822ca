package com.qor.statistics.kova;

import java.util.ArrayList;
import java.util.Collections;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/**
 * Cases as columns, one for each variable that {@link Engine#readCases} was asked for. A column has one value for each
 * case, in the order of the cases.
 *
 * <p>The arrays are the columns themselves, not copies: what a program writes into them, it reads again. The engine's
 * data do not change.
 */
public final class CaseData {
  private final int caseCount;
  private final Map<String, Column> columns = new LinkedHashMap<>();
  private final List<String> names = new ArrayList<>();
  private final int[] groupEnds;

  CaseData(int caseCount, List<Column> columns, int[] groupEnds) {
    this.caseCount = caseCount;
    this.groupEnds = groupEnds;
    for (Column column : columns) {
      this.columns.put(Dictionary.keyOf(column.name()), column);
      names.add(column.name());
    }
  }

  /**
   * Tells the number of cases.
   *
   * @return the number of cases that were read, which is the length of each column
   */
  public int caseCount() { return caseCount; }

  /**
   * Lists the variables that were read.
   *
   * @return their names as the dictionary has them, in the order in which they were asked for, in a list that can not
   *     be changed
   */
  public List<String> names() { return Collections.unmodifiableList(names); }

  /**
   * Tells the kind of a column.
   *
   * @param name the variable's name; upper and lower case are the same for the letters A to Z
   * @return true when its values are numbers, false when they are texts
   * @throws KovaException 98011 when that variable was not read
   */
  public boolean isNumeric(String name) { return column("CaseData.isNumeric", name).numbers() != null; }

  /**
   * Gives a column of numbers.
   *
   * @param name the variable's name; upper and lower case are the same for the letters A to Z
   * @return the values, NaN where there is none
   * @throws KovaException 98011 when that variable was not read, 24 when its values are texts
   */
  public double[] numbers(String name) {
    double[] values = column("CaseData.numbers", name).numbers();
    if (values == null) {
      throw new KovaException("CaseData.numbers", KovaException.WRONG_KIND);
    }
    return values;
  }

  /**
   * Gives a column of texts.
   *
   * @param name the variable's name; upper and lower case are the same for the letters A to Z
   * @return the values without the blanks at their end, null where a value is user-missing and was to be read as
   *     missing
   * @throws KovaException 98011 when that variable was not read, 24 when its values are numbers
   */
  public String[] texts(String name) {
    String[] values = column("CaseData.texts", name).texts();
    if (values == null) {
      throw new KovaException("CaseData.texts", KovaException.WRONG_KIND);
    }
    return values;
  }

  /**
   * Tells how the data are split into groups of cases that follow each other.
   *
   * @return for each group the number of cases up to its end, so that the last one is the number of all cases; one
   *     entry when the data are not split, none when there are no cases
   */
  public int[] groupEnds() { return groupEnds.clone(); }

  private Column column(String function, String name) {
    Column found = columns.get(Dictionary.keyOf(name));
    if (found == null) {
      throw KovaException.noSuchVariable(function, name);
    }
    return found;
  }
}
