package com.qor.statistics.kova;

/**
 * A dimension of a table. Naming a category makes it the present one, and adds it when it is new; categories stand in
 * the order in which they were first named.
 *
 * <p>Made by {@link PivotTable#rows(String)} and its siblings; of use until the procedure is closed.
 */
public final class Dimension {
  private final byte[][] texts;
  private final int[] numbers;

  private Dimension(byte[][] texts, int[] numbers) {
    this.texts = texts;
    this.numbers = numbers;
  }

  static Dimension add(byte[][] texts, int[] numbers) {
    Native.addDimension(texts, numbers);
    return new Dimension(texts, numbers);
  }

  byte[][] texts() { return texts; }

  int[] numbers() { return numbers; }

  /**
   * Adds a footnote to the dimension's name.
   *
   * @param text the footnote
   * @throws KovaException what the engine answers
   */
  public void footnote(String text) { Native.addDimFootnotes(texts, numbers, Texts.bytes(text)); }

  /**
   * Goes to the category that is a number.
   *
   * @param value the number
   * @throws KovaException what the engine answers
   */
  public void category(double value) { Native.addNumberCategory(texts, numbers, value); }

  /**
   * Goes to the category that is a text.
   *
   * @param text the text
   * @throws KovaException what the engine answers
   */
  public void category(String text) { Native.addStringCategory(texts, numbers, Texts.bytes(text)); }

  /**
   * Goes to the category that is a variable, which is shown by its label.
   *
   * @param variable the variable, of the procedure's data
   * @throws KovaException what the engine answers
   */
  public void category(Variable variable) { Native.addVarNameCategory(texts, numbers, variable.position()); }

  /**
   * Goes to the category that is a value of a numeric variable, which is shown by its value label.
   *
   * @param variable the variable, of the procedure's data
   * @param value the value
   * @throws KovaException what the engine answers
   */
  public void category(Variable variable, double value) {
    Native.addVarValueDoubleCategory(texts, numbers, variable.position(), value);
  }

  /**
   * Goes to the category that is a value of a string variable, which is shown by its value label.
   *
   * @param variable the variable, of the procedure's data
   * @param value the value
   * @throws KovaException what the engine answers
   */
  public void category(Variable variable, String value) {
    Native.addVarValueStringCategory(texts, numbers, variable.position(), Texts.bytes(value));
  }

  /**
   * Adds a footnote to the present category.
   *
   * @param text the footnote
   * @throws KovaException what the engine answers
   */
  public void categoryFootnote(String text) { Native.addCategoryFootnotes(texts, numbers, Texts.bytes(text)); }
}
