package com.qor.statistics.kova;

/**
 * A table of an open procedure. Its dimensions are added first. Then a program goes through the cells: it names the
 * category of each dimension that changes, and sets the cell, which stands at the present category of every dimension.
 *
 * <p>Made by {@link Procedure#table(String, String, String)}; of use until the procedure is closed.
 */
public final class PivotTable {
  private static final int ROWS = 0;
  private static final int COLUMNS = 1;
  private static final int LAYERS = 2;

  private final byte[][] key;
  private final boolean isSplit;
  private final int[] added = new int[LAYERS + 1];
  private Dimension last;

  private PivotTable(byte[][] key, boolean isSplit) {
    this.key = key;
    this.isSplit = isSplit;
  }

  static PivotTable start(byte[] outline, byte[] title, byte[] subtype, boolean isSplit) {
    byte[][] key = {outline, title, subtype};
    Native.startPivotTable(key, isSplit);
    return new PivotTable(key, isSplit);
  }

  /**
   * Shows the table without its title.
   *
   * @throws KovaException what the engine answers
   */
  public void hideTitle() { Native.hidePivotTableTitle(key, isSplit); }

  /**
   * Gives the table a caption, the text below it.
   *
   * @param text the caption
   * @throws KovaException what the engine answers
   */
  public void caption(String text) { Native.pivotTableCaption(key, isSplit, Texts.bytes(text)); }

  /**
   * Adds a footnote to the table's heading in the outline.
   *
   * @param text the footnote
   * @throws KovaException what the engine answers
   */
  public void outlineFootnote(String text) { Native.addOutlineFootnotes(key, isSplit, Texts.bytes(text)); }

  /**
   * Adds a footnote to the table's title.
   *
   * @param text the footnote
   * @throws KovaException what the engine answers
   */
  public void titleFootnote(String text) { Native.addTitleFootnotes(key, isSplit, Texts.bytes(text)); }

  /**
   * Adds a footnote to the table's caption.
   *
   * @param caption the caption, as it was given; a table without one takes it
   * @param text the footnote
   * @throws KovaException what the engine answers, such as 98111 when that is not the table's caption
   */
  public void captionFootnote(String caption, String text) {
    Native.addCaptionFootnotes(key, isSplit, Texts.bytes(caption), Texts.bytes(text));
  }

  /**
   * Sets the least width of the table's data columns.
   *
   * @param characters the width in characters, 1 to 1000
   * @throws KovaException what the engine answers
   */
  public void minimumColumnWidth(int characters) { Native.minDataColumnWidth(key, isSplit, characters); }

  /**
   * Sets the greatest width of the table's data columns.
   *
   * @param characters the width in characters, 1 to 1000
   * @throws KovaException what the engine answers
   */
  public void maximumColumnWidth(int characters) { Native.maxDataColumnWidth(key, isSplit, characters); }

  /**
   * Adds a dimension of rows, within the earlier ones.
   *
   * @param name its name, which is shown
   * @return the dimension
   * @throws KovaException what the engine answers
   */
  public Dimension rows(String name) { return rows(name, true, true); }

  /**
   * Adds a dimension of rows, within the earlier ones.
   *
   * @param name its name
   * @param showsName whether the name is shown
   * @param showsCategories whether the categories are shown
   * @return the dimension
   * @throws KovaException what the engine answers
   */
  public Dimension rows(String name, boolean showsName, boolean showsCategories) {
    return add(name, ROWS, showsName, showsCategories);
  }

  /**
   * Adds a dimension of columns, within the earlier ones.
   *
   * @param name its name, which is shown
   * @return the dimension
   * @throws KovaException what the engine answers
   */
  public Dimension columns(String name) { return columns(name, true, true); }

  /**
   * Adds a dimension of columns, within the earlier ones.
   *
   * @param name its name
   * @param showsName whether the name is shown
   * @param showsCategories whether the categories are shown
   * @return the dimension
   * @throws KovaException what the engine answers
   */
  public Dimension columns(String name, boolean showsName, boolean showsCategories) {
    return add(name, COLUMNS, showsName, showsCategories);
  }

