package com.qor.statistics.kova;

/**
 * An open procedure: what is put out until it is closed belongs to it. The engine shows the output when the procedure
 * is closed, or when the process ends.
 *
 * <p>Made by {@link Engine#startProcedure}, best in a try statement with resources.
 */
public final class Procedure implements AutoCloseable {
  private final byte[] name;
  private boolean isClosed;

  Procedure(byte[] name) { this.name = name; }

  /**
   * Adds a block of text. It goes on in the block before it when that is the last output and has the same outline and
   * title.
   *
   * @param outline its heading in the outline
   * @param title its title
   * @param text its lines
   * @param emptyLines the number of empty lines before them, 0 to 1000
   * @throws KovaException what the engine answers
   */
  public void textBlock(String outline, String title, String text, int emptyLines) {
    Native.addTextBlock(Texts.bytes(outline), Texts.bytes(title), Texts.bytes(text), emptyLines);
  }

  /**
   * Adds a footnote to the whole procedure's output.
   *
   * @param text the footnote
   * @throws KovaException what the engine answers
   */
  public void footnote(String text) { Native.addProcFootnotes(Texts.bytes(text)); }

  /**
   * Begins a table that goes on through all split groups.
   *
   * @param outline the heading in the outline under which it stands
   * @param title its title
   * @param subtype what kind of table it is, the same in every language
   * @return the table, without dimensions
   * @throws KovaException what the engine answers
   */
  public PivotTable table(String outline, String title, String subtype) {
    return table(outline, title, subtype, false);
  }

  /**
   * Begins a table.
   *
   * @param outline the heading in the outline under which it stands
   * @param title its title
   * @param subtype what kind of table it is, the same in every language
   * @param isSplit true when each split group has a table of its own
   * @return the table, without dimensions
   * @throws KovaException what the engine answers
   */
  public PivotTable table(String outline, String title, String subtype, boolean isSplit) {
    return PivotTable.start(Texts.bytes(outline), Texts.bytes(title), Texts.bytes(subtype), isSplit);
  }

  /**
   * Begins the output of the next split group.
   *
   * @throws KovaException what the engine answers
   */
  public void nextSplitGroup() { Native.splitChange(name); }

  /**
   * Ends the procedure; its output is then complete and shown. A second time does nothing.
   *
   * @throws KovaException what the engine answers
   */
  @Override
  public void close() {
    if (!isClosed) {
      isClosed = true;
      Native.endProcedure();
    }
  }
}
