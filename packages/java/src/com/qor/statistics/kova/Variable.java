package com.qor.statistics.kova;

import java.util.ArrayList;
import java.util.Collections;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;

/**
 * A variable of the active data set, as it was when {@link Engine#variable} or {@link Engine#dictionary} read it.
 * Immutable; later changes of the data set do not show.
 */
public final class Variable {
  private final int position;
  private final String name;
  private final String label;
  private final int width;
  private final PrintFormat format;
  private final MeasurementLevel measurementLevel;
  private final Map<Double, String> numberLabels;
  private final Map<String, String> textLabels;
  private final MissingValues missingValues;

  private Variable(int position) {
    this.position = position;
    name = Texts.text(Native.getVariableName(position));
    label = Texts.text(Native.getVariableLabel(position));
    width = Native.getVariableType(position);
    format = new PrintFormat(Texts.text(Native.getVariableFormat(position)), Native.getVariableFormatType(position));
    measurementLevel = MeasurementLevel.ofCode(Native.getVariableMeasurementLevel(position));
    numberLabels = width == 0 ? readNumberLabels(position) : Collections.emptyMap();
    textLabels = width == 0 ? Collections.emptyMap() : readTextLabels(position);
    missingValues = width == 0 ? readMissingNumbers(position) : readMissingTexts(position);
  }

  static Variable read(int position) { return new Variable(position); }

  private static Map<Double, String> readNumberLabels(int position) {
    Object[] lists = Native.getNValueLabels(position);
    double[] values = (double[]) lists[0];
    byte[][] labels = (byte[][]) lists[1];
    Map<Double, String> found = new LinkedHashMap<>();
    for (int i = 0; i < values.length; ++i) {
      found.put(values[i], Texts.text(labels[i]));
    }
    return Collections.unmodifiableMap(found);
  }

  private static Map<String, String> readTextLabels(int position) {
    byte[][][] lists = Native.getCValueLabels(position);
    Map<String, String> found = new LinkedHashMap<>();
    for (int i = 0; i < lists[0].length; ++i) {
      found.put(Texts.value(lists[0][i]), Texts.text(lists[1][i]));
    }
    return Collections.unmodifiableMap(found);
  }

  private static MissingValues readMissingNumbers(int position) {
    double[] values = new double[MissingValues.MOST];
    return MissingValues.ofNumbers(Native.getVarNMissingValues(position, values), values);
  }

  private static MissingValues readMissingTexts(int position) {
    byte[][] values = new byte[MissingValues.MOST][];
    int kind = Native.getVarCMissingValues(position, values);
    List<String> texts = new ArrayList<>();
    for (int i = 0; i < kind && i < MissingValues.MOST; ++i) {
      texts.add(Texts.value(values[i]));
    }
    return MissingValues.ofTexts(kind, texts);
  }

  /**
   * Tells where the variable stands.
   *
   * @return the position in the data set, from 0
   */
  public int position() { return position; }

  /**
   * Tells the variable's name.
   *
   * @return the name
   */
  public String name() { return name; }

  /**
   * Tells the variable's label.
   *
   * @return the label; empty when it has none
   */
  public String label() { return label; }

  /**
   * Tells whether the variable has numbers.
   *
   * @return true for a numeric variable, false for one of texts
   */
  public boolean isNumeric() { return width == 0; }

  /**
   * Tells how long the variable's texts can be.
   *
   * @return the width in bytes of UTF-8; 0 for a numeric variable
   */
  public int width() { return width; }

  /**
   * Tells how the variable's values are printed.
   *
   * @return the print format
   */
  public PrintFormat format() { return format; }

  /**
   * Tells what may be done with the variable's values.
   *
   * @return the measurement level
   */
  public MeasurementLevel measurementLevel() { return measurementLevel; }

  /**
   * Lists the value labels of a numeric variable.
   *
   * @return the label of each labelled number, in the engine's order, in a map that can not be changed; empty for a
   *     string variable
   */
  public Map<Double, String> numberLabels() { return numberLabels; }

  /**
   * Lists the value labels of a string variable.
   *
   * @return the label of each labelled text, in the engine's order, in a map that can not be changed; empty for a
   *     numeric variable
   */
  public Map<String, String> textLabels() { return textLabels; }

  /**
   * Tells which values count as missing.
   *
   * @return the user-missing values
   */
  public MissingValues missingValues() { return missingValues; }

  /**
   * Shows the variable by its name.
   *
   * @return the name
   */
  @Override
  public String toString() {
    return name;
  }
}