  /**
   * Adds a dimension of layers, within the earlier ones. Each layer is a table of its own.
   *
   * @param name its name, which is shown
   * @return the dimension
   * @throws KovaException what the engine answers
   */
  public Dimension layers(String name) { return layers(name, true, true); }

  /**
   * Adds a dimension of layers, within the earlier ones. Each layer is a table of its own.
   *
   * @param name its name
   * @param showsName whether the name is shown
   * @param showsCategories whether the categories are shown
   * @return the dimension
   * @throws KovaException what the engine answers
   */
  public Dimension layers(String name, boolean showsName, boolean showsCategories) {
    return add(name, LAYERS, showsName, showsCategories);
  }

  private Dimension add(String name, int place, boolean showsName, boolean showsCategories) {
    byte[][] texts = {key[0], key[1], key[2], Texts.bytes(name)};
    int[] numbers = {isSplit ? 1 : 0, place, added[place], showsName ? 0 : 1, showsCategories ? 0 : 1};
    last = Dimension.add(texts, numbers);
    ++added[place];
    return last;
  }

  /**
   * Chooses how the numbers of the cells that follow are shown, in any table, until another style is chosen.
   *
   * @param style the style
   * @throws KovaException what the engine answers
   */
  public void style(CellStyle style) { style.choose(); }

  /**
   * Sets the cell to a number, in the style that was chosen last.
   *
   * @param value the number
   * @throws KovaException what the engine answers
   * @throws IllegalStateException when the table has no dimension
   */
  public void cell(double value) { Native.setNumberCell(any().texts(), any().numbers(), value); }

  /**
   * Chooses a style, and sets the cell to a number in it.
   *
   * @param style the style, for the cells that follow too
   * @param value the number
   * @throws KovaException what the engine answers
   * @throws IllegalStateException when the table has no dimension
   */
  public void cell(CellStyle style, double value) {
    style(style);
    cell(value);
  }

  /**
   * Sets the cell to a text.
   *
   * @param text the text
   * @throws KovaException what the engine answers
   * @throws IllegalStateException when the table has no dimension
   */
  public void cell(String text) { Native.setStringCell(any().texts(), any().numbers(), Texts.bytes(text)); }

  /**
   * Sets the cell to a variable, which is shown by its label.
   *
   * @param variable the variable, of the procedure's data
   * @throws KovaException what the engine answers
   * @throws IllegalStateException when the table has no dimension
   */
  public void cell(Variable variable) { Native.setVarNameCell(any().texts(), any().numbers(), variable.position()); }

  /**
   * Sets the cell to a value of a numeric variable, which is shown by its value label.
   *
   * @param variable the variable, of the procedure's data
   * @param value the value
   * @throws KovaException what the engine answers
   * @throws IllegalStateException when the table has no dimension
   */
  public void cell(Variable variable, double value) {
    Native.setVarValueDoubleCell(any().texts(), any().numbers(), variable.position(), value);
  }

  /**
   * Sets the cell to a value of a string variable, which is shown by its value label.
   *
   * @param variable the variable, of the procedure's data
   * @param value the value
   * @throws KovaException what the engine answers
   * @throws IllegalStateException when the table has no dimension
   */
  public void cell(Variable variable, String value) {
    Native.setVarValueStringCell(any().texts(), any().numbers(), variable.position(), Texts.bytes(value));
  }

  /**
   * Sets the cell to a date.
   *
   * @param date the date as it is to be shown
   * @throws KovaException what the engine answers
   * @throws IllegalStateException when the table has no dimension
   */
  public void dateCell(String date) { Native.setDateCell(any().texts(), any().numbers(), Texts.bytes(date)); }

  /**
   * Adds a footnote to the cell, which has been set.
   *
   * @param text the footnote
   * @throws KovaException what the engine answers
   * @throws IllegalStateException when the table has no dimension
   */
  public void cellFootnote(String text) { Native.addCellFootnotes(any().texts(), any().numbers(), Texts.bytes(text)); }

  /** A cell is addressed by way of any dimension. */
  private Dimension any() {
    if (last == null) {
      throw new IllegalStateException("the table has no dimension yet");
    }
    return last;
  }
}
