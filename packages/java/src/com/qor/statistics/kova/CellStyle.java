package com.qor.statistics.kova;

/** How the numbers of cells are shown: with how many decimals, and what else. Immutable. */
public final class CellStyle {
  /** Coefficients. */
  public static final CellStyle COEFFICIENT = new CellStyle("Coefficient");
  /** Standard errors of coefficients. */
  public static final CellStyle COEFFICIENT_STANDARD_ERROR = new CellStyle("CoefficientSE");
  /** Variances of coefficients. */
  public static final CellStyle COEFFICIENT_VARIANCE = new CellStyle("CoefficientVar");
  /** Correlations. */
  public static final CellStyle CORRELATION = new CellStyle("Correlation");
  /** Statistics without a style of their own; a procedure begins with it. */
  public static final CellStyle GENERAL_STATISTIC = new CellStyle("GeneralStat");
  /** Counts, without decimals. */
  public static final CellStyle COUNT = new CellStyle("Count");
  /** Percentages, with a percent sign; 12.5 is shown as 12.5%. */
  public static final CellStyle PERCENT = new CellStyle("Percent");
  /** Percentages without a percent sign. */
  public static final CellStyle PERCENT_WITHOUT_SIGN = new CellStyle("PercentNoSign");
  /** Proportions, from 0 to 1. */
  public static final CellStyle PROPORTION = new CellStyle("Proportion");
  /** Levels of significance. */
  public static final CellStyle SIGNIFICANCE = new CellStyle("Significance");
  /** Residuals. */
  public static final CellStyle RESIDUAL = new CellStyle("Residual");

  private static final int NO_VARIABLE = -1;

  private final byte[] function;
  private final int variable;

  private CellStyle(String ending) { this(ending, NO_VARIABLE); }

  private CellStyle(String ending, int variable) {
    function = Texts.bytes("SetFormatSpec" + ending);
    this.variable = variable;
  }

  /**
   * Gives the style for means of a variable.
   *
   * @param variable the variable, of the procedure's data
   * @return the style that goes with the variable's print format
   */
  public static CellStyle meanOf(Variable variable) { return new CellStyle("Mean", variable.position()); }

  /**
   * Gives the style for standard deviations of a variable.
   *
   * @param variable the variable, of the procedure's data
   * @return the style that goes with the variable's print format
   */
  public static CellStyle standardDeviationOf(Variable variable) {
    return new CellStyle("StdDev", variable.position());
  }

  /**
   * Gives the style for values of a variable.
   *
   * @param variable the variable, of the procedure's data
   * @return the style that goes with the variable's print format
   */
  public static CellStyle valueOf(Variable variable) { return new CellStyle("Variable", variable.position()); }

  /**
   * Gives the style for differences between values of a variable.
   *
   * @param variable the variable, of the procedure's data
   * @return the style that goes with the variable's print format
   */
  public static CellStyle differenceOf(Variable variable) { return new CellStyle("Difference", variable.position()); }

  /**
   * Gives the style for sums of a variable.
   *
   * @param variable the variable, of the procedure's data
   * @return the style that goes with the variable's print format
   */
  public static CellStyle sumOf(Variable variable) { return new CellStyle("Sum", variable.position()); }

  void choose() { Native.setFormatSpec(function, variable); }
}
