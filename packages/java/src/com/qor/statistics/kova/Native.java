package com.qor.statistics.kova;

import java.nio.ByteBuffer;
import java.nio.file.Path;
import java.nio.file.Paths;

/**
 * The client library's functions, one method for each, named as they are but for the first letter. The native side
 * takes a lock around each call and the copy of its result, gives back what the library has allocated, and turns a code
 * other than 0 into a {@link KovaException}. Texts are UTF-8, made by {@link Texts}; none may be null.
 */
final class Native {
  private Native() {}

  /**
   * Loads the library from the engine's home folder, with the client library that lies beside it. A second time does
   * nothing.
   */
  static void load(String home) {
    Path library = Paths.get(home).toAbsolutePath().resolve(System.mapLibraryName("kovajni"));
    try {
      System.load(library.toString());
    } catch (UnsatisfiedLinkError e) {
      throw new KovaException(
          "System.load", KovaException.LIBRARY_NOT_LOADED, "RuntimeNotLoaded", String.valueOf(e.getMessage()));
    }
  }

  // This process, and what is known without asking the engine.
  static native void initXProcess(byte[] mode, byte[] temporaryFolder, byte[] processId, byte[] language);

  static native void setXNameAndSHome(byte[] language, byte[] home);

  static native byte[] errorName(int code);

  static native byte[] errorAdvice(int code);

  // The engine.
  static native void submit(byte[] syntax);

  static native void postKovaOutput(byte[] text);

  static native int getRowCount();

  // The dictionary. A variable is addressed by its position.
  static native int getVariableCount();

  static native byte[] getVariableName(int index);

  static native byte[] getVariableLabel(int index);

  static native int getVariableType(int index);

  static native byte[] getVariableFormat(int index);

  /** Format code, width, decimals. */
  static native int[] getVariableFormatType(int index);

  static native int getVariableMeasurementLevel(int index);

  /** Stores up to three values; the result is their kind. */
  static native int getVarNMissingValues(int index, double[] values);

  static native int getVarCMissingValues(int index, byte[][] values);

  /** The values, a double[], and their labels, a byte[][] of the same length. */
  static native Object[] getNValueLabels(int index);

  /** The values and their labels, each a byte[][]. */
  static native byte[][][] getCValueLabels(int index);

  // Cases.
  static native void makeCaseCursor(byte[] mode);

  static native void removeCaseCursor();

  /** Type, offset in a case, kind of missing values, and the bits of the three units of missing values. */
  static native long[] getCaseVariable(int index);

  static native int getCaseSize();

  /**
   * The cases that were not served yet, or those of the next batch, as they lie in the library's memory: valid until
   * the next call of this and until the cursor ends. Null behind the last case, {@code isGroupEnd[0]} then being true
   * when only a split group has ended.
   */
  static native ByteBuffer nextCaseBlock(boolean[] isGroupEnd);

  // Output.
  static native void startProcedure(byte[] name, byte[] label);

  static native void endProcedure();

  static native void splitChange(byte[] name);

  static native void addTextBlock(byte[] outline, byte[] title, byte[] text, int emptyLines);

  static native void addProcFootnotes(byte[] footnote);

  /** The function SetFormatSpec... of that name; the variable counts only where the function takes one. */
  static native void setFormatSpec(byte[] function, int variable);

  // Pivot tables. The key of a table is three texts and the split flag.
  static native void startPivotTable(byte[][] table, boolean split);

  static native void hidePivotTableTitle(byte[][] table, boolean split);

  static native void pivotTableCaption(byte[][] table, boolean split, byte[] caption);

  static native void addOutlineFootnotes(byte[][] table, boolean split, byte[] footnote);

  static native void addTitleFootnotes(byte[][] table, boolean split, byte[] footnote);

  static native void addCaptionFootnotes(byte[][] table, boolean split, byte[] caption, byte[] footnote);

  static native void minDataColumnWidth(byte[][] table, boolean split, int width);

  static native void maxDataColumnWidth(byte[][] table, boolean split, int width);

  // Dimensions. The key is the table's texts and the dimension's name, and as numbers the split flag, the place, the
  // position, and whether the name and the categories are hidden.
  static native void addDimension(byte[][] texts, int[] numbers);

  static native void addDimFootnotes(byte[][] texts, int[] numbers, byte[] footnote);

  static native void addNumberCategory(byte[][] texts, int[] numbers, double value);

  static native void addStringCategory(byte[][] texts, int[] numbers, byte[] text);

  static native void addVarNameCategory(byte[][] texts, int[] numbers, int variable);

  static native void addVarValueDoubleCategory(byte[][] texts, int[] numbers, int variable, double value);

  static native void addVarValueStringCategory(byte[][] texts, int[] numbers, int variable, byte[] value);

  static native void addCategoryFootnotes(byte[][] texts, int[] numbers, byte[] footnote);

  static native void setNumberCell(byte[][] texts, int[] numbers, double value);

  static native void setStringCell(byte[][] texts, int[] numbers, byte[] text);

  static native void setVarNameCell(byte[][] texts, int[] numbers, int variable);

  static native void setVarValueDoubleCell(byte[][] texts, int[] numbers, int variable, double value);

  static native void setVarValueStringCell(byte[][] texts, int[] numbers, int variable, byte[] value);

  static native void setDateCell(byte[][] texts, int[] numbers, byte[] date);

  static native void addCellFootnotes(byte[][] texts, int[] numbers, byte[] footnote);
}
